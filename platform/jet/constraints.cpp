// Rules of columns: see the header.
#include "platform/jet/constraints.h"

#include "platform/jet/error.h"
#include "platform/jet/row_codec.h"

namespace jet {

namespace {

constexpr std::size_t kMaxLongValueSize = (std::size_t{1} << 30) - 1;  // bytes
constexpr std::size_t kMaxMemoLength = (std::size_t{1} << 29) - 1;     // UTF-16 units
constexpr char16_t kCompressionMark = 0xfeff;  // its bytes announce compressed text
constexpr double kFirstDay = -657434;          // 0100-01-01
constexpr double kBehindLastDay = 2958466;     // 10000-01-01

// The position in Value of the alternative that a column of this type holds.
std::size_t AlternativeOf(ColumnType type) {
  switch (type) {
    case ColumnType::kBoolean:
      return Value(bool{}).index();
    case ColumnType::kByte:
      return Value(std::uint8_t{}).index();
    case ColumnType::kInteger:
      return Value(std::int16_t{}).index();
    case ColumnType::kLong:
      return Value(std::int32_t{}).index();
    case ColumnType::kCurrency:
      return Value(Currency{}).index();
    case ColumnType::kSingle:
      return Value(float{}).index();
    case ColumnType::kDouble:
      return Value(double{}).index();
    case ColumnType::kDate:
      return Value(Date{}).index();
    case ColumnType::kBinary:
    case ColumnType::kOle:
    case ColumnType::kFixedBytes:
      return Value(Bytes{}).index();
    case ColumnType::kText:
    case ColumnType::kMemo:
      return Value(std::u16string{}).index();
    case ColumnType::kGuid:
      return Value(Guid{}).index();
    case ColumnType::kNumeric:
      return Value(Numeric{}).index();
  }
  return std::variant_npos;
}

bool HasRule(const PropertyGroup* group) {
  return group != nullptr && (!group->Text(property::kValidationRule).empty() ||
                              group->Find(property::kCheckConstraints) != nullptr);
}

}  // namespace

bool HoldsAlternative(ColumnType type, const Value& value) {
  return value.index() == AlternativeOf(type);
}

TableRules::TableRules(std::u16string table, const TableDefinition& definition,
                       const PropertyBlob& properties)
    : table_(std::move(table)) {
  if (HasRule(properties.Object())) refusal_ = "the table has a validation rule";
  columns_.reserve(definition.columns.size());
  for (const ColumnDefinition& column : definition.columns) {
    const PropertyGroup* group = properties.FindColumn(column.name);
    if (HasRule(group)) refusal_ = "a column of the table has a validation rule";
    const auto text = [&](std::u16string_view name) {
      return group == nullptr ? std::u16string() : group->Text(name);
    };
    columns_.push_back(
        {.required = group != nullptr && group->IsTrue(property::kRequired),
         .allow_zero_length = group == nullptr || !group->IsFalse(property::kAllowZeroLength),
         .default_value = DefaultValue::Parse(text(property::kDefaultValue), column)});
  }
}

void TableRules::Check(const TableDefinition& definition, const Row& row) const {
  if (row.size() != definition.columns.size())
    throw Error(ErrorKind::kTypeMismatch, "a row of another number of values than columns");
  for (std::size_t i = 0; i < row.size(); ++i)
    CheckValue(definition.columns[i], columns_[i], row[i]);
}

void TableRules::CheckValue(const ColumnDefinition& column, const ColumnRules& rules,
                            const Value& value) const {
  if (IsNull(value)) {
    if (rules.required || column.is_autonumber())
      throw Error(ErrorKind::kNullInRequired, {table_, column.name});
    return;
  }
  if (!HoldsAlternative(column.type, value))
    throw Error(ErrorKind::kTypeMismatch, {column.name}, "a value of another type");

  if (const auto* text = std::get_if<std::u16string>(&value)) {
    CheckText(column, rules, *text);
  } else if (const auto* bytes = std::get_if<Bytes>(&value)) {
    const std::size_t limit = column.is_long_value() ? kMaxLongValueSize : column.length;
    if (bytes->size() > limit) throw Error(ErrorKind::kTooLong, {column.name});
  } else if (const auto* date = std::get_if<Date>(&value)) {
    if (!(date->days > kFirstDay - 1 && date->days < kBehindLastDay))
      throw Error(ErrorKind::kOutOfRange, {column.name}, "a date outside the years 100 to 9999");
  } else if (const auto* number = std::get_if<Numeric>(&value)) {
    FitNumeric(column, *number);
  }
}

void TableRules::CheckText(const ColumnDefinition& column, const ColumnRules& rules,
                           const std::u16string& text) const {
  if (text.empty()) {
    if (!rules.allow_zero_length) throw Error(ErrorKind::kZeroLength, {table_, column.name});
    return;
  }
  const std::size_t limit =
      column.is_long_value() ? kMaxMemoLength : column.length / sizeof(char16_t);
  if (text.size() > limit) throw Error(ErrorKind::kTooLong, {column.name});
  if (text.front() == kCompressionMark)
    throw Error(ErrorKind::kNotSupported, {column.name}, "a text that begins with U+FEFF");
}

}  // namespace jet
