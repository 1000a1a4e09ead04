// Short ways to write down columns and tables in tests of the engine.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/jet/error.h"
#include "platform/jet/table_definition.h"

namespace jet::test {

inline constexpr std::uint8_t kFixedColumn = 0x03;     // flags of a column in the fixed area
inline constexpr std::uint8_t kVariableColumn = 0x02;  // and of one with a slot

// A column with the number and the slot or offset that it gets when it is added to `table`.
// `length` is needed for texts and binaries only.
inline ColumnDefinition& AddColumn(TableDefinition& table, std::u16string name, ColumnType type,
                                   std::uint16_t length = 0, std::uint8_t flags = kVariableColumn) {
  ColumnDefinition column;
  column.name = std::move(name);
  column.type = type;
  column.number = column.position = table.next_column_number++;
  column.flags = flags;
  column.length = length;
  column.precision = 18;
  if (column.length == 0) column.length = static_cast<std::uint16_t>(FixedSize(column));
  if (column.is_fixed()) {
    column.slot = table.variable_slots;
    column.fixed_offset = static_cast<std::uint16_t>(table.FixedAreaSize());
  } else {
    column.slot = table.variable_slots++;
  }
  if (column.is_long_value())
    table.long_value_maps.push_back({column.number, RowPointer{9, 4}, RowPointer{9, 5}});
  return table.columns.emplace_back(std::move(column));
}

// Bytes written in hex, blanks between them as wanted.
inline Bytes FromHex(std::string_view hex) {
  const auto digit = [](char c) { return c <= '9' ? c - '0' : c - 'A' + 10; };
  Bytes bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
    if (hex[i] == ' ') {
      --i;
      continue;
    }
    bytes.push_back(static_cast<std::byte>(digit(hex[i]) << 4 | digit(hex[i + 1])));
  }
  return bytes;
}

inline std::string ToHex(const Bytes& bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string hex;
  for (const std::byte byte : bytes) {
    if (!hex.empty()) hex += ' ';
    hex += kDigits[std::to_integer<std::size_t>(byte >> 4)];
    hex += kDigits[std::to_integer<std::size_t>(byte & std::byte{0xf})];
  }
  return hex;
}

// What kind of error an action ends in; nothing when it succeeds.
template <typename Action>
std::optional<ErrorKind> KindOf(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return error.kind();
  }
  return std::nullopt;
}

}  // namespace jet::test
