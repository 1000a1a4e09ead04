// Lets the windows live while the program works.
#include "platform/wx/event_pump.h"

#include <wx/app.h>
#include <wx/utils.h>

#include "platform/wx/scoped_value.h"

namespace wx_windows {
namespace {

constexpr std::chrono::milliseconds kPause{20};

}  // namespace

void EventPump::DoEvents() {
  if (handling_) return;
  gate_.CheckEnd();
  if (last_ && std::chrono::steady_clock::now() - *last_ < kPause) return;
  if (gate_.WorkingLong() && !gate_.InDialog() && !wxIsBusy()) wxBeginBusyCursor();
  {
    const ScopedValue handling(handling_, true);
    wxTheApp->Yield(true);
  }
  last_ = std::chrono::steady_clock::now();
  gate_.CheckEnd();
}

void EndBusyCursor() {
  if (wxIsBusy()) wxEndBusyCursor();
}

}  // namespace wx_windows
