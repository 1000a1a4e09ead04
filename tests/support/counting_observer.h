// Counts what a control tells its observer.
#pragma once

#include <utility>

#include "platform/controls/control.h"

namespace test_support {

class CountingObserver final : public controls::Control::Observer {
 public:
  void ControlChanged() override { ++changes; }

  // The changes since the last call.
  int Take() { return std::exchange(changes, 0); }

  int changes = 0;
};

}  // namespace test_support
