// Buttons, check boxes and option buttons: the user's clicks and the program's changes.
#include "platform/controls/buttons.h"

#include <gtest/gtest.h>

#include "tests/support/counting_observer.h"

namespace {

TEST(ButtonsTest, WhatTheUserCannotReachIsNotClicked) {
  int clicks = 0;
  controls::Button button;
  controls::CheckBox check_box;
  controls::OptionGroup group;
  controls::OptionButton option(group);
  for (const bool enabled : {false, true}) {
    for (const bool visible : {false, true}) {
      SCOPED_TRACE(testing::Message() << "enabled " << enabled << ", visible " << visible);
      const bool reachable = enabled && visible;
      button.Click = check_box.Click = option.Click = [&clicks] { ++clicks; };
      for (controls::Control* control :
           {static_cast<controls::Control*>(&button), static_cast<controls::Control*>(&check_box),
            static_cast<controls::Control*>(&option)}) {
        control->SetEnabled(enabled);
        control->SetVisible(visible);
      }
      clicks = 0;
      button.Press();
      check_box.Toggle();
      option.Choose();
      EXPECT_EQ(clicks, reachable ? 3 : 0);
      EXPECT_EQ(check_box.Value(), reachable);
      EXPECT_EQ(option.Value(), reachable);
    }
  }
}

TEST(ButtonsTest, AClickOnACheckBoxIsAnEventAndAnAssignmentIsNone) {
  controls::CheckBox check_box;
  check_box.Toggle();
  EXPECT_TRUE(check_box.Value()) << "also where nobody waits for the event";
  bool value_in_event = true;
  int clicks = 0;
  check_box.Click = [&] {
    ++clicks;
    value_in_event = check_box.Value();
  };
  check_box.SetValue(false);
  check_box.SetValue(true);
  EXPECT_EQ(clicks, 0);
  check_box.Toggle();
  EXPECT_EQ(clicks, 1);
  EXPECT_FALSE(value_in_event) << "the event comes after the change";
}

TEST(ButtonsTest, OneOptionOfAGroupIsOn) {
  controls::OptionGroup group;
  controls::OptionGroup other_group;
  controls::OptionButton yes(group);
  controls::OptionButton no(group);
  controls::OptionButton elsewhere(other_group);
  elsewhere.SetValue(true);
  yes.SetValue(true);
  test_support::CountingObserver observer;
  yes.Observe(&observer);
  int clicks = 0;
  no.Click = [&clicks] { ++clicks; };
  {
    const controls::OptionButton gone(group);
    no.Choose();
  }
  EXPECT_FALSE(yes.Value());
  EXPECT_TRUE(no.Value());
  EXPECT_TRUE(elsewhere.Value());
  EXPECT_EQ(observer.Take(), 1) << "it went off by another's click";
  no.Choose();
  EXPECT_EQ(clicks, 1) << "it was on already";
  no.SetValue(false);
  EXPECT_FALSE(yes.Value()) << "none may be on";
  yes.SetValue(true);
  EXPECT_EQ(observer.Take(), 1);
}

}  // namespace
