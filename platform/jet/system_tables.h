// The four tables that every file has: their columns and indexes, which are the same in all files.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "platform/jet/table_definition.h"

namespace jet {

struct SystemColumn {
  std::u16string_view name;
  ColumnType type = ColumnType::kLong;
  std::uint16_t length = 0;    // bytes
  bool holds_account = false;  // a security id
};

struct SystemIndex {
  std::u16string_view name;
  std::span<const std::u16string_view> columns;
  std::uint8_t flags = 0;
  IndexKind kind = IndexKind::kOrdinary;
};

struct SystemTable {
  std::u16string_view name;
  PageNumber page = 0;
  std::span<const SystemColumn> columns;  // by column number
  std::span<const SystemIndex> indexes;   // by number
};

namespace system_table {
inline constexpr PageNumber kObjects = 2;
inline constexpr PageNumber kRights = 3;
inline constexpr PageNumber kQueries = 4;
inline constexpr PageNumber kRelationships = 5;
}  // namespace system_table

// In the order of their definition pages.
std::span<const SystemTable> SystemTables();

// The definition of one, without maps and roots.
TableDefinition DefinitionOf(const SystemTable& table, Collation collation);

// Whether a definition has the columns and indexes that the table has in every file.
bool IsAsExpected(const SystemTable& table, const TableDefinition& definition);

}  // namespace jet
