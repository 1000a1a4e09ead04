// What follows from a table definition alone: sizes, limits, names, places of counters.
#include "platform/jet/table_definition.h"

#include <algorithm>

#include "platform/jet/object_name.h"
#include "platform/jet/row_format.h"
#include "platform/jet/table_definition_format.h"

namespace jet {
namespace format = table_definition_format;
namespace {

// What the widest row of the table would need beside its variable values.
std::size_t LeastRowSize(const TableDefinition& definition) {
  return row_format::kFixedAreaAt + definition.FixedAreaSize() +
         row_format::kOffsetSize * (definition.variable_slots + std::size_t{1}) +
         row_format::kSlotCountSize + row_format::NullMaskSize(definition.next_column_number);
}

void CheckNameLength(const std::u16string& name) {
  if (name.empty() || name.size() > kMaxNameLength)
    throw Error(ErrorKind::kBadName, {name}, "a name is empty or longer than 64 characters");
}

void CheckColumn(const ColumnDefinition& column) {
  CheckNameLength(column.name);
  const bool is_bytes = column.type == ColumnType::kText || column.type == ColumnType::kBinary;
  if (is_bytes && column.length > format::kMaxTextBytes)
    throw Error(ErrorKind::kTooLong, {column.name}, "a column is wider than 510 bytes");
  if (column.type == ColumnType::kNumeric &&
      (column.precision == 0 || column.precision > format::kMaxPrecision))
    throw Error(ErrorKind::kOutOfRange, {column.name}, "a numeric column has no valid precision");
}

}  // namespace

const ColumnDefinition* TableDefinition::FindColumn(std::uint16_t number) const {
  const auto found = std::ranges::find(columns, number, &ColumnDefinition::number);
  return found == columns.end() ? nullptr : &*found;
}

std::size_t TableDefinition::FixedAreaSize() const {
  std::size_t end = 0;
  for (const ColumnDefinition& column : columns)
    if (column.is_fixed()) end = std::max(end, column.fixed_offset + FixedSize(column));
  return end;
}

std::size_t FixedSize(const ColumnDefinition& column) {
  switch (column.type) {
    case ColumnType::kBoolean:
      return 0;
    case ColumnType::kByte:
      return 1;
    case ColumnType::kInteger:
      return 2;
    case ColumnType::kLong:
    case ColumnType::kSingle:
      return 4;
    case ColumnType::kCurrency:
    case ColumnType::kDouble:
    case ColumnType::kDate:
      return 8;
    case ColumnType::kGuid:
      return 16;
    case ColumnType::kNumeric:
      return row_format::kNumericSize;
    case ColumnType::kBinary:
    case ColumnType::kText:
    case ColumnType::kOle:
    case ColumnType::kMemo:
    case ColumnType::kFixedBytes:
      break;
  }
  return column.length;
}

void CheckLimits(const TableDefinition& definition) {
  if (definition.next_column_number > format::kMaxColumnNumbers ||
      definition.columns.size() > definition.next_column_number ||
      definition.variable_slots > definition.next_column_number)
    throw Error(ErrorKind::kTooManyColumns, "a table has more than 255 columns");
  if (definition.logical_indexes.size() > format::kMaxLogicalIndexes ||
      definition.physical_indexes.size() > format::kMaxLogicalIndexes)
    throw Error(ErrorKind::kTooManyIndexes, "a table has more than 32 indexes");
  for (const ColumnDefinition& column : definition.columns) CheckColumn(column);
  for (const LogicalIndex& index : definition.logical_indexes) CheckNameLength(index.name);
  for (const PhysicalIndex& index : definition.physical_indexes)
    if (index.columns.empty() || index.columns.size() > format::physical_index::kColumns)
      throw Error(ErrorKind::kTooManyColumns, "an index needs 1 to 10 columns");
  if (LeastRowSize(definition) > row_format::kMaxRowSize)
    throw Error(ErrorKind::kRowTooLarge, "the fixed columns of a table are too wide for a row");
}

std::size_t RowCountOffset() { return format::kRowCountAt; }

std::size_t LastAutonumberOffset() { return format::kLastAutonumberAt; }

std::size_t DistinctCountOffset(std::size_t physical_index) {
  return format::kCountersAt + format::counter::kSize * physical_index +
         format::counter::kDistinctAt;
}

}  // namespace jet
