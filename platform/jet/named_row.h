// Rows of the engine's own tables, by column name.
#pragma once

#include <initializer_list>
#include <string_view>
#include <utility>

#include "platform/jet/error.h"
#include "platform/jet/table.h"

namespace jet {

// The position of a column that every sound file has. kDamaged when it is missing.
inline std::size_t ColumnAt(const Table& table, std::u16string_view column) {
  const auto position = table.FindColumn(column);
  if (!position)
    throw Error(ErrorKind::kDamaged, "a system table lacks a column", table.definition().page);
  return *position;
}

using NamedValue = std::pair<std::u16string_view, Value>;

// A row with these values; Null where none is named.
inline Row NamedRow(const Table& table, std::initializer_list<NamedValue> values) {
  Row row(table.columns().size());
  for (const auto& [column, value] : values) row[ColumnAt(table, column)] = value;
  return row;
}

// The value of a row under a column name as alternative T; `missing` when it is Null.
template <typename T>
T Get(const Table& table, const Row& row, std::u16string_view column, T missing = {}) {
  const T* value = std::get_if<T>(&row.at(ColumnAt(table, column)));
  return value == nullptr ? missing : *value;
}

}  // namespace jet
