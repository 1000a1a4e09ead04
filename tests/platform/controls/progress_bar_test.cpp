// Progress bars: values stay inside the bar.
#include "platform/controls/progress_bar.h"

#include <gtest/gtest.h>

#include "tests/support/counting_observer.h"
#include "tests/support/error_number.h"

namespace {

using controls::ProgressBar;
using test_support::ErrorNumberOf;

TEST(ProgressBarTest, ValuesOutsideTheBarAreRefused) {
  ProgressBar bar;
  bar.SetMax(3);
  bar.SetValue(3);
  test_support::CountingObserver observer;
  bar.Observe(&observer);
  EXPECT_EQ(ErrorNumberOf([&] { bar.SetValue(4); }), ProgressBar::kInvalidPropertyValue);
  EXPECT_EQ(ErrorNumberOf([&] { bar.SetValue(-1); }), ProgressBar::kInvalidPropertyValue);
  EXPECT_EQ(ErrorNumberOf([&] { bar.SetMax(0); }), ProgressBar::kInvalidPropertyValue);
  EXPECT_EQ(bar.Value(), 3);
  EXPECT_EQ(bar.Max(), 3);
  EXPECT_EQ(observer.Take(), 0);
}

// A bar used for shorter work than the last.
TEST(ProgressBarTest, TheValueNeverExceedsANewMaximum) {
  struct Watcher final : controls::Control::Observer {
    explicit Watcher(ProgressBar& watched) : bar(watched) {}
    void ControlChanged() override { EXPECT_LE(bar.Value(), bar.Max()); }
    ProgressBar& bar;
  };
  ProgressBar bar;
  bar.SetValue(100);
  Watcher watcher(bar);
  bar.Observe(&watcher);
  bar.SetMax(1);
  EXPECT_EQ(bar.Value(), 1);
  bar.SetMax(7);
  EXPECT_EQ(bar.Value(), 1);
}

}  // namespace
