// Fixture of the tests with real windows.
#include "tests/platform/wx/window_test.h"

#include <wx/app.h>
#include <wx/evtloop.h>
#include <wx/uiaction.h>

#include <chrono>
#include <thread>

namespace {

constexpr std::chrono::seconds kPatience{10};
constexpr std::chrono::milliseconds kQuiet{150};
constexpr std::chrono::milliseconds kHeld{850};
constexpr std::chrono::milliseconds kBetweenClicks{60};  // of a double click
constexpr std::chrono::milliseconds kSlice{5};

// As the toolkit's main loop does. Not by yielding: work that yields in such a place would not.
void HandleEvents() {
  wxEventLoopBase& loop = *wxEventLoopBase::GetActive();
  while (loop.Pending()) loop.Dispatch();
  wxTheApp->ProcessPendingEvents();
  loop.ProcessIdle();
}

}  // namespace

TestForm::TestForm() : Form({.width = 9690, .height = 7800}) {
  title.SetPlace({.left = 240, .top = 165, .width = 9000, .height = 450});
  page.SetPlace({.left = 0, .top = 1140, .width = 9690, .height = 5700});
  next.SetCaption(L"&Next");
  next.SetPlace({.left = 7500, .top = 7100, .width = 1650, .height = 375});
  cancel.SetCaption(L"Close");
  cancel.SetPlace({.left = 4500, .top = 7100, .width = 1650, .height = 375});
}

WindowTest::WindowTest()
    : windows({.name = "windows_test",
               .end_work = [] { throw Ended(); },
               .report_error = [this] { ++reported; }}) {}

int WindowTest::Run(const std::function<void()>& user) {
  bool done = false;
  const int status = windows.Run([&] {
    windows.Load(form);
    form.Show();
    wxTheApp->CallAfter([&] {
      EXPECT_TRUE(Wait([this] { return Frame().IsShownOnScreen(); }));
      Frame().Raise();
      Settle();
      user();
      done = true;
      form.Unload();
    });
    return true;
  });
  EXPECT_TRUE(done);
  return status;
}

bool WindowTest::Wait(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    HandleEvents();
    std::this_thread::sleep_for(kSlice);
  }
  return true;
}

void WindowTest::Settle() {
  const auto end = std::chrono::steady_clock::now() + kQuiet;
  Wait([&] { return std::chrono::steady_clock::now() > end; });
}

wx_windows::FormFrame& WindowTest::Frame() const {
  return dynamic_cast<wx_windows::FormFrame&>(*wxTheApp->GetTopWindow());
}

wxListCtrl& WindowTest::NativeList(const controls::ListView& list) const {
  return dynamic_cast<wxListCtrl&>(*WindowOf<wxWindow>(list).GetChildren().GetFirst()->GetData());
}

void WindowTest::ChangeScale() const {
  const std::function<void(wxWindow&)> tell = [&](wxWindow& window) {
    for (wxWindow* const child : window.GetChildren()) tell(*child);
    wxDPIChangedEvent event(window.GetDPI(), window.GetDPI());
    window.HandleWindowEvent(event);
  };
  tell(Frame());
  Settle();
}

void WindowTest::Click(const wxWindow& window, wxPoint at) {
  const wxSize size = window.GetSize();
  const wxPoint inside = at == wxDefaultPosition ? wxPoint(size.x / 2, size.y / 2) : at;
  wxUIActionSimulator hand;
  hand.MouseMove(window.ClientToScreen(inside));
  Settle();
  hand.MouseClick();
  Settle();
}

void WindowTest::Key(int key, int modifiers) {
  wxUIActionSimulator hand;
  hand.Char(key, modifiers);
  Settle();
}

void WindowTest::DoubleClick(const wxWindow& window) {
  wxUIActionSimulator hand;
  hand.MouseMove(window.ClientToScreen(wxPoint(10, 10)));
  Settle();
  hand.MouseClick();
  const auto again = std::chrono::steady_clock::now() + kBetweenClicks;
  Wait([&] { return std::chrono::steady_clock::now() > again; });
  hand.MouseClick();
  Settle();
}

void WindowTest::Hold(int key) {
  wxUIActionSimulator hand;
  hand.KeyDown(key);
  const auto end = std::chrono::steady_clock::now() + kHeld;
  Wait([&] {
#ifdef _WIN32  // where it is the keyboard that repeats a key, and there is none
    hand.KeyDown(key);
#endif
    return std::chrono::steady_clock::now() > end;
  });
  hand.KeyUp(key);
  Settle();
}

void WindowTest::TypeText(const char* text) {
  wxUIActionSimulator hand;
  hand.Text(text);
  Settle();
}
