// Conversions between column values, field values and constants.
#include "platform/database/value_conversion.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "platform/database/comparison.h"
#include "platform/database/errors.h"
#include "platform/jet/key_encoding.h"
#include "platform/text/code_page.h"
#include "platform/text/conversion.h"
#include "platform/text/exact_decimal.h"

namespace database {
namespace {

using jet::ColumnType;

// The days of 0100-01-01 and of the day behind 9999-12-31.
constexpr double kFirstDay = -657434;
constexpr double kEndDay = 2958466;

constexpr int kNumericDigits = 28;
constexpr std::size_t kLongestIndexedText = 255;
constexpr double kCurrencyScale = 10000;

struct Show {
  text::Variant operator()(jet::Null) const { return {}; }
  text::Variant operator()(bool value) const { return value; }
  text::Variant operator()(std::uint8_t value) const { return value; }
  text::Variant operator()(std::int16_t value) const { return value; }
  text::Variant operator()(std::int32_t value) const { return value; }
  text::Variant operator()(jet::Currency value) const { return text::Currency{value.scaled}; }
  text::Variant operator()(float value) const { return value; }
  text::Variant operator()(double value) const { return value; }
  text::Variant operator()(jet::Date value) const { return text::Date{value.days}; }
  text::Variant operator()(const jet::Bytes& value) const { return value; }
  text::Variant operator()(const std::u16string& value) const { return text::Utf16ToWide(value); }
  text::Variant operator()(const jet::Guid& value) const { return text::Guid{value.stored}; }
  text::Variant operator()(const jet::Numeric& value) const {
    return text::Decimal{value.negative, value.magnitude, value.scale};
  }
};

// The number a value stands for; 3421 when it stands for none.
double RequireNumber(const text::Variant& value) {
  const std::optional<double> number = text::ToDouble(value);
  if (!number) Fail(Failure::kWrongValueType);
  if (!std::isfinite(*number)) Fail(Failure::kOutOfRange);
  return *number;
}

// The nearest whole number, halves to the even one; 3349 outside the range of `Integer`.
template <class Integer>
Integer RequireInteger(double number) {
  const double rounded = std::nearbyint(number);
  // The end of the range as a power of two: the largest 64-bit number itself is no double.
  const double end = std::ldexp(1.0, std::numeric_limits<Integer>::digits);
  if (rounded >= end || rounded < static_cast<double>(std::numeric_limits<Integer>::min()))
    Fail(Failure::kOutOfRange);
  return static_cast<Integer>(rounded);
}

float RequireSingle(double number) {
  const auto single = static_cast<float>(number);
  if (!std::isfinite(single)) Fail(Failure::kOutOfRange);
  return single;
}

jet::Date RequireDate(const text::Variant& value) {
  if (value.Is<std::wstring>()) Fail(Failure::kWrongValueType);
  const double days = RequireNumber(value);
  if (days < kFirstDay || days >= kEndDay) Fail(Failure::kOutOfRange);
  return {days};
}

jet::Currency RequireCurrency(const text::Variant& value) {
  if (const auto* exact = value.GetIf<text::Currency>()) return {exact->scaled};
  return {RequireInteger<std::int64_t>(RequireNumber(value) * kCurrencyScale)};
}

// The digits of a number with "." as decimal mark.
std::string PlainDigits(const text::Variant& value, int decimals) {
  if (const auto* exact = value.GetIf<text::Decimal>()) return text::PlainDecimal(*exact);
  if (const auto* exact = value.GetIf<text::Currency>()) return text::PlainDecimal(*exact);
  const double number = RequireNumber(value);
  if (std::fabs(number) >= std::pow(10.0, kNumericDigits)) Fail(Failure::kOutOfRange);
  // Sign, whole digits, mark and decimals.
  std::string digits(static_cast<std::size_t>(kNumericDigits + decimals) + 3, '\0');
  const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                    std::chars_format::fixed, decimals);
  digits.resize(static_cast<std::size_t>(result.ptr - digits.data()));
  return digits;
}

// Rounds the decimals of plain digits to the column's, halves away from zero.
jet::Numeric NumericOf(std::string_view plain, const jet::ColumnDefinition& column) {
  jet::Numeric numeric;
  numeric.scale = column.scale;
  numeric.negative = plain.starts_with('-');
  if (numeric.negative) plain.remove_prefix(1);

  const std::size_t mark = std::min(plain.find('.'), plain.size());
  std::string digits(plain.substr(0, mark));
  std::string_view decimals = plain.substr(std::min(mark + 1, plain.size()));
  const bool round_up = decimals.size() > column.scale && decimals[column.scale] >= '5';
  decimals = decimals.substr(0, column.scale);
  digits.append(decimals).append(column.scale - decimals.size(), '0');

  const auto step = [&numeric](std::uint32_t factor, std::uint32_t addend) {
    std::uint64_t carry = addend;
    for (std::size_t i = numeric.magnitude.size(); i-- > 0;) {
      carry += std::uint64_t{numeric.magnitude[i]} * factor;
      numeric.magnitude[i] = static_cast<std::uint32_t>(carry);
      carry >>= 32;
    }
  };
  std::size_t significant = 0;
  for (const char digit : digits) {
    if (significant > 0 || digit != '0') ++significant;
    if (significant > column.precision) Fail(Failure::kOutOfRange);
    step(10, static_cast<std::uint32_t>(digit - '0'));
  }
  if (round_up) step(1, 1);
  if (numeric.magnitude == decltype(numeric.magnitude){}) numeric.negative = false;
  return numeric;
}

std::u16string RequireText(const text::Variant& value) {
  if (value.Is<text::Binary>()) Fail(Failure::kWrongValueType);
  return text::WideToUtf16(text::ToText(value));
}

bool RequireBoolean(const text::Variant& value) {
  const std::optional<bool> truth = text::ToBoolean(value);
  if (!truth) Fail(Failure::kWrongValueType);
  return *truth;
}

template <class Wanted>
const Wanted& Require(const text::Variant& value) {
  const auto* wanted = value.GetIf<Wanted>();
  if (wanted == nullptr) Fail(Failure::kWrongValueType);
  return *wanted;
}

template <class Integer>
IndexKey IntegerKey(double number) {
  const bool fits = number == std::trunc(number) &&
                    number >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
                    number <= static_cast<double>(std::numeric_limits<Integer>::max());
  if (!fits) return {IndexKey::Kind::kEqualsNothing, {}};
  return {IndexKey::Kind::kValue, static_cast<Integer>(number)};
}

IndexKey CurrencyKey(double number) {
  const double scaled = std::nearbyint(number * kCurrencyScale);
  const bool fits = std::fabs(scaled) < std::ldexp(1.0, std::numeric_limits<std::int64_t>::digits);
  if (!fits || scaled / kCurrencyScale != number) return {IndexKey::Kind::kEqualsNothing, {}};
  return {IndexKey::Kind::kValue, jet::Currency{static_cast<std::int64_t>(scaled)}};
}

IndexKey SingleKey(double number) {
  const auto single = static_cast<float>(number);
  if (static_cast<double>(single) != number) return {IndexKey::Kind::kEqualsNothing, {}};
  return {IndexKey::Kind::kValue, single};
}

IndexKey NumberKey(double number, const jet::ColumnDefinition& column) {
  switch (column.type) {
    case ColumnType::kBoolean:
      if (number != 0 && number != -1) return {IndexKey::Kind::kEqualsNothing, {}};
      return {IndexKey::Kind::kValue, number != 0};
    case ColumnType::kByte:
      return IntegerKey<std::uint8_t>(number);
    case ColumnType::kInteger:
      return IntegerKey<std::int16_t>(number);
    case ColumnType::kLong:
      return IntegerKey<std::int32_t>(number);
    case ColumnType::kCurrency:
      return CurrencyKey(number);
    case ColumnType::kSingle:
      return SingleKey(number);
    case ColumnType::kDouble:
      return {IndexKey::Kind::kValue, number};
    case ColumnType::kDate:
      return {IndexKey::Kind::kValue, jet::Date{number}};
    default:
      return {};
  }
}

IndexKey TextKey(const std::u16string& text, const jet::ColumnDefinition& column) {
  // Memos are indexed by their beginning only; a text without known weights has no index key.
  if (column.type != ColumnType::kText || !jet::CanEncodeText(column.collation, text)) return {};
  const std::size_t last = text.find_last_not_of(u' ');
  if (last != std::u16string::npos && last >= kLongestIndexedText)
    return {IndexKey::Kind::kEqualsNothing, {}};
  return {IndexKey::Kind::kValue, text};
}

}  // namespace

