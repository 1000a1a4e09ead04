// The number of the run-time error that an action ends in.
#pragma once

#include <cstdint>

#include "platform/text/runtime_error.h"

namespace test_support {

// 0 when the action ends without one. Other exceptions pass.
inline std::int32_t ErrorNumberOf(const auto& action) {
  try {
    action();
    return 0;
  } catch (const text::RuntimeError& error) {
    return error.number();
  }
}

}  // namespace test_support
