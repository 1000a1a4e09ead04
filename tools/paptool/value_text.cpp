// Database values as the command `rows` prints them.
#include "tools/paptool/value_text.h"

#include <array>
#include <charconv>
#include <concepts>
#include <span>

#include "platform/text/code_page.h"
#include "platform/text/date.h"
#include "platform/text/exact_decimal.h"

namespace paptool {
namespace {

std::string Hex(std::span<const std::byte> bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string hex;
  hex.reserve(2 * bytes.size());
  for (const std::byte byte : bytes) {
    const auto value = std::to_integer<unsigned>(byte);
    hex += kDigits[value >> 4];
    hex += kDigits[value & 0xF];
  }
  return hex;
}

struct ToText {
  std::string operator()(jet::Null) const { return "\\N"; }
  std::string operator()(bool value) const { return value ? "True" : "False"; }

  template <class Number>
  requires(std::integral<Number> || std::floating_point<Number>) std::string operator()(
      Number value) const {
    std::array<char, 32> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return {digits.data(), end};
  }

  std::string operator()(const jet::Currency& value) const {
    return text::PlainDecimal(text::Currency{value.scaled});
  }

  std::string operator()(const jet::Numeric& value) const {
    return text::PlainDecimal(text::Decimal{
        .negative = value.negative, .magnitude = value.magnitude, .scale = value.scale});
  }

  std::string operator()(const jet::Date& value) const {
    return text::WideToUtf8(text::FormatDateTime(value.days));
  }

  std::string operator()(const jet::Bytes& value) const { return Hex(value); }

  std::string operator()(const std::u16string& value) const {
    return Escaped(text::WideToUtf8(text::Utf16ToWide(value)));
  }

  // Stored as a 32-bit and two 16-bit numbers, little-endian, and eight bytes in their order.
  std::string operator()(const jet::Guid& value) const {
    constexpr std::array<std::size_t, 16> kOrder = {3, 2, 1,  0,  5,  4,  7,  6,
                                                    8, 9, 10, 11, 12, 13, 14, 15};
    std::string text = "{";
    for (std::size_t i = 0; i < kOrder.size(); ++i) {
      if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
      text += Hex(std::span(value.stored).subspan(kOrder[i], 1));
    }
    return text + '}';
  }
};

}  // namespace

std::string ValueText(const jet::Value& value) { return std::visit(ToText{}, value); }

std::string Escaped(std::string_view utf8) {
  std::string escaped;
  escaped.reserve(utf8.size());
  for (const char character : utf8) {
    switch (character) {
      case '\t':
        escaped += "\\t";
        break;
      case '\r':
        escaped += "\\r";
        break;
      case '\n':
        escaped += "\\n";
        break;
      case '\\':
        escaped += "\\\\";
        break;
      default:
        escaped += character;
    }
  }
  return escaped;
}

}  // namespace paptool
