// Lets one piece of the program's work run at a time.
#include "platform/wx/work_gate.h"

#include <chrono>
#include <exception>

#include "platform/wx/scoped_value.h"

namespace wx_windows {
namespace {

using Clock = std::chrono::steady_clock;

// What takes less is over before anybody has seen it: what is typed quickly must not get lost.
constexpr std::chrono::milliseconds kLong{100};

}  // namespace

bool WorkGate::Work(const std::function<void()>& work) {
  if (working_) return false;
  if (before_work) before_work();
  bool done = false;
  {
    const ScopedValue working(working_, true);
    begin_ = Clock::now();
    done = Guard(work);
    if (drop_input && WorkingLong()) drop_input();
  }
  if (after_work) after_work();
  return done;
}

bool WorkGate::WorkingLong() const { return working_ && Clock::now() - begin_ > kLong; }

bool WorkGate::Guard(const std::function<void()>& code) {
  bool done = false;
  try {
    code();
    done = true;
  } catch (...) {
    // What comes out of work that was ended is how it ended.
    if (!ending_) ReportError();
  }
  // The end came to a message about that error, with no work in hand.
  if (ending_ && !working_ && !InDialog() && after_work) after_work();
  return done;
}

void WorkGate::ReportError() const {
  try {
    report_error_();
  } catch (...) {
    return;
  }
}

void WorkGate::CheckEnd() const {
  if (ending_ && std::uncaught_exceptions() == 0) end_work_();
}

}  // namespace wx_windows
