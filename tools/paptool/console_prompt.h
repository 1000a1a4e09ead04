// Message boxes on the command line.
#pragma once

#include "platform/controls/services.h"

namespace paptool {

// A message box becomes a line on standard error. A question is answered No: there is nobody to
// ask.
class ConsolePrompt final : public controls::Prompt {
 public:
  void ShowMessage(const std::wstring& text, const std::wstring& caption) override;
  bool AskYesNo(const std::wstring& text, const std::wstring& caption) override;
};

}  // namespace paptool
