// Small text operations that the standard library lacks, with the classic rules.
#pragma once

#include <string>
#include <string_view>

namespace text {

// Without blanks (U+0020 only: tabs and line ends stay) at both ends, the front, the back. The
// views point into `text`.
std::wstring_view Trim(std::wstring_view text);
std::wstring_view TrimLeft(std::wstring_view text);
std::wstring_view TrimRight(std::wstring_view text);

// The upper-case form of every letter that code page 1252 holds in both cases (so U+00FF becomes
// U+0178, and the sharp s stays), independent of any locale; other characters stay.
wchar_t ToUpper(wchar_t character);
std::wstring ToUpper(std::wstring_view text);

// Equality of the upper-case forms.
bool EqualsNoCase(std::wstring_view a, std::wstring_view b);

// Every occurrence of `from` replaced by `to`, from left to right; what was put in is not searched
// again. An empty `from` changes nothing.
std::wstring ReplaceAll(std::wstring_view text, std::wstring_view from, std::wstring_view to);

}  // namespace text
