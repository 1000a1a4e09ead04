// Controls without a window: what the user does, what the program changes, and who hears of it.
#include <gtest/gtest.h>

#include "platform/controls/buttons.h"
#include "platform/controls/progress_bar.h"
#include "platform/controls/text_box.h"
#include "tests/support/error_number.h"

namespace {

using controls::ProgressBar;
using test_support::ErrorNumberOf;

struct CountingObserver final : controls::Control::Observer {
  void ControlChanged() override { ++changes; }
  int changes = 0;
};

TEST(ControlTest, AnObserverHearsOfChangesOnly) {
  controls::Label label;
  CountingObserver observer;
  label.Observe(&observer);
  for (int i = 0; i < 2; ++i) {  // the second time nothing is different
    label.SetCaption(L"a");
    label.SetEnabled(false);
    label.SetVisible(false);
    label.SetToolTip(L"b");
    EXPECT_EQ(observer.changes, 4);
  }
}

TEST(ControlTest, TheUserIsKeptFromWhatIsDisabledOrHiddenAndWhatItContains) {
  controls::Frame page;
  controls::Frame frame;
  controls::Button button;
  controls::CheckBox check_box;
  controls::OptionGroup group;
  controls::OptionButton option(group);
  controls::TextBox text_box;
  page.Contain({&frame});
  frame.Contain({&button, &check_box, &option, &text_box});
  int events = 0;
  button.Click = check_box.Click = option.Click = text_box.Change = [&events] { ++events; };
  using Controls = std::initializer_list<controls::Control*>;
  for (const Controls& out_of_reach :
       {Controls{&button, &check_box, &option, &text_box}, Controls{&frame}, Controls{&page}}) {
    for (const bool enabled : {false, true}) {
      for (const bool visible : {false, true}) {
        for (controls::Control* control : out_of_reach) {
          control->SetEnabled(enabled);
          control->SetVisible(visible);
        }
        const bool was_checked = check_box.Value();
        option.SetValue(false);
        text_box.SetText(L"");
        events = 0;
        button.Press();
        check_box.Toggle();
        option.Choose();
        text_box.Type(L"x");
        const bool reached = enabled && visible;
        EXPECT_EQ(events, reached ? 4 : 0);
        EXPECT_EQ(check_box.Value() != was_checked, reached);
        EXPECT_EQ(option.Value(), reached);
        EXPECT_EQ(text_box.Text(), reached ? L"x" : L"");
      }
    }
  }
}

TEST(ButtonsTest, AClickOnACheckBoxIsAnEventAndAnAssignmentIsNone) {
  controls::CheckBox check_box;
  check_box.Toggle();
  EXPECT_TRUE(check_box.Value()) << "also where nobody waits for the event";
  int clicks = 0;
  check_box.Click = [&] {
    ++clicks;
    EXPECT_FALSE(check_box.Value()) << "the event comes after the change";
  };
  check_box.SetValue(false);
  check_box.SetValue(true);
  EXPECT_EQ(clicks, 0);
  check_box.Toggle();
  EXPECT_EQ(clicks, 1);
}

TEST(ButtonsTest, OneOptionOfAGroupIsOn) {
  controls::OptionGroup group;
  controls::OptionGroup other_group;
  controls::OptionButton yes(group);
  controls::OptionButton no(group);
  controls::OptionButton elsewhere(other_group);
  elsewhere.SetValue(true);
  yes.SetValue(true);
  CountingObserver observer;
  yes.Observe(&observer);
  int clicks = 0;
  no.Click = [&clicks] { ++clicks; };
  {
    const controls::OptionButton gone(group);
    no.Choose();
  }
  EXPECT_FALSE(yes.Value());
  EXPECT_TRUE(no.Value() && elsewhere.Value());
  EXPECT_EQ(observer.changes, 1) << "it went off by another's click";
  no.Choose();
  EXPECT_EQ(clicks, 1) << "it was on already";
  no.SetValue(false);
  EXPECT_FALSE(yes.Value()) << "none may be on";
}

TEST(TextBoxTest, TypingIsAnEventAndAnAssignmentIsNone) {
  controls::TextBox box;
  std::wstring heard;
  box.Change = [&] { heard += box.Text() + L";"; };
  box.SetText(L"a");
  box.Type(L"ab");
  box.Type(L"ab");
  EXPECT_EQ(heard, L"ab;");
  box.SetLocked(true);
  box.Type(L"abc");
  EXPECT_EQ(box.Text(), L"ab");
}

TEST(ProgressBarTest, TheValueStaysInsideTheBar) {
  ProgressBar bar;
  bar.SetMax(3);
  bar.SetValue(3);
  EXPECT_EQ(ErrorNumberOf([&] { bar.SetValue(4); }), ProgressBar::kInvalidPropertyValue);
  EXPECT_EQ(ErrorNumberOf([&] { bar.SetValue(-1); }), ProgressBar::kInvalidPropertyValue);
  EXPECT_EQ(ErrorNumberOf([&] { bar.SetMax(0); }), ProgressBar::kInvalidPropertyValue);
  EXPECT_EQ(bar.Value(), 3);
  EXPECT_EQ(bar.Max(), 3);
  // A bar used for shorter work than the last.
  struct Watcher final : controls::Control::Observer {
    explicit Watcher(ProgressBar& watched) : bar(watched) {}
    void ControlChanged() override { EXPECT_LE(bar.Value(), bar.Max()); }
    ProgressBar& bar;
  };
  Watcher watcher(bar);
  bar.Observe(&watcher);
  bar.SetMax(1);
  EXPECT_EQ(bar.Value(), 1);
}

}  // namespace
