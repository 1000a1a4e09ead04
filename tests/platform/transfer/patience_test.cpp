// When a server has been waited for long enough.
#include "platform/transfer/patience.h"

#include <gtest/gtest.h>

namespace {

using std::chrono::seconds;

TEST(PatienceTest, EndsWithSilenceATrickleOrTheWholeTime) {
  struct Case {
    std::size_t bytes;  // that come at once ...
    int every;          // ... so often
    seconds whole;
    int over;  // after so many seconds, 0 for not within an hour
  };
  const Case cases[] = {
      {0, 1, seconds(9999), 30},        {3999, 1, seconds(9999), 30}, {4000, 1, seconds(9999), 0},
      {80'000, 20, seconds(9999), 30},  // the second 30 seconds would have two of them
      {200'000, 20, seconds(9999), 0},  // rarely, but much
      {1'000'000, 1, seconds(100), 100}};
  for (const Case& one : cases) {
    SCOPED_TRACE(one.bytes);
    transfer::Patience patience;
    for (int round = 0; round < 2; ++round) {
      patience.Begin(seconds(30), one.whole);
      int second = 0;
      while (!patience.IsOver() && second < 3600)
        patience.Waited(seconds(1), ++second % one.every == 0 ? one.bytes : 0);
      EXPECT_EQ(patience.IsOver() ? second : 0, one.over);
    }
  }
}

}  // namespace
