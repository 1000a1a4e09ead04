// What the system says about the user's locale; CurrentLocale() asks once.
#pragma once

#include <string>

namespace text {

// Empty where the system has no such mark. A mark of several characters is cut to its first.
struct SystemMarks {
  std::wstring decimal;
  std::wstring thousands;
};

SystemMarks AskSystemMarks();

}  // namespace text
