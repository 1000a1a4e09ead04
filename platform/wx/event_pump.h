// Lets the windows live while the program works.
#pragma once

#include <chrono>
#include <optional>

#include "platform/controls/services.h"
#include "platform/wx/work_gate.h"

namespace wx_windows {

// Handles what waits at most once in a pause of 20 ms; in between a call costs a look at the clock.
// Ends the work in hand when the user has closed the form. Work that takes long gets the busy
// cursor. Calls from inside a call do nothing.
class EventPump final : public controls::EventPump {
 public:
  // The gate must outlive the pump.
  explicit EventPump(WorkGate& gate) : gate_(gate) {}

  void DoEvents() override;

 private:
  WorkGate& gate_;
  std::optional<std::chrono::steady_clock::time_point> last_;  // end of the last time
  bool handling_ = false;
};

// The cursor is no longer busy, if it was: after work, and while a dialog waits in the middle of
// it.
void EndBusyCursor();

}  // namespace wx_windows
