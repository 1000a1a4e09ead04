// The end of the user's session, which Windows tells every window, waiting for the answers.
//
// The form may hear of it in the middle of DoEvents, and the work that called DoEvents cannot be
// left before the form has answered; but when all windows of the process have answered, it may be
// killed at any moment. So there is one window more, on a thread of its own, whose answer waits.
#include "platform/wx/session_end.h"

#include <wx/app.h>
#include <wx/msw/private.h>

#include <chrono>
#include <semaphore>
#include <string>
#include <thread>
#include <utility>

namespace wx_windows {
namespace {

// After that time Windows itself gives up a program that does not answer.
constexpr std::chrono::seconds kPatience{5};

constexpr wchar_t kWaitingWindow[] = L"session end";
constexpr wchar_t kSystemDialog[] = L"#32770";

// The system's own dialogs, such as that for files, know nothing of the end.
BOOL CALLBACK CancelSystemDialog(HWND window, LPARAM) {
  wchar_t name[std::size(kSystemDialog) + 1] = {};
  GetClassNameW(window, name, static_cast<int>(std::size(name)));
  if (std::wstring(name) == kSystemDialog && wxFindWinFromHandle(window) == nullptr) {
    PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
  }
  return TRUE;
}

}  // namespace

class SessionEnd::Parts {
 public:
  explicit Parts(std::function<void()> ends)
      : ends_(std::move(ends)), waiting_([this] { Wait(); }) {
    ready_.acquire();
    // Instead of the toolkit's own answers: it closes the form at the mere question, and at the end
    // leaves the process from inside the event.
    wxTheApp->Bind(wxEVT_QUERY_END_SESSION, [](wxCloseEvent&) {});
    wxTheApp->Bind(wxEVT_END_SESSION, [this](wxCloseEvent&) { End(); });
  }
  ~Parts() {
    left_.release();
    PostMessageW(window_, WM_CLOSE, 0, 0);
    waiting_.join();
  }
  Parts(const Parts&) = delete;
  Parts& operator=(const Parts&) = delete;

 private:
  void End() {
    EnumThreadWindows(GetCurrentThreadId(), CancelSystemDialog, 0);
    ends_();
  }

  // What follows is the other thread's.
  void Wait();
  static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM what, LPARAM why);

  std::function<void()> ends_;
  HWND window_ = nullptr;
  std::binary_semaphore ready_{0};  // the window is there
  std::binary_semaphore left_{0};   // the program has left its work
  std::thread waiting_;
};

void SessionEnd::Parts::Wait() {
  WNDCLASSW kind{};
  kind.lpfnWndProc = OnMessage;
  kind.hInstance = GetModuleHandleW(nullptr);
  kind.lpszClassName = kWaitingWindow;
  RegisterClassW(&kind);
  // Never shown. Not a message-only window: those do not hear of the end.
  window_ = CreateWindowW(kWaitingWindow, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                          kind.hInstance, nullptr);
  if (window_ != nullptr) {
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }
  ready_.release();
  MSG message;
  while (window_ != nullptr && GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
}

LRESULT CALLBACK SessionEnd::Parts::OnMessage(HWND window, UINT message, WPARAM what, LPARAM why) {
  auto* const parts = reinterpret_cast<Parts*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (message == WM_ENDSESSION && what != FALSE && parts != nullptr) {
    // Windows may tell the form only after the answer.
    wxTheApp->CallAfter([parts] { parts->End(); });
    if (parts->left_.try_acquire_for(kPatience)) parts->left_.release();
    return 0;
  }
  if (message == WM_DESTROY) PostQuitMessage(0);
  return DefWindowProcW(window, message, what, why);
}

SessionEnd::SessionEnd(const std::function<void()>& ends) : parts_(std::make_unique<Parts>(ends)) {}
SessionEnd::~SessionEnd() = default;

}  // namespace wx_windows
