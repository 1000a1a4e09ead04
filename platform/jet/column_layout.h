// Where the columns of a new table go: numbers, slots, fixed offsets, lengths and flags.
#pragma once

#include <optional>

#include "platform/jet/table_definition.h"

namespace jet {

namespace column_flags {
inline constexpr std::uint8_t kFixed = 0x01;
inline constexpr std::uint8_t kAlways = 0x02;
inline constexpr std::uint8_t kAutonumber = 0x04;
inline constexpr std::uint8_t kSystem = 0x10;
inline constexpr std::uint8_t kHoldsAccount = 0x20;
inline constexpr std::uint8_t kAutoGuid = 0x40;
inline constexpr std::uint8_t kMayCompress = 0x01;  // among the extra flags
}  // namespace column_flags

// The size of a type whose values all have one: in bytes, 1 for a boolean.
std::optional<std::uint16_t> LengthOf(ColumnType type);

// Whether new columns of the type stand in the fixed area (booleans, which take no bytes, too).
bool IsStoredFixed(ColumnType type);

// Appends a column to a definition: its number, slot or fixed offset and the table's counts follow
// from what is there. `column` brings name, type, length, flags and type details.
void AppendColumn(TableDefinition& table, ColumnDefinition column);

}  // namespace jet
