// Code page 1252, the single-byte code page of systems that have none of their own.
#include "platform/text/code_page.h"

#include <algorithm>
#include <array>

namespace text {
namespace {

// The characters of the bytes 80 to 9F hex; every other byte is the character of the same number.
// The five bytes without a character stand for the control character of their own number.
constexpr unsigned char kFirstSpecial = 0x80;
constexpr std::array<wchar_t, 32> kSpecial = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
constexpr unsigned char kEndSpecial = kFirstSpecial + kSpecial.size();

constexpr wchar_t Decode(unsigned char byte) {
  return byte >= kFirstSpecial && byte < kEndSpecial ? kSpecial[byte - kFirstSpecial]
                                                     : static_cast<wchar_t>(byte);
}

char Encode(wchar_t character) {
  const auto code = static_cast<char32_t>(character);
  if (code < kFirstSpecial || (code >= kEndSpecial && code <= 0xFF)) return static_cast<char>(code);
  const auto* const found = std::find(kSpecial.begin(), kSpecial.end(), character);
  return found == kSpecial.end() ? '?'
                                 : static_cast<char>(kFirstSpecial + (found - kSpecial.begin()));
}

}  // namespace

std::wstring AnsiToWide(std::string_view bytes) {
  std::wstring text(bytes.size(), L'\0');
  std::transform(bytes.begin(), bytes.end(), text.begin(),
                 [](char byte) { return Decode(static_cast<unsigned char>(byte)); });
  return text;
}

std::string WideToAnsi(std::wstring_view text) {
  std::string bytes(text.size(), '\0');
  std::transform(text.begin(), text.end(), bytes.begin(), Encode);
  return bytes;
}

}  // namespace text
