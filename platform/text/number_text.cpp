// Numbers as characters, free of any locale.
#include "platform/text/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace text {
namespace {

// A finite number as 0.d1d2d3... digits without trailing zeros, times ten to the power of exponent
// + 1.
struct Digits {
  bool negative = false;
  std::string digits;
  int exponent = 0;  // of the first digit: 0 for 1..9
};

template <class Float>
Digits Split(Float value, int count) {
  std::array<char, 64> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(value),
                                 std::chars_format::scientific, count - 1);
  const std::string_view text(buffer.data(), static_cast<std::size_t>(end.ptr - buffer.data()));
  const std::size_t e = text.find('e');
  Digits result{.negative = std::signbit(value), .digits = {}, .exponent = 0};
  for (const char c : text.substr(0, e)) {
    if (c != '.') result.digits += c;
  }
  result.digits.erase(std::max<std::size_t>(result.digits.find_last_not_of('0') + 1, 1));
  std::size_t exponent_at = e + 1;
  if (text[exponent_at] == '+') ++exponent_at;
  std::from_chars(text.data() + exponent_at, text.data() + text.size(), result.exponent);
  return result;
}

std::string Scientific(const Digits& number) {
  std::string text(1, number.digits.front());
  if (number.digits.size() > 1) text.append(1, '.').append(number.digits, 1);
  text += number.exponent < 0 ? "E-" : "E+";
  const std::string exponent = std::to_string(std::abs(number.exponent));
  if (exponent.size() < 2) text += '0';
  return text + exponent;
}

std::string Fixed(const Digits& number) {
  const std::string& digits = number.digits;
  if (number.exponent < 0) {
    return "0." + std::string(static_cast<std::size_t>(-number.exponent - 1), '0') + digits;
  }
  const auto whole = static_cast<std::size_t>(number.exponent) + 1;
  if (digits.size() <= whole) return digits + std::string(whole - digits.size(), '0');
  return digits.substr(0, whole) + '.' + digits.substr(whole);
}

template <class Float>
std::string Plain(Float value, int count) {
  if (std::isnan(value)) return "-1.#IND";
  if (std::isinf(value)) return value < 0 ? "-1.#INF" : "1.#INF";
  if (value == 0) return "0";
  const Digits number = Split(value, count);
  const int decimals = static_cast<int>(number.digits.size()) - 1 - number.exponent;
  const bool scientific = number.exponent >= count || decimals > count;
  return (number.negative ? "-" : "") + (scientific ? Scientific(number) : Fixed(number));
}

// Whether a number that does not fit double is too small for it rather than too large: the sign of
// the power of ten of its first digit tells.
bool IsTiny(std::string_view text) {
  const std::size_t e = std::min(text.find('e'), text.size());
  const std::string_view mantissa = text.substr(0, e);
  std::int64_t power = 0;
  if (e < text.size()) {
    std::string_view exponent = text.substr(e + 1);
    const bool negative = exponent.front() == '-';
    if (negative) exponent.remove_prefix(1);
    const auto read = std::from_chars(exponent.data(), exponent.data() + exponent.size(), power);
    if (read.ec == std::errc::result_out_of_range) return negative;
    if (negative) power = -power;
  }
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  const std::size_t first = mantissa.find_first_of("123456789");
  return power + static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first) < 0;
}

}  // namespace

std::string PlainNumber(double value, int digits) { return Plain(value, digits); }
std::string PlainNumber(float value, int digits) { return Plain(value, digits); }

std::optional<double> ReadPlainNumber(std::string_view text) {
  double value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
  if (read.ptr != text.data() + text.size()) return std::nullopt;
  if (read.ec == std::errc::result_out_of_range && IsTiny(text)) return 0.0;
  if (read.ec != std::errc() || !std::isfinite(value)) return std::nullopt;
  return value;
}

}  // namespace text