text::Variant ToVariant(const jet::Value& value) { return std::visit(Show{}, value); }

jet::Value ToColumnValue(const text::Variant& value, const jet::ColumnDefinition& column) {
  if (value.IsNull()) {
    if (column.type == ColumnType::kBoolean) return false;
    return jet::Null{};
  }
  switch (column.type) {
    case ColumnType::kBoolean:
      return RequireBoolean(value);
    case ColumnType::kByte:
      return RequireInteger<std::uint8_t>(RequireNumber(value));
    case ColumnType::kInteger:
      return RequireInteger<std::int16_t>(RequireNumber(value));
    case ColumnType::kLong:
      return RequireInteger<std::int32_t>(RequireNumber(value));
    case ColumnType::kCurrency:
      return RequireCurrency(value);
    case ColumnType::kSingle:
      return RequireSingle(RequireNumber(value));
    case ColumnType::kDouble:
      return RequireNumber(value);
    case ColumnType::kDate:
      return RequireDate(value);
    case ColumnType::kText:
    case ColumnType::kMemo:
      return RequireText(value);
    case ColumnType::kBinary:
    case ColumnType::kOle:
    case ColumnType::kFixedBytes:
      return Require<text::Binary>(value);
    case ColumnType::kGuid:
      return jet::Guid{Require<text::Guid>(value).bytes};
    case ColumnType::kNumeric:
      return NumericOf(PlainDigits(value, column.scale), column);
  }
  Fail(Failure::kWrongValueType);
}

jet::Value ConstantValue(const sql::Operand& constant) {
  if (const auto* number = std::get_if<double>(&constant)) return *number;
  return text::WideToUtf16(std::get<std::wstring>(constant));
}

IndexKey IndexKeyFor(const jet::Value& constant, const jet::ColumnDefinition& column) {
  if (const auto* text = std::get_if<std::u16string>(&constant)) return TextKey(*text, column);
  const Comparable number = ComparableOf(constant, column.collation);
  if (const auto* plain = std::get_if<double>(&number)) return NumberKey(*plain, column);
  return {};
}

}  // namespace database
