// Message boxes on the command line.
#include "tools/paptool/console_prompt.h"

#include "tools/paptool/console.h"

namespace paptool {

void ConsolePrompt::ShowMessage(const std::wstring& text, const std::wstring&) {
  PrintMessage(OneLine(text));
}

bool ConsolePrompt::AskYesNo(const std::wstring& text, const std::wstring&) {
  PrintMessage(OneLine(text));
  return false;
}

}  // namespace paptool
