// Buttons, check boxes and option buttons: the user's clicks and the program's changes.
#include "platform/controls/buttons.h"

#include <gtest/gtest.h>

#include <array>

#include "tests/support/counting_observer.h"

namespace {

TEST(ButtonsTest, WhatTheUserCannotReachIsNotClicked) {
  int clicks = 0;
  controls::Button button;
  controls::CheckBox check_box;
  controls::OptionGroup group;
  controls::OptionButton option(group);
  button.Click = check_box.Click = option.Click = [&clicks] { ++clicks; };
  const std::array<controls::Control*, 3> all = {&button, &check_box, &option};
  const auto click_all = [&] {
    clicks = 0;
    button.Press();
    check_box.Toggle();
    option.Choose();
    return clicks;
  };
  for (controls::Control* control : all) control->SetEnabled(false);
  EXPECT_EQ(click_all(), 0);
  for (controls::Control* control : all) control->SetVisible(false);
  EXPECT_EQ(click_all(), 0);
  for (controls::Control* control : all) control->SetEnabled(true);
  EXPECT_EQ(click_all(), 0);
  EXPECT_FALSE(check_box.Value() || option.Value());
  for (controls::Control* control : all) control->SetVisible(true);
  EXPECT_EQ(click_all(), 3);
  EXPECT_TRUE(check_box.Value() && option.Value());
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
