// Digits of currency amounts and of 128-bit decimals.
#include "platform/text/exact_decimal.h"

#include <algorithm>
#include <cstdint>

namespace text {
namespace {

constexpr std::size_t kCurrencyDecimals = 4;

// Puts the mark before the last `scale` of the digits.
std::string Place(std::string digits, std::size_t scale, bool negative) {
  if (digits.size() <= scale) digits.insert(0, scale + 1 - digits.size(), '0');
  if (scale > 0) {
    digits.insert(digits.size() - scale, 1, '.');
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.back() == '.') digits.pop_back();
  }
  return negative && digits != "0" ? "-" + digits : digits;
}

// The decimal digits of a magnitude, by repeated long division.
std::string DigitsOf(std::array<std::uint32_t, 4> magnitude) {
  std::string reversed;
  do {
    std::uint64_t remainder = 0;
    for (std::uint32_t& word : magnitude) {
      const std::uint64_t value = remainder << 32 | word;
      word = static_cast<std::uint32_t>(value / 10);
      remainder = value % 10;
    }
    reversed += static_cast<char>('0' + remainder);
  } while (std::any_of(magnitude.begin(), magnitude.end(), [](auto word) { return word != 0; }));
  return {reversed.rbegin(), reversed.rend()};
}

}  // namespace

std::string PlainDecimal(const Currency& value) {
  const bool negative = value.scaled < 0;
  // Negated as unsigned: the smallest amount has no positive counterpart.
  const auto bits = static_cast<std::uint64_t>(value.scaled);
  return Place(std::to_string(negative ? 0 - bits : bits), kCurrencyDecimals, negative);
}

std::string PlainDecimal(const Decimal& value) {
  return Place(DigitsOf(value.magnitude), value.scale, value.negative);
}

}  // namespace text
