// Creating indexes: see the header.
#include "platform/jet/index_creator.h"

#include <algorithm>

#include "platform/jet/error.h"
#include "platform/jet/object_name.h"
#include "platform/jet/table_definition_store.h"

namespace jet {

namespace {

constexpr std::size_t kMaxIndexColumns = 10;
constexpr std::size_t kMaxLogicalIndexes = 32;

std::uint8_t FlagsOf(const IndexSpec& spec) {
  using index_flags::kAlways;
  using index_flags::kIgnoreNulls;
  using index_flags::kRefuseNulls;
  using index_flags::kUnique;
  if (spec.primary) return kAlways | kUnique | kRefuseNulls;
  return static_cast<std::uint8_t>(kAlways | (spec.unique ? kUnique : 0) |
                                   (spec.ignore_nulls ? kIgnoreNulls : 0) |
                                   (spec.refuse_nulls ? kRefuseNulls : 0));
}

std::vector<IndexColumn> ColumnsOf(const TableDefinition& definition, const IndexSpec& spec) {
  if (spec.columns.empty() || spec.columns.size() > kMaxIndexColumns)
    throw Error(ErrorKind::kNotSupported, {spec.name}, "an index needs 1 to 10 columns");
  std::vector<IndexColumn> columns;
  for (const IndexSpec::Column& wanted : spec.columns) {
    const Bytes folded = FoldName(wanted.name);
    const auto column =
        std::find_if(definition.columns.begin(), definition.columns.end(),
                     [&](const ColumnDefinition& c) { return FoldName(c.name) == folded; });
    if (column == definition.columns.end()) throw Error(ErrorKind::kObjectNotFound, {wanted.name});
    const bool repeated = std::any_of(columns.begin(), columns.end(), [&](const IndexColumn& c) {
      return c.column_number == column->number;
    });
    if (repeated) throw Error(ErrorKind::kObjectExists, {wanted.name}, "twice in one index");
    columns.push_back({.column_number = column->number, .ascending = wanted.ascending});
  }
  return columns;
}

}  // namespace

void AddTree(Database::Impl& database, PageNumber table, PhysicalIndex& index) {
  index.pages_map = database.allocator.NewMap();
  index.root = IndexTree::Create(database.pager, database.allocator, table, index.pages_map);
}

std::size_t AppendPhysicalIndex(Database::Impl& database, TableDefinition& definition,
                                std::vector<IndexColumn> columns, std::uint8_t flags) {
  PhysicalIndex index;
  index.columns = std::move(columns);
  index.flags = flags;
  AddTree(database, definition.page, index);
  definition.physical_indexes.push_back(std::move(index));
  return definition.physical_indexes.size() - 1;
}

std::uint32_t AppendLogicalIndex(std::u16string_view table, TableDefinition& definition,
                                 LogicalIndex index) {
  if (definition.logical_indexes.size() >= kMaxLogicalIndexes)
    throw Error(ErrorKind::kTooManyIndexes, {std::u16string(table)});
  const Bytes folded = FoldName(index.name);
  index.number = 0;
  for (const LogicalIndex& other : definition.logical_indexes) {
    if (FoldName(other.name) == folded) throw Error(ErrorKind::kObjectExists, {index.name});
    index.number = std::max(index.number, other.number + 1);
  }
  definition.logical_indexes.push_back(std::move(index));
  return definition.logical_indexes.back().number;
}

std::size_t AppendIndex(Database::Impl& database, std::u16string_view table,
                        TableDefinition& definition, const IndexSpec& spec) {
  CheckName(spec.name);
  const bool has_primary =
      std::any_of(definition.logical_indexes.begin(), definition.logical_indexes.end(),
                  [](const LogicalIndex& index) { return index.kind == IndexKind::kPrimaryKey; });
  if (spec.primary && has_primary)
    throw Error(ErrorKind::kObjectExists, {spec.name}, "the table has a primary key");
  const std::size_t position =
      AppendPhysicalIndex(database, definition, ColumnsOf(definition, spec), FlagsOf(spec));
  AppendLogicalIndex(table, definition,
                     {.name = spec.name,
                      .physical = static_cast<std::uint32_t>(position),
                      .kind = spec.primary ? IndexKind::kPrimaryKey : IndexKind::kOrdinary});
  const TableIndex index(database.pager, database.allocator, definition, position);
  if (!index.is_understood()) throw Error(ErrorKind::kNotSupported, {spec.name}, index.refusal());
  return position;
}

void FillIndex(Database::Impl& database, const Table::Impl& table, TableDefinition& definition,
               std::size_t position) {
  struct NewEntry {
    IndexEntry entry;
    bool has_null = false;
  };
  TableIndex index(database.pager, database.allocator, definition, position);
  std::vector<NewEntry> entries;
  RowStore::Scan scan(*table.rows);
  while (const auto raw = scan.Next()) {
    const Row row = table.Decode(*raw, LongValues::kRead).values;
    const bool has_null = index.HasNull(row);
    if (has_null && index.refuses_nulls()) throw Error(ErrorKind::kNullInKey, {index.name()});
    if (index.HasEntry(row)) entries.push_back({{index.Key(row), raw->id}, has_null});
  }
  std::sort(entries.begin(), entries.end(),
            [](const NewEntry& a, const NewEntry& b) { return a.entry < b.entry; });

  std::uint32_t distinct = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const bool repeats = i > 0 && entries[i].entry.key == entries[i - 1].entry.key;
    if (repeats && index.is_unique() && !entries[i].has_null)
      throw Error(ErrorKind::kDuplicateKey, {index.name()});
    if (!repeats) ++distinct;
    index.tree().Insert(entries[i].entry);
  }
  definition.physical_indexes[position].distinct_count = distinct;
}

void CreateIndex(Database::Impl& database, Table::Impl& table, const IndexSpec& spec) {
  table.RequireChangeable(RowOperation::kDelete);
  TableDefinition definition = table.definition;
  const std::size_t position = AppendIndex(database, table.entry.name, definition, spec);
  FillIndex(database, table, definition, position);
  WriteTableDefinition(database.pager, database.allocator, definition);
  database.catalog->MarkChanged(table.entry.id);
}

}  // namespace jet
