// What every control does: properties, and telling the observer.
#include "platform/controls/control.h"

#include <gtest/gtest.h>

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

}  // namespace
