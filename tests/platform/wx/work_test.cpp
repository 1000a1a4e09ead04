// What the user can do while the program works, and what not.
#include <wx/checkbox.h>
#ifdef _WIN32
#include <wx/msw/wrapwin.h>
#endif
#include <wx/textctrl.h>
#include <wx/uiaction.h>

#include <cstdlib>
#include <stdexcept>

#include "tests/platform/wx/window_test.h"

namespace {

class WorkTest : public WindowTest {
 protected:
  WorkTest() {
    form.page.Hold({&box, &path});
    form.page.arrangement =
        controls::Column({controls::Show(&box), controls::Show(&path), controls::Space()});
  }

  // Works until something has happened, at most some seconds.
  void WorkUntil(const std::function<bool()>& happened) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!happened() && std::chrono::steady_clock::now() < end) windows.EventPump().DoEvents();
  }

  void WorkFor(std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    WorkUntil([end] { return std::chrono::steady_clock::now() > end; });
  }

  // As the system does.
  void EndSession() {
#ifdef _WIN32
    HWND window = Frame().GetHandle();
    EXPECT_EQ(1, SendMessageW(window, WM_QUERYENDSESSION, 0, 0));
    SendMessageW(window, WM_ENDSESSION, FALSE, 0);  // another program has refused
    EXPECT_TRUE(Frame().IsShown());
    SendMessageW(window, WM_ENDSESSION, TRUE, 0);
#else
    Frame().Close(true);
#endif
  }

  controls::CheckBox box;
  controls::TextBox path;
};

TEST_F(WorkTest, InputIsDroppedAndResizingGoesOn) {
  int runs = 0;
  int resized = 0;
  form.next.Click = [&] {
    ++runs;
    wxUIActionSimulator hand;
    const auto click = [&](const wxWindow& window) {
      hand.MouseMove(window.ClientToScreen(wxPoint(10, 10)));
      WorkFor(std::chrono::milliseconds(100));
      hand.MouseClick();
      WorkFor(std::chrono::milliseconds(100));
    };
    click(WindowOf<wxCheckBox>(box));
    click(WindowOf<wxWindow>(form.next));
    hand.Text("abc");
    hand.Char(WXK_RETURN);
    hand.Char(WXK_ESCAPE);
    hand.Char('N', wxMOD_ALT);
    const int before = resized;
    Frame().SetSize(Frame().GetSize() + wxSize(0, 60));
    WorkUntil([&] { return resized > before; });
    EXPECT_GT(resized, before);
    // An event that gets past everything is put back.
    WindowOf<wxCheckBox>(box).SetValue(true);
    wxCommandEvent checked(wxEVT_CHECKBOX, WindowOf<wxCheckBox>(box).GetId());
    WindowOf<wxCheckBox>(box).GetEventHandler()->ProcessEvent(checked);
    EXPECT_FALSE(WindowOf<wxCheckBox>(box).GetValue());
  };
  form.Resize = [&] { ++resized; };
  form.cancel.Click = [&] { FAIL() << "a key was not dropped"; };
  Run([&] {
    WindowOf<wxTextCtrl>(path).SetFocus();
    Click(WindowOf<wxWindow>(form.next));
    Settle();
    EXPECT_EQ(1, runs);
    EXPECT_FALSE(box.Value());
    EXPECT_EQ(L"", path.Text());
    EXPECT_EQ("", WindowOf<wxTextCtrl>(path).GetValue());
    Click(WindowOf<wxCheckBox>(box), wxPoint(10, 10));
    EXPECT_TRUE(box.Value()) << "after the work it goes on";
  });
}

TEST_F(WorkTest, ClosingEndsWorkWhereItIsPermitted) {
  bool left = false;
  bool permitted = false;
  int refused = 0;
  form.MayClose = [&] {
    if (!permitted) ++refused;
    return permitted;
  };
  form.next.Click = [&] {
    Frame().Close();
    windows.EventPump().DoEvents();
    EXPECT_EQ(1, refused);
    permitted = true;
    Frame().CallAfter([this] { Frame().Close(); });
    try {
      WorkUntil([] { return false; });
      ADD_FAILURE() << "the work was not ended";
    } catch (const Ended&) {
      EXPECT_FALSE(form.Unloaded()) << "nothing goes while it works";
      left = true;
      throw;
    }
  };
  EXPECT_EQ(0, Run([&] {
              Click(WindowOf<wxWindow>(form.next));
              EXPECT_TRUE(left);
              EXPECT_TRUE(form.Unloaded());
            }));
  EXPECT_EQ(0, reported);
}

TEST_F(WorkTest, EndOfTheSessionEndsWorkThatMayNotBeClosedAndWaitsForAnAnswer) {
  form.MayClose = [] { return false; };
  bool answer = true;
  form.next.Click = [&] {
    Frame().CallAfter([this] { EndSession(); });
    answer = windows.Prompt().AskYesNo(L"Shall I?", L"Orvane");
    EXPECT_FALSE(form.Unloaded());
    windows.Prompt().ShowMessage(L"Nobody will read this.", L"Orvane");
    EXPECT_FALSE(windows.Prompt().AskYesNo(L"Shall I go on?", L"Orvane"));
    EXPECT_EQ(windows.FileDialog().ChooseFile({}), std::nullopt);
    windows.EventPump().DoEvents();
    ADD_FAILURE() << "the work was not ended";
  };
  EXPECT_EQ(0, Run([&] { Click(WindowOf<wxWindow>(form.next)); }));
  EXPECT_FALSE(answer);
  EXPECT_TRUE(form.Unloaded());
}

TEST_F(WorkTest, LongWorkShowsTheBusyCursorExceptInADialog) {
  form.next.Click = [&] {
    windows.EventPump().DoEvents();
    EXPECT_FALSE(wxIsBusy()) << "nobody sees short work";
    WorkFor(std::chrono::milliseconds(200));
    EXPECT_TRUE(wxIsBusy());
    Frame().CallAfter([this] {
      WorkFor(std::chrono::milliseconds(50));
      EXPECT_FALSE(wxIsBusy());
      Key(WXK_ESCAPE);
    });
    windows.Prompt().ShowMessage(L"Well", L"Orvane");
    WorkFor(std::chrono::milliseconds(50));
    EXPECT_TRUE(wxIsBusy());
  };
  Run([&] {
    Click(WindowOf<wxWindow>(form.next));
    EXPECT_FALSE(wxIsBusy());
  });
}

TEST_F(WorkTest, ErrorsOfTheProgramAreReportedAndItGoesOn) {
  form.next.Click = [] { throw std::runtime_error("fault"); };
  Run([&] {
    Click(WindowOf<wxWindow>(form.next));
    Click(WindowOf<wxCheckBox>(box), wxPoint(10, 10));
    EXPECT_EQ(1, reported);
    EXPECT_TRUE(box.Value());
  });
}

#ifndef _WIN32  // there always is one
TEST_F(WorkTest, WithoutADisplayTheProgramEnds) {
  unsetenv("DISPLAY");
  bool started = false;
  EXPECT_EQ(1, windows.Run([&] { return started = true; }));
  EXPECT_FALSE(started);
}
#endif

}  // namespace
