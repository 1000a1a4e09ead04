// Checking a planned row change: every rule of every table, for the state afterwards.
#include <algorithm>
#include <set>
#include <tuple>

#include "platform/jet/error.h"
#include "platform/jet/row_change.h"

namespace jet {

namespace {

// The key of a row as it stands in the file; empty when this engine cannot make it.
Bytes KeyOfStored(const TableIndex& index, const Row& row) {
  try {
    return index.Key(row);
  } catch (const Error& error) {
    if (error.kind() != ErrorKind::kNotSupported) throw;
    return {};
  }
}

}  // namespace

void RowChange::Check() {
  for (PlannedRow& row : rows_) {
    row.table->RequireChangeable(row.operation());
    if (!row.is_delete()) row.table->rules->Check(row.table->definition, *row.values);
    PlanEntries(row);
  }
  for (const PlannedRow& row : rows_) {
    if (row.is_delete()) continue;
    if (!IsLoneInsert()) CheckUnique(row);
    CheckParents(row);
  }
  if (rows_.size() > 1) CheckUniqueAmongPlanned();
}

void RowChange::PlanEntries(PlannedRow& row) {
  for (std::size_t i = 0; i < row.table->indexes.size(); ++i) {
    const TableIndex& index = row.table->indexes[i];
    const bool same =
        !row.is_insert() && !row.is_delete() && index.SameValues(row.old->values, *row.values);
    if (same) continue;
    PlannedRow::Entry entry;
    entry.index = i;
    if (!row.is_insert() && index.HasEntry(row.old->values)) {
      entry.leaves = true;
      entry.old_key = KeyOfStored(index, row.old->values);
    }
    if (!row.is_delete()) {
      if (index.refuses_nulls() && index.HasNull(*row.values))
        throw Error(ErrorKind::kNullInKey, {index.name()});
      entry.arrives = index.HasEntry(*row.values);
      if (entry.arrives) entry.new_key = index.Key(*row.values);
    }
    const bool stays = entry.leaves && entry.arrives && entry.old_key == entry.new_key;
    if ((entry.leaves || entry.arrives) && !stays) row.entries.push_back(std::move(entry));
  }
}

void RowChange::CheckUnique(const PlannedRow& row) const {
  for (const PlannedRow::Entry& entry : row.entries) CheckUnique(row, entry);
}

void RowChange::CheckUnique(const PlannedRow& row, const PlannedRow::Entry& entry) const {
  const TableIndex& index = row.table->indexes[entry.index];
  if (!index.is_unique() || !entry.arrives || index.HasNull(*row.values)) return;
  const Bytes& key = entry.new_key;
  for (auto cursor = index.tree().LowerBound(key); !cursor.at_end(); cursor.Next()) {
    if (cursor.entry().key != key) return;
    const RowId other = cursor.row();
    if (other == row.id) continue;
    const PlannedRow* planned = FindPlanned(*row.table, other);
    if (planned != nullptr && planned->FindEntry(entry.index) != nullptr)
      continue;  // leaves; where it goes is compared among the planned rows
    // A change that was cut off may have left an entry that no longer fits its row.
    const std::optional<LoadedRow> holder = row.table->ReadRow(other, row.table->OldLongValues());
    if (holder && KeyOfStored(index, holder->values) == key)
      throw Error(ErrorKind::kDuplicateKey, {index.name()});
  }
}

void RowChange::CheckUniqueAmongPlanned() const {
  std::set<std::tuple<const Table::Impl*, std::size_t, Bytes>> keys;
  for (const PlannedRow& row : rows_) {
    if (row.is_delete()) continue;
    for (const PlannedRow::Entry& entry : row.entries) {
      const TableIndex& index = row.table->indexes[entry.index];
      if (!index.is_unique() || !entry.arrives || index.HasNull(*row.values)) continue;
      if (!keys.emplace(row.table, entry.index, entry.new_key).second)
        throw Error(ErrorKind::kDuplicateKey, {index.name()});
    }
  }
}

void RowChange::CheckParents(const PlannedRow& row) const {
  for (const ParentLink& link : row.table->parents()) {
    const TableIndex& own = row.table->indexes[link.own_index];
    // A key with a null refers to nothing.
    if (own.HasNull(*row.values)) continue;
    if (!row.is_insert() && own.SameValues(row.old->values, *row.values)) continue;
    const TableIndex& referenced = link.parent->indexes[link.parent_index];
    if (!ParentExists(link, referenced.KeyOf(own.ValuesIn(*row.values))))
      throw Error(ErrorKind::kNoParentRow, {link.parent->entry.name});
  }
}

bool RowChange::ParentExists(const ParentLink& link, const Bytes& key) const {
  const IndexTree& tree = link.parent->indexes[link.parent_index].tree();
  for (auto cursor = tree.LowerBound(key); !cursor.at_end(); cursor.Next()) {
    if (cursor.entry().key != key) break;
    const PlannedRow* planned = FindPlanned(*link.parent, cursor.row());
    if (planned == nullptr || planned->FindEntry(link.parent_index) == nullptr) return true;
  }
  return std::any_of(rows_.begin(), rows_.end(), [&](const PlannedRow& row) {
    if (row.table != link.parent) return false;
    const PlannedRow::Entry* entry = row.FindEntry(link.parent_index);
    return entry != nullptr && entry->arrives && entry->new_key == key;
  });
}

}  // namespace jet
