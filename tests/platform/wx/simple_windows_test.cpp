// Controls and their windows: each shows what the other has.
#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/gauge.h>
#include <wx/radiobut.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include "tests/platform/wx/window_test.h"

class SimpleWindowsTest : public WindowTest {
 protected:
  SimpleWindowsTest() {
    using controls::Column, controls::Group, controls::Row, controls::Show, controls::Space,
        controls::Stretched;
    form.page.Hold({&frame, &other_frame, &path, &notes, &bar});
    frame.Contain({&box});
    other_frame.Contain({&first, &second});
    notes.SetMultiLine(true);
    form.page.arrangement = Column({Show(&path), Group(frame, {Show(&box)}),
                                    Group(other_frame, {Show(&first), Show(&second)}), Show(&bar),
                                    Stretched(Show(&notes)), Row({Space(), Show(&button)})});
  }

  controls::TextBox path;
  controls::Frame frame;
  controls::Frame other_frame;
  controls::CheckBox box;
  controls::OptionGroup group;
  controls::OptionButton first{group};
  controls::OptionButton second{group};
  controls::ProgressBar bar;
  controls::TextBox notes;
  controls::Button button;
};

TEST_F(SimpleWindowsTest, WindowsShowWhatTheProgramSets) {
  EXPECT_EQ(0, Run([&] {
              box.SetCaption(L"&Backup && more");
              box.SetValue(true);
              second.SetValue(true);
              notes.SetText(L"first\r\nsecond");
              bar.SetMax(40);
              bar.SetValue(10);
              form.title.SetCaption(L"Nuts & bolts");
              button.SetVisible(false);
              button.SetToolTip(L"why");
              EXPECT_EQ("&Backup && more", WindowOf<wxCheckBox>(box).GetLabel());
              EXPECT_TRUE(WindowOf<wxCheckBox>(box).GetValue());
              EXPECT_FALSE(WindowOf<wxRadioButton>(first).GetValue());
              EXPECT_TRUE(WindowOf<wxRadioButton>(second).GetValue());
              EXPECT_EQ(250, WindowOf<wxGauge>(bar).GetValue());
              EXPECT_EQ("Nuts & bolts", WindowOf<wxStaticText>(form.title).GetLabelText());
              EXPECT_FALSE(WindowOf<wxButton>(button).IsShown());
              EXPECT_EQ("why", WindowOf<wxButton>(button).GetToolTipText());
              notes.SetLocked(true);
              notes.SetText(L"first\r\nsecond\r\nthird\xD800");
              EXPECT_FALSE(WindowOf<wxTextCtrl>(notes).IsEditable());
              EXPECT_EQ(wxString(L"first\nsecond\nthird\xFFFD"),
                        WindowOf<wxTextCtrl>(notes).GetValue());
              notes.SetText(L"new");
              EXPECT_EQ("new", WindowOf<wxTextCtrl>(notes).GetValue());
            }));
}

TEST_F(SimpleWindowsTest, WhatTheUserDoesComesToTheControls) {
  int clicks = 0;
  button.Click = [&] { ++clicks; };
  first.SetValue(true);
  path.SetText(L"a");
  notes.SetText(L"x\r\ny");
  Run([&] {
    Click(WindowOf<wxButton>(button));
    EXPECT_EQ(1, clicks);
    Click(WindowOf<wxCheckBox>(box), wxPoint(10, 10));
    EXPECT_TRUE(box.Value());
    Click(WindowOf<wxRadioButton>(second), wxPoint(10, 10));
    EXPECT_TRUE(second.Value());
    EXPECT_FALSE(first.Value());
    WindowOf<wxTextCtrl>(path).SetFocus();
    WindowOf<wxTextCtrl>(path).SetInsertionPointEnd();
    TypeText("bc");
    EXPECT_EQ(L"abc", path.Text());
    WindowOf<wxTextCtrl>(notes).SetFocus();
    WindowOf<wxTextCtrl>(notes).SetInsertionPointEnd();
    Key(WXK_RETURN);
    EXPECT_EQ(L"x\r\ny\r\n", notes.Text());
  });
}

TEST_F(SimpleWindowsTest, HiddenGroupTakesNoRoom) {
  Run([&] {
    const int top = WindowOf<wxWindow>(frame).GetPosition().y;
    const int other_top = WindowOf<wxWindow>(other_frame).GetPosition().y;
    EXPECT_LT(top, other_top);
    const auto moves_to = [&](int y) {
      return Wait([&] { return WindowOf<wxWindow>(other_frame).GetPosition().y == y; });
    };
    frame.SetVisible(false);
    EXPECT_TRUE(moves_to(top));
    frame.SetVisible(true);
    EXPECT_TRUE(moves_to(other_top));
  });
}
