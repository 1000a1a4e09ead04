// Lets one piece of the program's work run at a time, whatever the user clicks meanwhile.
#pragma once

#include <chrono>
#include <functional>
#include <utility>

namespace wx_windows {

// Every call from a window into the program passes this gate, and no exception gets out of it.
// One thread.
class WorkGate {
 public:
  // As those of Program (window_system.h).
  WorkGate(std::function<void()> end_work, std::function<void()> report_error)
      : end_work_(std::move(end_work)), report_error_(std::move(report_error)) {}
  WorkGate(const WorkGate&) = delete;
  WorkGate& operator=(const WorkGate&) = delete;

  // Is called before each piece of work.
  std::function<void()> before_work;
  // Is called at the end of work that was long enough for the user to click or type meanwhile,
  // while that still counts as input during work.
  std::function<void()> drop_input;
  // Is called after each piece of work, when nothing of the program is running any more.
  std::function<void()> after_work;

  // Does a piece of work, unless one is running already. Whether it was done, to its end.
  bool Work(const std::function<void()>& work);
  bool Working() const { return working_; }
  // Whether the work that is running is long enough for the user to wonder.
  bool WorkingLong() const;

  // For what must be done even while the program works: only keeps its exceptions.
  bool Guard(const std::function<void()>& code);

  // The user has closed the form, or the session ends: the work that is running ends at its next
  // CheckEnd.
  void End() { ending_ = true; }
  bool Ending() const { return ending_; }

  // As End; and nobody is there any more to read or answer what the work still wants to tell.
  void EndUnattended() { ending_ = unattended_ = true; }
  bool Unattended() const { return unattended_; }

  // While one lives, a dialog waits for the user: it gets what the form does not.
  class Dialog {
   public:
    explicit Dialog(WorkGate& gate) : gate_(gate) { ++gate_.dialogs_; }
    ~Dialog() { --gate_.dialogs_; }
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;

   private:
    WorkGate& gate_;
  };
  bool InDialog() const { return dialogs_ > 0; }

  // Throws what ends the work if it is to end; never while an exception is on its way already.
  void CheckEnd() const;

 private:
  void ReportError() const;

  std::function<void()> end_work_;
  std::function<void()> report_error_;
  bool working_ = false;
  std::chrono::steady_clock::time_point begin_;  // of the work
  bool ending_ = false;
  bool unattended_ = false;
  int dialogs_ = 0;
};

}  // namespace wx_windows
