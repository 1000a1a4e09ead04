// What an open table keeps ready, so that reading and changing a row parses nothing anew.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/jet/catalog.h"
#include "platform/jet/constraints.h"
#include "platform/jet/database.h"
#include "platform/jet/long_value_store.h"
#include "platform/jet/row_codec.h"
#include "platform/jet/row_store.h"
#include "platform/jet/table.h"
#include "platform/jet/table_index.h"

namespace jet {

// This table refers to another: a row's key must exist there.
struct ParentLink {
  Table::Impl* parent = nullptr;
  std::size_t parent_index = 0;
  std::size_t own_index = 0;  // its columns correspond to those of parent_index in order
};

// Another table refers to this one.
struct ChildLink {
  Table::Impl* child = nullptr;
  std::size_t child_index = 0;
  std::size_t own_index = 0;
  RelationAction on_update = RelationAction::kRefuse;
  RelationAction on_delete = RelationAction::kRefuse;
};

// A row's values, and the fields of its long values by column position (empty when the table has
// no such columns).
struct LoadedRow {
  Row values;
  std::vector<std::optional<LongValueField>> fields;
};

enum class LongValues { kRead, kSkip };  // skipped ones stay Null

enum class RowOperation { kInsert, kUpdate, kDelete };

struct Table::Impl {
  Impl(Database::Impl& owner, CatalogEntry catalog_entry);

  // Reads the definition and the properties anew, after the table's design changed.
  void Load();

  std::optional<LoadedRow> ReadRow(RowId id, LongValues which) const;
  LoadedRow Decode(const RawRow& raw, LongValues which) const;

  // Whether a row's long values are wanted when it goes or a cascade changes it: observers see
  // them, keys may be made of them, null may be refused. Skipped ones stay as they are.
  LongValues OldLongValues() const;

  // Rows whose leading index columns equal the values, each compared with the row itself, so that
  // an entry left behind by a cut-off change is not taken for a row.
  std::vector<RowId> Find(std::size_t index, std::span<const Value* const> values) const;

  // As Table::Insert and Update, for the engine's own tables as well. Without `is_given` no Null
  // is.
  RowId Insert(Row& row, const std::vector<bool>* is_given = nullptr);
  void Update(RowId id, const Row& row);

  // Throws kNotSupported with the reason when rows of this table cannot be changed so.
  void RequireChangeable(RowOperation operation);

  // The relationships of this table, prepared at the first change.
  const std::vector<ParentLink>& parents();
  const std::vector<ChildLink>& children();

  // The row's autonumber when it lies beyond the last one, in the direction of counting; nothing
  // for random ones.
  std::optional<std::int32_t> LeadingAutonumber(const Row& row) const;

  // Whether no row has an autonumber beyond the last one handed out, so that the next is free.
  bool AutonumberLeads();

  // Counters of the definition, in memory and in the transaction in progress.
  void AddRows(int difference);
  void SetLastAutonumber(std::int32_t value);
  void CountDistinctKey(std::size_t index);
  // Restores the counters in memory that a change in progress has moved.
  void KeepCounters();
  void RestoreCounters();

  Database::Impl& database;
  CatalogEntry entry;
  TableDefinition definition;
  std::optional<TableRules> rules;
  std::optional<RowStore> rows;
  std::vector<TableIndex> indexes;
  std::vector<std::optional<LongValueStore>> long_values;  // by column position
  bool has_long_values = false;
  std::optional<std::size_t> autonumber_column;
  std::map<Bytes, std::size_t> columns_by_name;  // folded name, position
  std::string refusal;                           // why no row may be changed
  std::vector<TableObserver*> observers;

 private:
  struct Counters {
    std::uint32_t row_count = 0;
    std::int32_t last_autonumber = 0;
    std::vector<std::uint32_t> distinct_counts;
  };

  std::string FindRefusal() const;
  void PrepareLinks();
  void PrepareLink(const LogicalIndex& logical);
  bool HoldsValues(RowId id, const TableIndex& index, std::span<const Value* const> values) const;
  std::vector<RowId> FindByScan(const TableIndex& index,
                                std::span<const Value* const> values) const;
  Value ColumnValue(const StoredRow& row, std::size_t at) const;

  std::optional<bool> autonumber_leads_;  // nothing until looked for
  bool links_prepared_ = false;
  std::string link_refusal_;
  std::vector<ParentLink> parents_;
  std::vector<ChildLink> children_;
  Counters kept_counters_;
};

}  // namespace jet
