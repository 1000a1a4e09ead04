// The clock of the machine, in the user's time zone.
#include <algorithm>
#include <ctime>

#include "platform/controls/services.h"
#include "platform/text/date.h"

namespace controls {

double SystemClock::Now() const {
  const std::time_t now = std::time(nullptr);
  const std::tm* const local = std::localtime(&now);  // NOLINT(concurrency-mt-unsafe): one thread
  if (local == nullptr) return text::kUnsetDate;
  constexpr int kLastSecond = 59;  // a leap second counts as the one before it
  return text::ToDayNumber({.year = local->tm_year + 1900,
                            .month = local->tm_mon + 1,
                            .day = local->tm_mday,
                            .hour = local->tm_hour,
                            .minute = local->tm_min,
                            .second = std::min(local->tm_sec, kLastSecond)});
}

}  // namespace controls
