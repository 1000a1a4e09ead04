// Conversions between wide text (UTF-16 or UTF-32 units, by system), UTF-8 and UTF-16.
#include <cstdint>

#include "platform/text/code_page.h"

namespace text {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kLastCodePoint = 0x10FFFF;
constexpr char32_t kFirstSurrogate = 0xD800;
constexpr char32_t kFirstLowSurrogate = 0xDC00;
constexpr char32_t kLastSurrogate = 0xDFFF;
constexpr char32_t kFirstSupplementary = 0x10000;
constexpr unsigned kSurrogateBits = 10;
constexpr char32_t kSurrogateMask = 0x3FF;

constexpr bool IsSurrogate(char32_t c) { return c >= kFirstSurrogate && c <= kLastSurrogate; }
constexpr bool IsHighSurrogate(char32_t c) {
  return c >= kFirstSurrogate && c < kFirstLowSurrogate;
}
constexpr bool IsLowSurrogate(char32_t c) { return c >= kFirstLowSurrogate && c <= kLastSurrogate; }

// Takes one code point off 16- or 32-bit units, from `at` on.
template <class Unit>
char32_t TakeCodePoint(std::basic_string_view<Unit> units, std::size_t& at) {
  const auto unit = static_cast<char32_t>(units[at++]);
  if constexpr (sizeof(Unit) == 2) {
    if (IsHighSurrogate(unit) && at < units.size()) {
      const auto low = static_cast<char32_t>(units[at]);
      if (IsLowSurrogate(low)) {
        ++at;
        return kFirstSupplementary + ((unit & kSurrogateMask) << kSurrogateBits) +
               (low & kSurrogateMask);
      }
    }
  }
  return IsSurrogate(unit) || unit > kLastCodePoint ? kReplacement : unit;
}

template <class Unit>
void AppendCodePoint(std::basic_string<Unit>& units, char32_t c) {
  if constexpr (sizeof(Unit) == 2) {
    if (c >= kFirstSupplementary) {
      c -= kFirstSupplementary;
      units += static_cast<Unit>(kFirstSurrogate + (c >> kSurrogateBits));
      units += static_cast<Unit>(kFirstLowSurrogate + (c & kSurrogateMask));
      return;
    }
  }
  units += static_cast<Unit>(c);
}

void AppendUtf8(std::string& bytes, char32_t c) {
  if (c < 0x80) {
    bytes += static_cast<char>(c);
    return;
  }
  if (c < 0x800) {
    bytes += static_cast<char>(0xC0 | c >> 6);
  } else {
    if (c < kFirstSupplementary) {
      bytes += static_cast<char>(0xE0 | c >> 12);
    } else {
      bytes += static_cast<char>(0xF0 | c >> 18);
      bytes += static_cast<char>(0x80 | (c >> 12 & 0x3F));
    }
    bytes += static_cast<char>(0x80 | (c >> 6 & 0x3F));
  }
  bytes += static_cast<char>(0x80 | (c & 0x3F));
}

// What a UTF-8 lead byte announces: how many bytes follow, and the range of the first of them
// (which is how overlong forms, surrogates and values beyond the last code point are excluded).
struct Lead {
  int following;
  unsigned char lowest;
  unsigned char highest;
};

constexpr Lead LeadOf(unsigned char byte) {
  if (byte >= 0xC2 && byte <= 0xDF) return {1, 0x80, 0xBF};
  if (byte == 0xE0) return {2, 0xA0, 0xBF};
  if (byte == 0xED) return {2, 0x80, 0x9F};
  if (byte >= 0xE1 && byte <= 0xEF) return {2, 0x80, 0xBF};
  if (byte == 0xF0) return {3, 0x90, 0xBF};
  if (byte >= 0xF1 && byte <= 0xF3) return {3, 0x80, 0xBF};
  if (byte == 0xF4) return {3, 0x80, 0x8F};
  return {0, 0, 0};
}

// Takes one code point off a UTF-8 text; the longest piece that could have begun one is replaced
// as a whole.
char32_t TakeUtf8(std::string_view bytes, std::size_t& at) {
  const auto first = static_cast<unsigned char>(bytes[at++]);
  if (first < 0x80) return first;
  Lead lead = LeadOf(first);
  if (lead.following == 0) return kReplacement;
  char32_t c = first & (0x3Fu >> lead.following);
  for (; lead.following > 0; --lead.following) {
    if (at == bytes.size()) return kReplacement;
    const auto next = static_cast<unsigned char>(bytes[at]);
    if (next < lead.lowest || next > lead.highest) return kReplacement;
    c = c << 6 | (next & 0x3Fu);
    ++at;
    lead.lowest = 0x80;
    lead.highest = 0xBF;
  }
  return c;
}

}  // namespace

std::wstring Utf8ToWide(std::string_view bytes) {
  std::wstring text;
  text.reserve(bytes.size());
  for (std::size_t at = 0; at < bytes.size();) AppendCodePoint(text, TakeUtf8(bytes, at));
  return text;
}

std::string WideToUtf8(std::wstring_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) AppendUtf8(bytes, TakeCodePoint(text, at));
  return bytes;
}

std::wstring Utf16ToWide(std::u16string_view units) {
  std::wstring text;
  text.reserve(units.size());
  for (std::size_t at = 0; at < units.size();) AppendCodePoint(text, TakeCodePoint(units, at));
  return text;
}

std::u16string WideToUtf16(std::wstring_view text) {
  std::u16string units;
  units.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) AppendCodePoint(units, TakeCodePoint(text, at));
  return units;
}

}  // namespace text
