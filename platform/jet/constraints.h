// What a table's properties declare of its columns, and the check of a row against it.
#pragma once

#include <string>
#include <vector>

#include "platform/jet/default_value.h"
#include "platform/jet/property_blob.h"
#include "platform/jet/table_definition.h"

namespace jet {

// Names under which properties stand in a table's property blob.
namespace property {
inline constexpr std::u16string_view kRequired = u"Required";
inline constexpr std::u16string_view kAllowZeroLength = u"AllowZeroLength";
inline constexpr std::u16string_view kDefaultValue = u"DefaultValue";
inline constexpr std::u16string_view kValidationRule = u"ValidationRule";
inline constexpr std::u16string_view kCheckConstraints = u"CheckConstraints";
}  // namespace property

struct ColumnRules {
  bool required = false;
  bool allow_zero_length = true;
  DefaultValue default_value;
};

// Whether the value is of the alternative that columns of this type hold.
bool HoldsAlternative(ColumnType type, const Value& value);

// The rules of one table: a plain value, made when the table is loaded.
class TableRules {
 public:
  // `table` is named in errors.
  TableRules(std::u16string table, const TableDefinition& definition,
             const PropertyBlob& properties);

  const ColumnRules& operator[](std::size_t column) const { return columns_[column]; }

  // Why no row may be added or changed: a validation rule that only the host's expressions could
  // check. "" when rows may.
  const std::string& refusal() const { return refusal_; }

  // Whether every value may stand in its column: alternative, size, range, null and "".
  // kTypeMismatch, kTooLong, kOutOfRange, kNullInRequired, kZeroLength, kNotSupported.
  void Check(const TableDefinition& definition, const Row& row) const;

 private:
  void CheckValue(const ColumnDefinition& column, const ColumnRules& rules,
                  const Value& value) const;
  void CheckText(const ColumnDefinition& column, const ColumnRules& rules,
                 const std::u16string& text) const;

  std::u16string table_;
  std::vector<ColumnRules> columns_;
  std::string refusal_;
};

}  // namespace jet
