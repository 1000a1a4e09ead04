// Real windows: shows forms on the screen, speaks to the user, and keeps windows alive during work.
//
// The only header of this folder that the rest of the program includes; it knows nothing of the
// toolkit behind it. docs/windows.md tells how the windows behave.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>

#include "platform/controls/form.h"
#include "platform/controls/services.h"

namespace wx_windows {

// What the windows need to know of the program.
struct Program {
  std::string name;                       // what the system calls it
  std::span<const unsigned char> icon{};  // the bytes of an .ico file, which must stay
  // Throws something that ends the work in hand: called out of DoEvents when the user has closed
  // the form in the middle of it.
  std::function<void()> end_work;
  // Tells the user of the exception in hand, which the program's code has let escape; called inside
  // a catch block. What it throws is ignored.
  std::function<void()> report_error;
};

// Texts in the user's language; "&" marks an access key in those of buttons. What is empty is left
// to the system.
struct Texts {
  std::wstring ok{};
  std::wstring yes{};
  std::wstring no{};
  std::wstring read_only_file{};  // refuses a chosen file; "%s" stands for its path
};

// The window system of one program, with at most one form.
//
// While code of the program runs (the start, or what a click began) clicks and keys on the form are
// dropped; painting, scrolling, resizing and closing go on whenever that code calls DoEvents. A
// close that the form permits at such a moment hides it, ends the work through Program::end_work,
// and then unloads the form: never anything that is still running.
//
// One thread. The services may be used while Run runs, and stay where they are.
class WindowSystem {
 public:
  explicit WindowSystem(Program program);
  ~WindowSystem();
  WindowSystem(const WindowSystem&) = delete;
  WindowSystem& operator=(const WindowSystem&) = delete;

  controls::Prompt& Prompt();
  controls::FileDialog& FileDialog();
  controls::Clipboard& Clipboard();
  controls::EventPump& EventPump();

  void SetTexts(Texts texts);

  // Makes the window of a form, which appears when the form is shown. Its size is reported to the
  // form before this returns. Form and controls must live until Run returns.
  void Load(controls::Form& form);

  // Begins with `start`, then lets the user work until the form is unloaded. Returns the exit
  // status of the program: 0; 1 when `start` returns false, throws, or cannot be called because
  // there is no display, which is told on standard error. Once for a process.
  int Run(const std::function<bool()>& start);

 private:
  class Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace wx_windows
