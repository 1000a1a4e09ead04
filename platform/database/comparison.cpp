// Comparing values by what they mean, not by how they are stored.
#include "platform/database/comparison.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>

namespace database {
namespace {

// Sort keys cover this many characters; only memos are longer.
constexpr std::size_t kSortKeyCharacters = 255;
constexpr double kTrueNumber = -1;
constexpr double kCurrencyScale = 10000;
constexpr double kWordRange = 4294967296.0;

double NumberOf(const jet::Numeric& value) {
  double magnitude = 0;
  for (const std::uint32_t word : value.magnitude) magnitude = magnitude * kWordRange + word;
  const double number = magnitude / std::pow(10.0, value.scale);
  return value.negative ? -number : number;
}

// A total order for any bits: no negative zero, and what is not a number below all numbers.
double Ordered(double number) {
  return std::isnan(number) ? -std::numeric_limits<double>::infinity() : number + 0.0;
}

jet::Bytes TextKey(std::u16string_view text, const jet::Collation& collation) {
  const std::size_t last = text.find_last_not_of(u' ');
  text = text.substr(0, last == std::u16string_view::npos ? 0 : last + 1);
  jet::Bytes key = jet::TextSortKey(collation, text.substr(0, kSortKeyCharacters));
  if (text.size() > kSortKeyCharacters) {
    const auto rest = std::as_bytes(std::span(text.substr(kSortKeyCharacters)));
    key.insert(key.end(), rest.begin(), rest.end());
  }
  return key;
}

struct Reduce {
  const jet::Collation& collation;

  Comparable operator()(jet::Null) const { return {}; }
  Comparable operator()(bool value) const { return value ? kTrueNumber : 0.0; }
  Comparable operator()(std::uint8_t value) const { return static_cast<double>(value); }
  Comparable operator()(std::int16_t value) const { return static_cast<double>(value); }
  Comparable operator()(std::int32_t value) const { return static_cast<double>(value); }
  Comparable operator()(jet::Currency value) const {
    return static_cast<double>(value.scaled) / kCurrencyScale;
  }
  Comparable operator()(float value) const { return Ordered(value); }
  Comparable operator()(double value) const { return Ordered(value); }
  Comparable operator()(jet::Date value) const { return Ordered(value.days); }
  Comparable operator()(const jet::Bytes& value) const { return value; }
  Comparable operator()(const std::u16string& value) const { return TextKey(value, collation); }
  Comparable operator()(const jet::Guid& value) const {
    return jet::Bytes(value.stored.begin(), value.stored.end());
  }
  Comparable operator()(const jet::Numeric& value) const { return Ordered(NumberOf(value)); }
};

}  // namespace

ValueKind KindOf(jet::ColumnType type) {
  switch (type) {
    case jet::ColumnType::kText:
    case jet::ColumnType::kMemo:
      return ValueKind::kText;
    case jet::ColumnType::kBinary:
    case jet::ColumnType::kOle:
    case jet::ColumnType::kGuid:
    case jet::ColumnType::kFixedBytes:
      return ValueKind::kBytes;
    default:
      return ValueKind::kNumber;
  }
}

ValueKind KindOf(const sql::Operand& constant) {
  return std::holds_alternative<double>(constant) ? ValueKind::kNumber : ValueKind::kText;
}

Comparable ComparableOf(const jet::Value& value, const jet::Collation& collation) {
  return std::visit(Reduce{collation}, value);
}

bool Holds(const Comparable& left, sql::Operator op, const Comparable& right) {
  const auto is_null = [](const Comparable& side) {
    return std::holds_alternative<std::monostate>(side);
  };
  if (is_null(left) || is_null(right)) return false;
  switch (op) {
    case sql::Operator::kEqual:
      return left == right;
    case sql::Operator::kNotEqual:
      return left != right;
    case sql::Operator::kLess:
      return left < right;
    case sql::Operator::kLessOrEqual:
      return left <= right;
    case sql::Operator::kGreater:
      return left > right;
    case sql::Operator::kGreaterOrEqual:
      return left >= right;
  }
  return false;
}

sql::Operator Mirrored(sql::Operator op) {
  switch (op) {
    case sql::Operator::kLess:
      return sql::Operator::kGreater;
    case sql::Operator::kLessOrEqual:
      return sql::Operator::kGreaterOrEqual;
    case sql::Operator::kGreater:
      return sql::Operator::kLess;
    case sql::Operator::kGreaterOrEqual:
      return sql::Operator::kLessOrEqual;
    default:
      return op;
  }
}

bool AppendEqualityKey(std::string& key, const Comparable& value) {
  if (const auto* number = std::get_if<double>(&value)) {
    std::array<char, sizeof(double)> bytes{};
    std::memcpy(bytes.data(), number, bytes.size());
    key.append(bytes.data(), bytes.size());
    return true;
  }
  if (const auto* bytes = std::get_if<jet::Bytes>(&value)) {
    // The length keeps keys of several columns apart.
    const auto length = static_cast<std::uint32_t>(bytes->size());
    std::array<char, sizeof(length)> prefix{};
    std::memcpy(prefix.data(), &length, prefix.size());
    key.append(prefix.data(), prefix.size());
    for (const std::byte byte : *bytes) key.push_back(static_cast<char>(byte));
    return true;
  }
  return false;
}

}  // namespace database
