// An event pump that counts, and does at every call what a test wants to happen meanwhile.
#pragma once

#include <functional>

#include "platform/controls/services.h"

namespace test_support {

class ScriptedEventPump final : public controls::EventPump {
 public:
  void DoEvents() override {
    ++calls;
    if (meanwhile) meanwhile();
  }

  int calls = 0;
  std::function<void()> meanwhile;  // may throw
};

}  // namespace test_support
