// When a server has been waited for long enough.
#include "platform/transfer/patience.h"

#include <gtest/gtest.h>

namespace {

using std::chrono::seconds;

// Waits a second at a time; the number of seconds after which patience is over, 0 for never.
int SecondsUntilOver(int bytes, int every, seconds limit) {
  transfer::Patience patience;
  patience.Begin(limit);
  for (int second = 1; second <= 300; ++second) {
    patience.Waited(seconds(1), second % every == 0 ? static_cast<std::size_t>(bytes) : 0);
    if (patience.IsOver()) return second;
  }
  return 0;
}

TEST(PatienceTest, LastsAsLongAsAByteASecondComes) {
  EXPECT_EQ(SecondsUntilOver(0, 1, seconds(30)), 30);
  EXPECT_EQ(SecondsUntilOver(1, 2, seconds(30)), 30) << "a byte every other second";
  EXPECT_EQ(SecondsUntilOver(1, 1, seconds(30)), 0);
  EXPECT_EQ(SecondsUntilOver(100, 20, seconds(30)), 0) << "rarely, but much";
}

TEST(PatienceTest, BeginsAnew) {
  transfer::Patience patience;
  patience.Begin(seconds(2));
  patience.Waited(seconds(2), 0);
  ASSERT_TRUE(patience.IsOver());
  patience.Begin(seconds(2));
  patience.Waited(seconds(1), 0);
  EXPECT_FALSE(patience.IsOver());
}

}  // namespace
