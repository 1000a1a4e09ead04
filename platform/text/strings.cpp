// Small text operations with the classic rules.
#include "platform/text/strings.h"

#include <algorithm>

namespace text {

std::wstring_view TrimLeft(std::wstring_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(L' '), text.size()));
  return text;
}

std::wstring_view TrimRight(std::wstring_view text) {
  return text.substr(0, text.find_last_not_of(L' ') + 1);
}

std::wstring_view Trim(std::wstring_view text) { return TrimRight(TrimLeft(text)); }

wchar_t ToUpper(wchar_t character) {
  constexpr wchar_t kCaseDistance = L'a' - L'A';
  const bool ascii = character >= L'a' && character <= L'z';
  const bool latin =
      character >= 0xE0 && character <= 0xFE && character != 0xF7;  // not the division sign
  if (ascii || latin) return static_cast<wchar_t>(character - kCaseDistance);
  switch (character) {
    case 0x00FF:
      return 0x0178;
    case 0x0153:
    case 0x0161:
    case 0x017E:
      return static_cast<wchar_t>(character - 1);
    default:
      return character;
  }
}

std::wstring ToUpper(std::wstring_view text) {
  std::wstring upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), [](wchar_t c) { return ToUpper(c); });
  return upper;
}

bool EqualsNoCase(std::wstring_view a, std::wstring_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](wchar_t x, wchar_t y) { return ToUpper(x) == ToUpper(y); });
}

std::wstring ReplaceAll(std::wstring_view text, std::wstring_view from, std::wstring_view to) {
  if (from.empty()) return std::wstring(text);
  std::wstring result;
  std::size_t begin = 0;
  for (std::size_t found = text.find(from); found != std::wstring_view::npos;
       found = text.find(from, begin)) {
    result.append(text, begin, found - begin).append(to);
    begin = found + from.size();
  }
  return result.append(text, begin);
}

}  // namespace text
