// A value for as long as something goes on.
#pragma once

#include <utility>

namespace wx_windows {

// Gives a variable a value and puts back the one before, however its scope is left. The variable
// must outlive it.
template <class Value>
class ScopedValue {
 public:
  ScopedValue(Value& variable, Value value)
      : variable_(variable), before_(std::exchange(variable, std::move(value))) {}
  ~ScopedValue() { variable_ = std::move(before_); }
  ScopedValue(const ScopedValue&) = delete;
  ScopedValue& operator=(const ScopedValue&) = delete;

 private:
  Value& variable_;
  Value before_;
};

}  // namespace wx_windows
