// Builds a transient index and follows the table's changes.
#include "platform/database/column_hash.h"

#include <utility>

#include "platform/database/comparison.h"

namespace database {

ColumnHash::ColumnHash(jet::Table& table, std::vector<std::size_t> columns)
    : table_(table), columns_(std::move(columns)) {
  jet::Table::Scan scan = table_.ScanRows();
  while (const std::optional<jet::StoredRowValues> row = scan.Next()) {
    const std::string key = KeyOf(row->values);
    if (!key.empty()) rows_.Add(key, row->id);
  }
  table_.AddObserver(this);
}

ColumnHash::~ColumnHash() { table_.RemoveObserver(this); }

std::vector<jet::RowId> ColumnHash::Find(const std::string& key) const {
  const auto* rows = rows_.Find(key);
  if (rows == nullptr) return {};
  return {rows->begin(), rows->end()};
}

void ColumnHash::RowChanged(jet::RowId id, const jet::Row* old_row, const jet::Row* new_row) {
  const std::string old_key = old_row != nullptr ? KeyOf(*old_row) : std::string();
  const std::string new_key = new_row != nullptr ? KeyOf(*new_row) : std::string();
  if (old_key == new_key) return;
  if (!old_key.empty()) rows_.Remove(old_key, id);
  if (!new_key.empty()) rows_.Add(new_key, id);
}

std::string ColumnHash::KeyOf(const jet::Row& row) const {
  std::string key;
  for (const std::size_t column : columns_) {
    const Comparable value = ComparableOf(row[column], table_.columns()[column].collation);
    if (!AppendEqualityKey(key, value)) return {};
  }
  return key;
}

}  // namespace database
