// Conversions between Variant, numbers and texts by the user's locale.
#include "platform/text/conversion.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/text/date.h"
#include "platform/text/exact_decimal.h"
#include "platform/text/locale.h"
#include "platform/text/number_text.h"
#include "platform/text/strings.h"

namespace text {
namespace {

constexpr int kDoubleDigits = 15;
constexpr int kSingleDigits = 7;
constexpr double kTrueNumber = -1;

bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }
bool IsSign(wchar_t c) { return c == L'+' || c == L'-'; }

// Takes digits off the front of `text` into `plain`, skipping `skipped` between them.
void TakeDigits(std::wstring_view& text, std::string& plain, wchar_t skipped) {
  while (!text.empty() && (IsDigit(text.front()) || (text.front() == skipped && skipped != 0))) {
    if (IsDigit(text.front())) plain += static_cast<char>(text.front());
    text.remove_prefix(1);
  }
}

bool TakeExponent(std::wstring_view& text, std::string& plain) {
  if (text.empty() || (ToUpper(text.front()) != L'E' && ToUpper(text.front()) != L'D')) return true;
  text.remove_prefix(1);
  plain += 'e';
  if (!text.empty() && IsSign(text.front())) {
    if (text.front() == L'-') plain += '-';
    text.remove_prefix(1);
  }
  const std::size_t before = plain.size();
  TakeDigits(text, plain, 0);
  return plain.size() > before;
}

// Takes the sign or the brackets around a number off. Nothing when there is more than one of them.
std::optional<bool> TakeSign(std::wstring_view& text) {
  bool negative = false;
  int signs = 0;
  if (text.size() > 1 && text.front() == L'(' && text.back() == L')') {
    text = Trim(text.substr(1, text.size() - 2));
    negative = true;
    ++signs;
  }
  if (!text.empty() && IsSign(text.front())) {
    negative = text.front() == L'-';
    text = TrimLeft(text.substr(1));
    ++signs;
  }
  if (!text.empty() && IsSign(text.back())) {
    negative = text.back() == L'-';
    text = TrimRight(text.substr(0, text.size() - 1));
    ++signs;
  }
  return signs > 1 ? std::nullopt : std::optional(negative);
}

std::wstring WithUserMark(const std::string& plain) {
  std::wstring text(plain.begin(), plain.end());
  std::replace(text.begin(), text.end(), L'.', CurrentLocale().decimal_mark);
  return text;
}

std::wstring Hex(const std::byte* bytes, std::size_t count) {
  constexpr wchar_t kDigits[] = L"0123456789abcdef";
  std::wstring text;
  text.reserve(2 * count);
  for (std::size_t i = 0; i < count; ++i) {
    const auto value = std::to_integer<unsigned>(bytes[i]);
    text += kDigits[value >> 4];
    text += kDigits[value & 0xF];
  }
  return text;
}

// The first three groups of an identifier are stored as little-endian numbers.
std::wstring GuidText(const Guid& guid) {
  constexpr std::size_t kOrder[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  std::wstring text = L"{";
  for (std::size_t i = 0; i < guid.bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += L'-';
    text += Hex(&guid.bytes[kOrder[i]], 1);
  }
  return text + L"}";
}

std::wstring DateText(double days) {
  return days == std::trunc(days) ? FormatDate(days) : FormatDateTime(days);
}

struct DoubleOf {
  std::optional<double> operator()(Null) const { return std::nullopt; }
  std::optional<double> operator()(bool value) const { return value ? kTrueNumber : 0; }
  std::optional<double> operator()(std::uint8_t value) const { return value; }
  std::optional<double> operator()(std::int16_t value) const { return value; }
  std::optional<double> operator()(std::int32_t value) const { return value; }
  std::optional<double> operator()(float value) const { return value; }
  std::optional<double> operator()(double value) const { return value; }
  std::optional<double> operator()(const Date& value) const { return value.days; }
  std::optional<double> operator()(const Currency& value) const {
    return ReadPlainNumber(PlainDecimal(value));
  }
  std::optional<double> operator()(const Decimal& value) const {
    return ReadPlainNumber(PlainDecimal(value));
  }
  std::optional<double> operator()(const std::wstring& value) const { return ParseNumber(value); }
  std::optional<double> operator()(const Binary&) const { return std::nullopt; }
  std::optional<double> operator()(const Guid&) const { return std::nullopt; }
};

struct TextOf {
  std::wstring operator()(Null) const { return {}; }
  std::wstring operator()(bool value) const { return value ? L"True" : L"False"; }
  std::wstring operator()(std::uint8_t value) const { return std::to_wstring(value); }
  std::wstring operator()(std::int16_t value) const { return std::to_wstring(value); }
  std::wstring operator()(std::int32_t value) const { return std::to_wstring(value); }
  std::wstring operator()(float value) const { return FormatSingle(value); }
  std::wstring operator()(double value) const { return FormatNumber(value); }
  std::wstring operator()(const Date& value) const { return DateText(value.days); }
  std::wstring operator()(const Currency& value) const { return WithUserMark(PlainDecimal(value)); }
  std::wstring operator()(const Decimal& value) const { return WithUserMark(PlainDecimal(value)); }
  std::wstring operator()(const std::wstring& value) const { return value; }
  std::wstring operator()(const Binary& value) const { return Hex(value.data(), value.size()); }
  std::wstring operator()(const Guid& value) const { return GuidText(value); }
};

template <class Integer>
std::optional<Integer> ToInteger(const Variant& value) {
  const std::optional<double> number = ToDouble(value);
  if (!number) return std::nullopt;
  const double rounded = std::nearbyint(*number);
  // Also false for a value that is not a number.
  const bool fits = rounded >= std::numeric_limits<Integer>::min() &&
                    rounded <= std::numeric_limits<Integer>::max();
  return fits ? std::optional(static_cast<Integer>(rounded)) : std::nullopt;
}

}  // namespace

std::optional<double> ParseNumber(std::wstring_view text) {
  text = Trim(text);
  const std::optional<bool> negative = TakeSign(text);
  // A thousands mark stands between digits: what begins with one is no number.
  const Locale locale = CurrentLocale();
  if (!negative || text.empty() || text.front() == locale.thousands_mark) return std::nullopt;

  std::string plain = *negative ? "-" : "";
  const std::size_t sign_size = plain.size();
  TakeDigits(text, plain, locale.thousands_mark);
  std::size_t digits = plain.size() - sign_size;
  if (digits == 0) plain += '0';
  if (!text.empty() && text.front() == locale.decimal_mark) {
    text.remove_prefix(1);
    plain += '.';
    const std::size_t before = plain.size();
    TakeDigits(text, plain, 0);
    digits += plain.size() - before;
  }
  if (digits == 0 || !TakeExponent(text, plain) || !text.empty()) return std::nullopt;
  return ReadPlainNumber(plain);
}

std::wstring FormatNumber(double value) { return WithUserMark(PlainNumber(value, kDoubleDigits)); }

std::wstring FormatSingle(float value) { return WithUserMark(PlainNumber(value, kSingleDigits)); }

std::optional<double> ToDouble(const Variant& value) {
  return std::visit(DoubleOf{}, value.value());
}

std::optional<std::int32_t> ToInt32(const Variant& value) { return ToInteger<std::int32_t>(value); }
std::optional<std::int16_t> ToInt16(const Variant& value) { return ToInteger<std::int16_t>(value); }
std::optional<std::uint8_t> ToByte(const Variant& value) { return ToInteger<std::uint8_t>(value); }

std::optional<bool> ToBoolean(const Variant& value) {
  if (const auto* truth = value.GetIf<bool>()) return *truth;
  if (const auto* text = value.GetIf<std::wstring>()) {
    if (EqualsNoCase(Trim(*text), L"True")) return true;
    if (EqualsNoCase(Trim(*text), L"False")) return false;
  }
  const std::optional<double> number = ToDouble(value);
  return number ? std::optional(*number != 0) : std::nullopt;
}

std::wstring ToText(const Variant& value) { return std::visit(TextOf{}, value.value()); }

}  // namespace text
