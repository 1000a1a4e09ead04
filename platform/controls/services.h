// What long work and message boxes need of the window system, as interfaces, so that everything
// runs the same in front of a window, on a command line and in a test.
#pragma once

#include <optional>
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

// Lets the user choose a file.
class FileDialog {
 public:
  struct Request {
    std::wstring title;
    std::wstring filter;  // "description|*.ext|description|*.*": what to offer, the first at once
    std::wstring file;    // path of the file to begin with; empty for none
  };

  virtual ~FileDialog() = default;
  // The path of the file that was chosen, which exists; nothing when the user thought better of it.
  // Offers no box for opening read-only and takes no file that may only be read.
  virtual std::optional<std::wstring> ChooseFile(const Request& request) = 0;
};

class Clipboard {
 public:
  virtual ~Clipboard() = default;
  // Both throw text::RuntimeError when another program does not let go of the clipboard.
  virtual void Clear() = 0;
  virtual void SetText(const std::wstring& text) = 0;
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
