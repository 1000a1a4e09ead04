// Default values: recognising the expression, bringing a constant into the column's alternative.
#include "platform/jet/default_value.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <ctime>
#include <limits>
#include <random>
#include <string>

#include "platform/jet/error.h"

namespace jet {

namespace {

constexpr std::int64_t kDayFrom1899To1970 = 25569;
constexpr std::int64_t kSecondsPerDay = 86400;

std::mt19937_64& Generator() {
  thread_local std::mt19937_64 generator{std::random_device{}()};
  return generator;
}

std::u16string_view Trim(std::u16string_view text) {
  while (!text.empty() && text.front() == u' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == u' ') text.remove_suffix(1);
  return text;
}

// Lower case of an expression's words, blanks left out; nothing when it is not plain ASCII.
std::optional<std::string> Word(std::u16string_view text) {
  std::string word;
  for (const char16_t c : text) {
    if (c > 0x7e) return std::nullopt;
    if (c == u' ') continue;
    const auto ascii = static_cast<char>(c);
    word += ascii >= 'A' && ascii <= 'Z' ? static_cast<char>(ascii - 'A' + 'a') : ascii;
  }
  return word;
}

// The text between quotes of one kind, doubled ones inside standing for one.
std::optional<std::u16string> QuotedText(std::u16string_view text) {
  if (text.size() < 2) return std::nullopt;
  const char16_t quote = text.front();
  if ((quote != u'"' && quote != u'\'') || text.back() != quote) return std::nullopt;
  std::u16string result;
  for (std::size_t i = 1; i + 1 < text.size(); ++i) {
    if (text[i] == quote && (i + 2 >= text.size() || text[++i] != quote)) return std::nullopt;
    result += text[i];
  }
  return result;
}

template <typename Integer>
std::optional<Value> AsInteger(double number) {
  const double rounded = std::nearbyint(number);
  if (!(rounded >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
        rounded <= static_cast<double>(std::numeric_limits<Integer>::max())))
    return std::nullopt;
  return Value(static_cast<Integer>(rounded));
}

std::optional<Value> AsScaled(double number, const ColumnDefinition& column) {
  constexpr double kLargest = 9.2e18;  // below the limit of 64 bits, exact enough to compare with
  const int scale = column.type == ColumnType::kCurrency ? 4 : column.scale;
  const double scaled = std::nearbyint(number * std::pow(10.0, scale));
  if (!(std::abs(scaled) < kLargest)) return std::nullopt;
  if (column.type == ColumnType::kCurrency)
    return Value(Currency{static_cast<std::int64_t>(scaled)});
  const auto magnitude = static_cast<std::uint64_t>(std::abs(scaled));
  Numeric numeric;
  numeric.negative = scaled < 0;
  numeric.scale = column.scale;
  numeric.magnitude = {0, 0, static_cast<std::uint32_t>(magnitude >> 32),
                       static_cast<std::uint32_t>(magnitude)};
  return Value(numeric);
}

// A number as a constant of the column's type.
std::optional<Value> FromNumber(double number, const std::string& spelling,
                                const ColumnDefinition& column) {
  switch (column.type) {
    case ColumnType::kBoolean:
      return Value(number != 0);
    case ColumnType::kByte:
      return AsInteger<std::uint8_t>(number);
    case ColumnType::kInteger:
      return AsInteger<std::int16_t>(number);
    case ColumnType::kLong:
      return AsInteger<std::int32_t>(number);
    case ColumnType::kCurrency:
    case ColumnType::kNumeric:
      return AsScaled(number, column);
    case ColumnType::kSingle:
      if (std::abs(number) > std::numeric_limits<float>::max()) return std::nullopt;
      return Value(static_cast<float>(number));
    case ColumnType::kDouble:
      return Value(number);
    case ColumnType::kDate:
      return Value(Date{number});
    case ColumnType::kText:
    case ColumnType::kMemo:
      return Value(std::u16string(spelling.begin(), spelling.end()));
    default:
      return std::nullopt;
  }
}

bool HoldsText(const ColumnDefinition& column) {
  return column.type == ColumnType::kText || column.type == ColumnType::kMemo;
}

std::optional<double> ParseNumber(const std::string& word) {
  double number = 0;
  const char* const end = word.data() + word.size();
  const char* const begin = word.data() + (word.starts_with('+') ? 1 : 0);
  const auto [stop, error] = std::from_chars(begin, end, number);
  if (error != std::errc{} || stop != end || !std::isfinite(number)) return std::nullopt;
  return number;
}

}  // namespace

double CurrentDays() {
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  const std::tm local = *std::localtime(&now);  // NOLINT(concurrency-mt-unsafe)
  const std::chrono::year_month_day day{std::chrono::year{local.tm_year + 1900},
                                        std::chrono::month{static_cast<unsigned>(local.tm_mon + 1)},
                                        std::chrono::day{static_cast<unsigned>(local.tm_mday)}};
  const std::int64_t days =
      std::chrono::sys_days{day}.time_since_epoch().count() + kDayFrom1899To1970;
  const int seconds = (local.tm_hour * 60 + local.tm_min) * 60 + std::min(local.tm_sec, 59);
  return static_cast<double>(days) + static_cast<double>(seconds) / kSecondsPerDay;
}

Guid RandomGuid() {
  constexpr std::size_t kVersionAt = 7;  // high byte of the second u16
  constexpr std::size_t kVariantAt = 8;
  Guid guid;
  for (std::byte& byte : guid.stored) byte = static_cast<std::byte>(Generator()() & 0xff);
  guid.stored[kVersionAt] = (guid.stored[kVersionAt] & std::byte{0x0f}) | std::byte{0x40};
  guid.stored[kVariantAt] = (guid.stored[kVariantAt] & std::byte{0x3f}) | std::byte{0x80};
  return guid;
}

DefaultValue DefaultValue::Parse(std::u16string_view expression, const ColumnDefinition& column) {
  std::u16string_view text = Trim(expression);
  if (text.empty()) return DefaultValue(None{});
  if (text.front() == u'=') text = Trim(text.substr(1));

  const std::optional<std::u16string> quoted = QuotedText(text);  // `text` may become a part of it
  if (quoted) {
    if (HoldsText(column)) return DefaultValue(Value(*quoted));
    text = Trim(*quoted);  // a number written as text
  }
  const std::optional<std::string> word = Word(text);
  if (!word) return DefaultValue(Unknown{});
  if (*word == "null") return DefaultValue(None{});
  if (*word == "genguid()") return DefaultValue(Function::kGenGuid);
  if (*word == "genuniqueid()") return DefaultValue(Function::kGenUniqueId);
  if (column.type == ColumnType::kDate && *word == "date()") return DefaultValue(Function::kDate);
  if (column.type == ColumnType::kDate && *word == "now()") return DefaultValue(Function::kNow);

  std::optional<double> number;
  if (!HoldsText(column)) {
    if (*word == "yes" || *word == "true" || *word == "on") number = -1;
    if (*word == "no" || *word == "false" || *word == "off") number = 0;
  }
  if (!number) number = ParseNumber(*word);
  if (!number) return DefaultValue(Unknown{});
  std::optional<Value> constant = FromNumber(*number, *word, column);
  return constant ? DefaultValue(std::move(*constant)) : DefaultValue(Unknown{});
}

bool DefaultValue::is_random_autonumber() const {
  const auto* function = std::get_if<Function>(&kind_);
  return function != nullptr && *function == Function::kGenUniqueId;
}

bool DefaultValue::is_guid() const {
  const auto* function = std::get_if<Function>(&kind_);
  return function != nullptr && *function == Function::kGenGuid;
}

Value DefaultValue::Evaluate(const ColumnDefinition& column) const {
  if (is_none()) return Null{};
  if (const auto* constant = std::get_if<Value>(&kind_)) return *constant;
  if (const auto* function = std::get_if<Function>(&kind_)) {
    if (*function == Function::kDate) return Date{std::floor(CurrentDays())};
    if (*function == Function::kNow) return Date{CurrentDays()};
    if (*function == Function::kGenGuid && column.type == ColumnType::kGuid) return RandomGuid();
    if (*function == Function::kGenUniqueId && column.type == ColumnType::kLong)
      return static_cast<std::int32_t>(static_cast<std::uint32_t>(Generator()() & 0xffffffff));
  }
  throw Error(ErrorKind::kNotSupported, {column.name},
              "a default value that cannot be evaluated here");
}

}  // namespace jet
