// Planning a row change: which other rows it reaches.
#include <algorithm>

#include "platform/jet/database_impl.h"
#include "platform/jet/error.h"
#include "platform/jet/row_change.h"

namespace jet {

namespace {

// Cascades that change one row more often than this chase each other in a circle.
constexpr unsigned kMaxAmendments = 64;

}  // namespace

const PlannedRow::Entry* PlannedRow::FindEntry(std::size_t index) const {
  const auto entry = std::find_if(entries.begin(), entries.end(),
                                  [&](const Entry& e) { return e.index == index; });
  return entry == entries.end() ? nullptr : &*entry;
}

RowId RowChange::Insert(Table::Impl& table, const Row& values,
                        std::optional<std::int32_t> autonumber) {
  table.RequireChangeable(RowOperation::kInsert);
  PlannedRow& row = rows_.emplace_back();
  row.table = &table;
  row.values = &values;
  row.autonumber = autonumber;
  Run();
  return row.id;
}

void RowChange::Update(Table::Impl& table, RowId id, const Row& values) {
  table.RequireChangeable(RowOperation::kUpdate);
  table.rules->Check(table.definition, values);
  Plan(table, id, LongValues::kRead).values = &values;
  Run();
}

void RowChange::Delete(Table::Impl& table, RowId id) {
  table.RequireChangeable(RowOperation::kDelete);
  Plan(table, id, table.OldLongValues()).values = nullptr;
  Run();
}

PlannedRow& RowChange::Plan(Table::Impl& table, RowId id, LongValues long_values) {
  std::optional<LoadedRow> old = table.ReadRow(id, long_values);
  if (!old) throw Error(ErrorKind::kRecordDeleted);
  PlannedRow& row = rows_.emplace_back();
  row.table = &table;
  row.id = id;
  row.old = std::move(old);
  row.values = &row.old->values;
  planned_.emplace(RowKey(&table, id), &row);
  Await(row);
  return row;
}

void RowChange::Await(PlannedRow& row) {
  if (row.waiting) return;
  row.waiting = true;
  waiting_.push_back(&row);
}

PlannedRow* RowChange::FindPlanned(Table::Impl& table, RowId id) {
  const auto found = planned_.find(RowKey(&table, id));
  return found == planned_.end() ? nullptr : found->second;
}

const PlannedRow* RowChange::FindPlanned(Table::Impl& table, RowId id) const {
  const auto found = planned_.find(RowKey(&table, id));
  return found == planned_.end() ? nullptr : found->second;
}

void RowChange::Cascade() {
  while (!waiting_.empty()) {
    PlannedRow& row = *waiting_.front();
    waiting_.pop_front();
    row.waiting = false;
    for (const ChildLink& link : row.table->children()) CascadeOver(link, row);
  }
}

void RowChange::CascadeOver(const ChildLink& link, const PlannedRow& row) {
  const TableIndex& own = row.table->indexes[link.own_index];
  const Row& old_values = row.old->values;
  // A key with a null is referred to by nobody.
  if (own.HasNull(old_values)) return;
  if (!row.is_delete()) {
    if (own.SameValues(old_values, *row.values)) return;
    if (!own.HasNull(*row.values) && own.Key(old_values) == own.Key(*row.values)) return;
  }

  Table::Impl& child_table = *link.child;
  const TableIndex& child_index = child_table.indexes[link.child_index];
  const std::vector<const Value*> key_values = own.ValuesIn(old_values);
  const RelationAction action = row.is_delete() ? link.on_delete : link.on_update;
  for (const RowId id : child_table.Find(link.child_index, key_values)) {
    if (action == RelationAction::kRefuse) {
      refusals_.push_back({&link, id, child_index.Prefix(key_values)});
      continue;
    }
    PlannedRow* planned = FindPlanned(child_table, id);
    PlannedRow& child =
        planned != nullptr ? *planned : Plan(child_table, id, child_table.OldLongValues());
    if (child.is_delete()) continue;
    if (row.is_delete() && action == RelationAction::kCascade) {
      child.values = nullptr;
      Await(child);
      continue;
    }
    // A row that was given another key meanwhile does not follow.
    if (child_index.Prefix(child_index.ValuesIn(*child.values)) != child_index.Prefix(key_values))
      continue;
    static const Value kNull{};
    std::vector<const Value*> wanted = row.is_delete()
                                           ? std::vector<const Value*>(own.columns().size(), &kNull)
                                           : own.ValuesIn(*row.values);
    Amend(child, child_index.columns(), wanted);
  }
}

void RowChange::Amend(PlannedRow& child, const std::vector<std::size_t>& columns,
                      const std::vector<const Value*>& values) {
  Row amended = *child.values;
  for (std::size_t i = 0; i < columns.size(); ++i) amended[columns[i]] = *values[i];
  if (++child.amendments > kMaxAmendments)
    throw Error(ErrorKind::kNotSupported, {child.table->entry.name},
                "cascades that chase each other in a circle");
  child.own_values = std::move(amended);
  child.values = &child.own_values;
  Await(child);
}

void RowChange::CheckRefusals() const {
  for (const Refusal& refusal : refusals_) {
    Table::Impl& child_table = *refusal.link->child;
    const PlannedRow* child = FindPlanned(child_table, refusal.child);
    if (child != nullptr) {
      const TableIndex& index = child_table.indexes[refusal.link->child_index];
      if (child->is_delete() || index.Prefix(index.ValuesIn(*child->values)) != refusal.key)
        continue;
    }
    throw Error(ErrorKind::kHasChildRows, {child_table.entry.name});
  }
}

}  // namespace jet
