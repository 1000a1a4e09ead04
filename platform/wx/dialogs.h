// Message boxes and the file dialog.
#pragma once

#include <optional>
#include <string>

#include "platform/controls/services.h"
#include "platform/wx/window_system.h"
#include "platform/wx/work_gate.h"

namespace wx_windows {

// Message boxes, in front of the form when it is there. A text that is too long for one gets a box
// in which it can be scrolled. When the session ends there are no more, and the answer is no.
class Prompt final : public controls::Prompt {
 public:
  // Both must outlive it.
  Prompt(const Texts& texts, WorkGate& gate) : texts_(texts), gate_(gate) {}

  void ShowMessage(const std::wstring& text, const std::wstring& caption) override;
  bool AskYesNo(const std::wstring& text, const std::wstring& caption) override;

 private:
  const Texts& texts_;
  WorkGate& gate_;
};

// The system's dialog for opening a file. Refuses, with a message, a file that may not be written.
class FileDialog final : public controls::FileDialog {
 public:
  // All must outlive it.
  FileDialog(const Texts& texts, controls::Prompt& prompt, WorkGate& gate)
      : texts_(texts), prompt_(prompt), gate_(gate) {}

  std::optional<std::wstring> ChooseFile(const Request& request) override;

 private:
  const Texts& texts_;
  controls::Prompt& prompt_;
  WorkGate& gate_;
};

// Message boxes that wait for an answer go without one.
void LeaveMessageBoxes();

}  // namespace wx_windows
