// Between wide text and the encodings that bytes come in: the system's single-byte code page,
// UTF-8 and UTF-16. All conversions are total and take linear time.
#pragma once

#include <string>
#include <string_view>

namespace text {

// The system's single-byte code page: on Windows the ANSI code page; elsewhere 1252, in which the
// five bytes without a character (81, 8D, 8F, 90, 9D hex) stand for the control characters of the
// same number, so that every byte survives a round trip. There a character outside the code page
// becomes "?"; Windows may choose a similar letter first.
std::wstring AnsiToWide(std::string_view bytes);
std::string WideToAnsi(std::wstring_view text);

// Malformed input gives U+FFFD for each piece that cannot be read: bad UTF-8 sequences (overlong
// and surrogate ones included), lone surrogates, wide characters beyond U+10FFFF.
std::wstring Utf8ToWide(std::string_view bytes);
std::string WideToUtf8(std::wstring_view text);
std::wstring Utf16ToWide(std::u16string_view units);
std::u16string WideToUtf16(std::wstring_view text);

}  // namespace text
