// What of the console is the same on every system.
#include "tools/paptool/console.h"

#include <iostream>

#include "platform/text/code_page.h"

namespace paptool {

void PrintLine(std::string_view utf8) { std::cout << utf8 << '\n'; }

void PrintLine(std::wstring_view line) { PrintLine(text::WideToUtf8(line)); }

void PrintMessage(std::wstring_view line) {
  std::cout.flush();  // keeps the order in which things happened where both go to one place
  std::cerr << text::WideToUtf8(line) << '\n';
}

void PrintError(std::wstring_view line) { PrintMessage(L"paptool: " + std::wstring(line)); }

std::wstring OneLine(std::wstring_view text) {
  constexpr std::wstring_view kLineEnds = L"\r\n";
  std::wstring line;
  while (!text.empty()) {
    const std::size_t end = text.find_first_of(kLineEnds);
    line += text.substr(0, end);
    const std::size_t next = text.find_first_not_of(kLineEnds, end);
    if (end == std::wstring_view::npos || next == std::wstring_view::npos) break;
    line += L" / ";
    text.remove_prefix(next);
  }
  return line;
}

bool FlushOutput() { return static_cast<bool>(std::cout.flush()); }

}  // namespace paptool
