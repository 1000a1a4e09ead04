// One change to a row with everything that follows from it in other rows: planned, checked, done.
#pragma once

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/jet/table_impl.h"

namespace jet {

// A row as it was and as it is to be.
struct PlannedRow {
  Table::Impl* table = nullptr;
  RowId id;                                // null until an inserted row has its place
  std::optional<LoadedRow> old;            // nothing for an inserted row
  const Row* values = nullptr;             // what it is to be; nullptr for a deleted row
  Row own_values;                          // where `values` points once a cascade has changed them
  std::optional<std::int32_t> autonumber;  // becomes the table's last one
  unsigned amendments = 0;                 // cascades that changed it
  bool waiting = false;                    // for its referencing rows to be looked at

  struct Entry {  // what the change means for one index
    std::size_t index = 0;
    bool leaves = false;   // the old entry goes
    bool arrives = false;  // a new one comes
    Bytes old_key;         // empty when the key of the entry that goes cannot be made
    Bytes new_key;
  };
  std::vector<Entry> entries;  // indexes that change only

  bool is_insert() const { return !old; }
  bool is_delete() const { return values == nullptr; }
  RowOperation operation() const {
    if (is_insert()) return RowOperation::kInsert;
    return is_delete() ? RowOperation::kDelete : RowOperation::kUpdate;
  }
  // The entry planned for this index; nullptr when the change does not touch it.
  const Entry* FindEntry(std::size_t index) const;
};

// Collects all rows that a change reaches through cascades, checks every rule of every table for
// the state afterwards, and only then changes anything, in one page transaction. Circles and tables
// that refer to themselves are visited once.
//
// One object a change. After an exception nothing has changed.
class RowChange {
 public:
  explicit RowChange(Database::Impl& database) : database_(database) {}

  // `values` are whole: autonumbers and defaults filled in. They must live until the call returns.
  // `autonumber`, when given, becomes the last one handed out.
  RowId Insert(Table::Impl& table, const Row& values, std::optional<std::int32_t> autonumber);
  void Update(Table::Impl& table, RowId id, const Row& values);
  void Delete(Table::Impl& table, RowId id);

 private:
  struct Refusal {  // a referencing row that must have gone or changed in the end
    const ChildLink* link = nullptr;
    RowId child;
    Bytes key;  // in the child's index
  };
  using RowKey = std::pair<Table::Impl*, RowId>;

  void Run();

  // Planning: row_change_plan.cpp.
  PlannedRow& Plan(Table::Impl& table, RowId id, LongValues long_values);
  void Await(PlannedRow& row);
  PlannedRow* FindPlanned(Table::Impl& table, RowId id);
  const PlannedRow* FindPlanned(Table::Impl& table, RowId id) const;
  void Cascade();
  void CascadeOver(const ChildLink& link, const PlannedRow& row);
  void Amend(PlannedRow& child, const std::vector<std::size_t>& columns,
             const std::vector<const Value*>& values);
  void CheckRefusals() const;

  // Checking: row_change_check.cpp.
  void Check();
  static void PlanEntries(PlannedRow& row);
  // The usual case, whose keys are compared when its entries are added: that finds an equal key
  // without another search, and takes back the one row when there is one.
  bool IsLoneInsert() const { return rows_.size() == 1 && rows_.front().is_insert(); }
  void CheckUnique(const PlannedRow& row) const;
  void CheckUnique(const PlannedRow& row, const PlannedRow::Entry& entry) const;
  void CheckUniqueAmongPlanned() const;
  void CheckParents(const PlannedRow& row) const;
  bool ParentExists(const ParentLink& link, const Bytes& key) const;

  // Doing: row_change_apply.cpp.
  void Apply(PlannedRow& row);
  void ApplyInsert(PlannedRow& row);
  void ApplyUpdate(PlannedRow& row);
  void ApplyDelete(PlannedRow& row);
  Bytes BuildStored(const PlannedRow& row) const;
  void AddEntry(const PlannedRow& row, const PlannedRow::Entry& entry) const;
  void Notify() const;

  Database::Impl& database_;
  std::deque<PlannedRow> rows_;  // addresses stay good while it grows
  std::map<RowKey, PlannedRow*> planned_;
  std::deque<PlannedRow*> waiting_;  // rows whose referencing rows are still to be looked at
  std::vector<Refusal> refusals_;
};

}  // namespace jet
