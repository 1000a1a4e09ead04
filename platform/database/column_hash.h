// A transient index: the rows of a table by the values of some of its columns.
#pragma once

#include <string>
#include <vector>

#include "platform/database/keyed_sets.h"
#include "platform/jet/table.h"

namespace database {

// Made by one walk through the table and kept in step with every later change of it. Nothing of it
// stands in the file. The table must outlive it.
class ColumnHash final : private jet::TableObserver {
 public:
  ColumnHash(jet::Table& table, std::vector<std::size_t> columns);
  ~ColumnHash() override;
  ColumnHash(const ColumnHash&) = delete;
  ColumnHash& operator=(const ColumnHash&) = delete;

  const std::vector<std::size_t>& columns() const { return columns_; }

  // The rows with this key, in table order: AppendEqualityKey of each column, in the order of
  // columns(). Rows with a Null among them are never found.
  std::vector<jet::RowId> Find(const std::string& key) const;

 private:
  void RowChanged(jet::RowId id, const jet::Row* old_row, const jet::Row* new_row) override;
  // Empty when the row is not found by any key.
  std::string KeyOf(const jet::Row& row) const;

  jet::Table& table_;
  std::vector<std::size_t> columns_;
  KeyedSets<jet::RowId> rows_;
};

}  // namespace database
