// Lets the windows live while the program works.
#include "platform/wx/event_pump.h"

#include <wx/app.h>

namespace wx_windows {
namespace {

constexpr std::chrono::milliseconds kPause{20};

}  // namespace

void EventPump::DoEvents() {
  if (handling_) return;
  gate_.CheckEnd();
  if (last_ && std::chrono::steady_clock::now() - *last_ < kPause) return;
  handling_ = true;
  wxTheApp->Yield(true);
  handling_ = false;
  last_ = std::chrono::steady_clock::now();
  gate_.CheckEnd();
}

}  // namespace wx_windows
