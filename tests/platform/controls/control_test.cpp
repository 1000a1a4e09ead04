// What every control does: properties, and telling the observer.
#include "platform/controls/control.h"

#include <gtest/gtest.h>

#include "platform/controls/buttons.h"
#include "tests/support/counting_observer.h"

namespace {

TEST(ControlTest, AnObserverHearsOfChangesOnly) {
  controls::Label label;
  label.SetCaption(L"before anybody listens");
  test_support::CountingObserver observer;
  label.Observe(&observer);

  label.SetCaption(L"a");
  label.SetEnabled(false);
  label.SetVisible(false);
  label.SetToolTip(L"b");
  EXPECT_EQ(observer.Take(), 4);
  label.SetCaption(L"a");
  label.SetEnabled(false);
  label.SetVisible(false);
  label.SetToolTip(L"b");
  EXPECT_EQ(observer.Take(), 0) << "nothing is different";

  test_support::CountingObserver successor;
  label.Observe(&successor);
  label.SetVisible(true);
  label.Observe(nullptr);
  label.SetVisible(false);
  EXPECT_EQ(observer.Take(), 0);
  EXPECT_EQ(successor.Take(), 1);
}

TEST(ControlTest, WhatContainsAControlKeepsTheUserFromIt) {
  controls::Frame page;
  controls::Frame frame;
  controls::Button button;
  page.Contain({&frame});
  frame.Contain({&button});
  int clicks = 0;
  button.Click = [&clicks] { ++clicks; };
  for (controls::Control* outer : {&page, &frame}) {
    for (const bool enabled : {false, true}) {
      for (const bool visible : {false, true}) {
        outer->SetEnabled(enabled);
        outer->SetVisible(visible);
        clicks = 0;
        button.Press();
        EXPECT_EQ(clicks, enabled && visible ? 1 : 0);
        EXPECT_TRUE(button.Enabled() && button.Visible()) << "its own state is another thing";
      }
    }
  }
}

}  // namespace
