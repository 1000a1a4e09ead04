// What long work and message boxes need of the window system, as interfaces, so that everything
// runs the same in front of a window, on a command line and in a test.
#pragma once

#include <string>

namespace controls {

// Speaks to the user and waits until the user has answered.
class Prompt {
 public:
  virtual ~Prompt() = default;
  // A message with the critical icon and one OK button.
  virtual void ShowMessage(const std::wstring& text, const std::wstring& caption) = 0;
  // A question with Yes and No; true for Yes.
  virtual bool AskYesNo(const std::wstring& text, const std::wstring& caption) = 0;
};

// Lets windows repaint while long work runs on their thread.
class EventPump {
 public:
  virtual ~EventPump() = default;
  // Handles what waits and returns. Cheap enough to be called for every record: an implementation
  // limits itself to some fifty real yields a second. It may throw to end the work in hand.
  virtual void DoEvents() = 0;
};

// For programs without windows: there is nothing to repaint.
class NoEventPump final : public EventPump {
 public:
  void DoEvents() override {}
};

class Clock {
 public:
  virtual ~Clock() = default;
  // The local date and time in days since 1899-12-30 (see text/date.h), cut to whole seconds.
  virtual double Now() const = 0;
};

// The clock of the machine, in the user's time zone.
class SystemClock final : public Clock {
 public:
  double Now() const override;
};

}  // namespace controls
