// Keeps positions by value and follows the table.
#include "platform/database/find_index.h"

namespace database {

FindIndex::FindIndex(const std::shared_ptr<Session>& session, jet::Table& table, std::size_t column)
    : session_(session), table_(&table), column_(column) {
  table.AddObserver(this);
}

FindIndex::~FindIndex() {
  if (const auto session = session_.lock()) table_->RemoveObserver(this);
}

void FindIndex::Add(Position position, const Comparable& value) {
  std::string key;
  if (AppendEqualityKey(key, value)) positions_.Add(key, position);
}

void FindIndex::Add(Position position, jet::RowId id, const jet::Row& row) {
  position_of_row_[id] = position;
  Add(position, ValueIn(row));
}

Position FindIndex::Find(const Comparable& value, Position from) const {
  std::string key;
  if (!AppendEqualityKey(key, value)) return kEndPosition;
  const auto* positions = positions_.Find(key);
  if (positions == nullptr) return kEndPosition;
  const auto found = positions->lower_bound(from);
  return found == positions->end() ? kEndPosition : *found;
}

void FindIndex::RowChanged(jet::RowId id, const jet::Row* old_row, const jet::Row* new_row) {
  const auto found = position_of_row_.find(id);
  if (found == position_of_row_.end()) return;
  const Position position = found->second;
  std::string old_key;
  std::string new_key;
  const bool had_key = old_row != nullptr && AppendEqualityKey(old_key, ValueIn(*old_row));
  const bool has_key = new_row != nullptr && AppendEqualityKey(new_key, ValueIn(*new_row));
  if (had_key != has_key || old_key != new_key) {
    if (had_key) positions_.Remove(old_key, position);
    if (has_key) positions_.Add(new_key, position);
  }
  if (new_row == nullptr) position_of_row_.erase(found);
}

Comparable FindIndex::ValueIn(const jet::Row& row) const {
  return ComparableOf(row[column_], table_->columns()[column_].collation);
}

}  // namespace database
