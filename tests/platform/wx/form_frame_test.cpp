// The frame of a form: its keys, its sizes, how it closes.
#include <wx/checkbox.h>
#include <wx/textctrl.h>

#include <utility>
#include <vector>

#include "tests/platform/wx/window_test.h"

namespace {

class FormFrameTest : public WindowTest {
 protected:
  FormFrameTest() {
    form.page.Hold({&notes, &box});
    notes.SetMultiLine(true);
    form.page.arrangement =
        controls::Column({controls::Stretched(controls::Show(&notes)), controls::Show(&box)});
    form.next.Click = [this] { ++next; };
    form.cancel.Click = [this] { ++cancel; };
  }

  controls::TextBox notes;
  controls::CheckBox box;
  int next = 0;
  int cancel = 0;
};

TEST_F(FormFrameTest, EnterIsTheDefaultButtonAndEscapeTheOther) {
  Run([&] {
    WindowOf<wxCheckBox>(box).SetFocus();
    Key(WXK_RETURN);
    EXPECT_EQ(1, next);
    WindowOf<wxTextCtrl>(notes).SetFocus();
    Key(WXK_RETURN);
    EXPECT_EQ(1, next) << "a line end";
    notes.SetLocked(true);
    Key(WXK_RETURN);
    EXPECT_EQ(2, next);
    WindowOf<wxWindow>(form.cancel).SetFocus();
    Key(WXK_RETURN);
    EXPECT_EQ(2, next);
    EXPECT_EQ(1, cancel) << "the button in focus";
    Key(WXK_ESCAPE);
    EXPECT_EQ(2, cancel);
    form.cancel.SetVisible(false);
    form.next.SetEnabled(false);
    WindowOf<wxCheckBox>(box).SetFocus();
    Key(WXK_ESCAPE);
    Key(WXK_RETURN);
    EXPECT_EQ(2, next);
    EXPECT_EQ(2, cancel);
  });
}

TEST_F(FormFrameTest, HeldKeyAndDoubleClickAreOnePress) {
  Run([&] {
    WindowOf<wxCheckBox>(box).SetFocus();
    Hold(WXK_RETURN);
    EXPECT_EQ(1, next);
    Hold(WXK_ESCAPE);
    EXPECT_EQ(1, cancel);
    Hold(WXK_SPACE);
    EXPECT_TRUE(box.Value());
    for (const int key : {WXK_RETURN, WXK_SPACE}) {
      next = 0;
      WindowOf<wxWindow>(form.next).SetFocus();
      Hold(key);
      EXPECT_EQ(1, next) << key;
    }
    WindowOf<wxTextCtrl>(notes).SetFocus();
    Hold(WXK_RETURN);
    EXPECT_GT(notes.Text().size(), 4U) << "where it writes it repeats itself";
    next = 0;
    DoubleClick(WindowOf<wxWindow>(form.next));
    EXPECT_EQ(1, next);
  });
}

TEST_F(FormFrameTest, PageThatAppearsGetsTheFocusOnItsFirstControl) {
  form.page.SetVisible(false);
  form.next.Click = [this] {
    notes.SetEnabled(false);
    form.page.SetVisible(true);
  };
  Run([&] {
    Click(WindowOf<wxWindow>(form.next));
    EXPECT_EQ(&WindowOf<wxWindow>(box), wxWindow::FindFocus());
  });
}

TEST_F(FormFrameTest, FocusIsNotLostWithAButtonThatWorkDisables) {
  bool again = true;
  form.next.Click = [&] {
    form.next.SetEnabled(false);
    windows.EventPump().DoEvents();
    form.next.SetEnabled(again);
  };
  Run([&] {
    WindowOf<wxWindow>(form.next).SetFocus();
    Key(WXK_SPACE);
    EXPECT_EQ(&WindowOf<wxWindow>(form.next), wxWindow::FindFocus());
    again = false;
    Key(WXK_SPACE);
    EXPECT_EQ(&WindowOf<wxWindow>(notes), wxWindow::FindFocus());
  });
}

TEST_F(FormFrameTest, ButtonsGrowWithTheirCaptionsBeforeTheFormIsToldItsSize) {
  std::int32_t width = 0;
  form.Resize = [&] { width = form.next.Place().width; };
  Run([&] {
    EXPECT_EQ(1650, width);
    EXPECT_EQ(9690, form.Outer().width);
    EXPECT_GT(form.Inner().height, 0);
    EXPECT_GT(form.Screen().width, form.Outer().width);
    form.next.SetCaption(L"A much longer caption than there is room for");
    ASSERT_TRUE(Wait([&] { return width > 1650; }));
    const wxWindow& native = WindowOf<wxWindow>(form.next);
    EXPECT_GE(native.GetSize().x, native.GetBestSize().x);
  });
}

// What a page does not arrange has its place in pixels, which are those of the scale before.
TEST_F(FormFrameTest, EverythingIsPlacedAnewForAnotherScale) {
  Run([&] {
    wxWindow& title = WindowOf<wxWindow>(form.title);
    std::vector<std::pair<wxWindow*, wxRect>> places;
    for (wxWindow* const window : {&title, title.GetParent(), &WindowOf<wxWindow>(form.page),
                                   &WindowOf<wxWindow>(form.next)}) {
      places.emplace_back(window, window->GetRect());
      window->SetSize(1, 1, 20, 20);
    }
    ChangeScale();
    for (const auto& [window, place] : places) EXPECT_EQ(place, window->GetRect());
  });
}

TEST_F(FormFrameTest, FormUnloadedInItsOwnEventGoesAfterIt) {
  form.next.Click = [&] {
    form.Unload();
    windows.EventPump().DoEvents();
    form.next.SetCaption(L"still there");
  };
  EXPECT_EQ(0, Run([&] { Click(WindowOf<wxWindow>(form.next)); }));
}

}  // namespace
