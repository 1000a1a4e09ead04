// A bar that shows how far some work has come.
#pragma once

#include <algorithm>
#include <cstdint>

#include "platform/controls/control.h"
#include "platform/text/runtime_error.h"

namespace controls {

// Full when its value is its maximum; empty at 0.
class ProgressBar final : public Control {
 public:
  // Error number of a value outside the bar.
  static constexpr std::int32_t kInvalidPropertyValue = 380;

  std::int32_t Max() const { return max_; }
  // At least 1, or throws text::RuntimeError 380. A value above the new maximum comes down to it.
  void SetMax(std::int32_t max) {
    if (max < 1) throw text::RuntimeError(kInvalidPropertyValue, L"Invalid property value");
    Change(value_, std::min(value_, max));
    Change(max_, max);
  }

  std::int32_t Value() const { return value_; }
  // From 0 to the maximum, or throws text::RuntimeError 380.
  void SetValue(std::int32_t value) {
    if (value < 0 || value > max_) {
      throw text::RuntimeError(kInvalidPropertyValue, L"Invalid property value");
    }
    Change(value_, value);
  }

 private:
  std::int32_t max_ = 100;
  std::int32_t value_ = 0;
};

}  // namespace controls
