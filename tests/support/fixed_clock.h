// A clock that stands still until the test moves it.
#pragma once

#include "platform/controls/services.h"

namespace test_support {

class FixedClock final : public controls::Clock {
 public:
  explicit FixedClock(double moment) : now(moment) {}
  double Now() const override { return now; }

  double now;  // days since 1899-12-30
};

}  // namespace test_support
