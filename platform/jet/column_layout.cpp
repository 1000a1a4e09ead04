// Laying out the columns of a new table: see the header.
#include "platform/jet/column_layout.h"

namespace jet {

std::optional<std::uint16_t> LengthOf(ColumnType type) {
  switch (type) {
    case ColumnType::kBoolean:
      return 1;  // though its value is a bit elsewhere
    case ColumnType::kText:
    case ColumnType::kBinary:
    case ColumnType::kOle:
    case ColumnType::kMemo:
    case ColumnType::kFixedBytes:
      return std::nullopt;
    default:
      break;
  }
  ColumnDefinition column;
  column.type = type;
  return static_cast<std::uint16_t>(FixedSize(column));
}

bool IsStoredFixed(ColumnType type) {
  return LengthOf(type).has_value() && type != ColumnType::kNumeric;
}

void AppendColumn(TableDefinition& table, ColumnDefinition column) {
  column.number = table.next_column_number++;
  column.position = table.system ? std::uint16_t{0} : column.number;
  column.slot = table.variable_slots;
  column.flags |= column_flags::kAlways;
  if (!IsStoredFixed(column.type)) {
    ++table.variable_slots;
  } else {
    column.flags |= column_flags::kFixed;
    if (column.type != ColumnType::kBoolean)
      column.fixed_offset = static_cast<std::uint16_t>(table.FixedAreaSize());
  }
  table.columns.push_back(std::move(column));
}

}  // namespace jet
