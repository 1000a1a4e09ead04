// Creating and listing relationships: see the header.
#include "platform/jet/relationship_creator.h"

#include <algorithm>
#include <map>

#include "platform/jet/error.h"
#include "platform/jet/index_creator.h"
#include "platform/jet/named_row.h"
#include "platform/jet/object_name.h"
#include "platform/jet/system_tables.h"
#include "platform/jet/table_definition_store.h"

namespace jet {

namespace {

// Bits of a relationship's row in the catalog.
namespace relation_flags {
constexpr std::int32_t kOneToOne = 0x1;
constexpr std::int32_t kNotEnforced = 0x2;
constexpr std::int32_t kCascadeUpdates = 0x100;
constexpr std::int32_t kCascadeDeletes = 0x1000;
}  // namespace relation_flags

constexpr std::size_t kMaxRelationshipColumns = 10;

// The columns of both sides, a pair each, by position in their tables.
struct ColumnPair {
  std::size_t child = 0;
  std::size_t parent = 0;
};

std::size_t PositionOf(const Table::Impl& table, const std::u16string& column) {
  const auto found = table.columns_by_name.find(FoldName(column));
  if (found == table.columns_by_name.end()) throw Error(ErrorKind::kObjectNotFound, {column});
  return found->second;
}

std::vector<ColumnPair> PairsOf(const Table::Impl& child, const Table::Impl& parent,
                                const RelationshipSpec& spec) {
  if (spec.columns.empty() || spec.columns.size() > kMaxRelationshipColumns ||
      spec.columns.size() != spec.referenced_columns.size())
    throw Error(ErrorKind::kNotSupported, {spec.name},
                "a relationship needs 1 to 10 columns of either table");
  std::vector<ColumnPair> pairs;
  for (std::size_t i = 0; i < spec.columns.size(); ++i) {
    const ColumnPair pair{.child = PositionOf(child, spec.columns[i]),
                          .parent = PositionOf(parent, spec.referenced_columns[i])};
    if (child.definition.columns[pair.child].type != parent.definition.columns[pair.parent].type)
      throw Error(ErrorKind::kTypeMismatch, {spec.columns[i]}, "columns of unlike types");
    pairs.push_back(pair);
  }
  return pairs;
}

// The position of a unique index on exactly these columns in any order.
std::optional<std::size_t> FindUniqueIndex(const Table::Impl& table,
                                           const std::vector<std::size_t>& columns) {
  for (std::size_t i = 0; i < table.indexes.size(); ++i) {
    const std::vector<std::size_t>& own = table.indexes[i].columns();
    if (table.indexes[i].is_unique() &&
        std::is_permutation(own.begin(), own.end(), columns.begin(), columns.end()))
      return i;
  }
  return std::nullopt;
}

std::vector<std::size_t> ChildColumns(const std::vector<ColumnPair>& pairs) {
  std::vector<std::size_t> columns;
  columns.reserve(pairs.size());
  for (const ColumnPair& pair : pairs) columns.push_back(pair.child);
  return columns;
}

// Pairs in the order of the parent's index.
std::vector<ColumnPair> InIndexOrder(std::vector<ColumnPair> pairs, const TableIndex& index) {
  const auto place = [&](const ColumnPair& pair) {
    return std::find(index.columns().begin(), index.columns().end(), pair.parent);
  };
  std::sort(pairs.begin(), pairs.end(),
            [&](const ColumnPair& a, const ColumnPair& b) { return place(a) < place(b); });
  return pairs;
}

// Both ends in the definitions, the child's index filled and checked against the parent's.
class EndsCreator {
 public:
  EndsCreator(Database::Impl& database, Table::Impl& child, Table::Impl& parent,
              const RelationshipSpec& spec)
      : database_(database),
        child_(child),
        parent_(parent),
        spec_(spec),
        child_definition_(child.definition),
        parent_definition_(parent.definition) {}

  void Create(const std::vector<ColumnPair>& pairs, std::size_t parent_index) {
    const std::vector<ColumnPair> ordered = InIndexOrder(pairs, parent_.indexes[parent_index]);
    CheckRows(ordered, parent_.indexes[parent_index]);
    const std::size_t child_index = ChildIndex(ordered);

    const RelationAction on_update =
        spec_.cascade_updates ? RelationAction::kCascade : RelationAction::kRefuse;
    const RelationAction on_delete =
        spec_.cascade_deletes ? RelationAction::kCascade : RelationAction::kRefuse;
    LogicalIndex end;
    end.kind = IndexKind::kRelationship;
    end.on_update = on_update;
    end.on_delete = on_delete;
    end.name = HiddenName(ParentDefinition());
    end.physical = static_cast<std::uint32_t>(parent_index);
    end.side = RelationSide::kReferredTo;
    end.other_table = child_definition_.page;
    const std::uint32_t parent_number =
        AppendLogicalIndex(parent_.entry.name, ParentDefinition(), end);
    end.name = spec_.name;
    end.physical = static_cast<std::uint32_t>(child_index);
    end.side = RelationSide::kRefers;
    end.other_table = parent_definition_.page;
    end.other_number = parent_number;
    const std::uint32_t child_number =
        AppendLogicalIndex(child_.entry.name, child_definition_, end);
    for (LogicalIndex& logical : ParentDefinition().logical_indexes)
      if (logical.number == parent_number) logical.other_number = child_number;

    WriteTableDefinition(database_.pager, database_.allocator, child_definition_);
    if (!is_own_parent())
      WriteTableDefinition(database_.pager, database_.allocator, parent_definition_);
  }

 private:
  bool is_own_parent() const { return &child_ == &parent_; }
  // A table that refers to itself has one definition.
  TableDefinition& ParentDefinition() {
    return is_own_parent() ? child_definition_ : parent_definition_;
  }

  // The parent's end is named after its own number.
  static std::u16string HiddenName(const TableDefinition& parent) {
    std::uint32_t number = 0;
    for (const LogicalIndex& logical : parent.logical_indexes)
      number = std::max(number, logical.number + 1);
    return u".r" + std::u16string(1, static_cast<char16_t>(u'A' + number));
  }

  // An index of the child that has these columns already, or a new one.
  std::size_t ChildIndex(const std::vector<ColumnPair>& pairs) {
    std::vector<IndexColumn> columns;
    columns.reserve(pairs.size());
    for (const ColumnPair& pair : pairs)
      columns.push_back({.column_number = child_.definition.columns[pair.child].number});
    const auto& indexes = child_definition_.physical_indexes;
    const auto shared =
        std::find_if(indexes.begin(), indexes.end(), [&](const PhysicalIndex& index) {
          return index.columns == columns && !index.ignores_nulls();
        });
    if (shared != indexes.end()) return static_cast<std::size_t>(shared - indexes.begin());
    const std::size_t position =
        AppendPhysicalIndex(database_, child_definition_, std::move(columns), index_flags::kAlways);
    FillIndex(database_, child_, child_definition_, position);
    return position;
  }

  void CheckRows(const std::vector<ColumnPair>& pairs, const TableIndex& parent_index) const {
    RowStore::Scan scan(*child_.rows);
    while (const auto raw = scan.Next()) {
      const Row row = child_.Decode(*raw, LongValues::kSkip).values;
      std::vector<const Value*> key;
      for (const ColumnPair& pair : pairs)
        if (!IsNull(row[pair.child])) key.push_back(&row[pair.child]);
      if (key.size() == pairs.size() && !parent_index.tree().ContainsKey(parent_index.KeyOf(key)))
        throw Error(ErrorKind::kNoParentRow, {parent_.entry.name});
    }
  }

  Database::Impl& database_;
  Table::Impl& child_;
  Table::Impl& parent_;
  const RelationshipSpec& spec_;
  TableDefinition child_definition_;
  TableDefinition parent_definition_;
};

void AddCatalogRows(Database::Impl& database, const Table::Impl& child, const Table::Impl& parent,
                    const std::vector<ColumnPair>& pairs, const RelationshipSpec& spec) {
  std::int32_t flags = spec.enforced ? 0 : relation_flags::kNotEnforced;
  if (spec.cascade_updates) flags |= relation_flags::kCascadeUpdates;
  if (spec.cascade_deletes) flags |= relation_flags::kCascadeDeletes;
  if (FindUniqueIndex(child, ChildColumns(pairs))) flags |= relation_flags::kOneToOne;

  Table& table = database.FindTable(SystemTables()[3].name);
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    Row row =
        NamedRow(table, {{u"szRelationship", spec.name},
                         {u"grbit", flags},
                         {u"ccolumn", static_cast<std::int32_t>(pairs.size())},
                         {u"icolumn", static_cast<std::int32_t>(i)},
                         {u"szObject", child.entry.name},
                         {u"szColumn", child.definition.columns[pairs[i].child].name},
                         {u"szReferencedObject", parent.entry.name},
                         {u"szReferencedColumn", parent.definition.columns[pairs[i].parent].name}});
    table.impl().Insert(row);
  }
  const auto admin = std::span(account::kAdmin);
  const std::int32_t id = database.catalog->NextObjectId();
  database.catalog->Add({.id = id,
                         .parent = object_id::kRelationships,
                         .name = spec.name,
                         .type = ObjectType::kRelationship,
                         .owner = Bytes(admin.begin(), admin.end())},
                        {});
  database.catalog->InheritRights(id, object_id::kRelationships);
}

}  // namespace

void CreateRelationship(Database::Impl& database, Table::Impl& child, Table::Impl& parent,
                        const RelationshipSpec& spec) {
  CheckName(spec.name);
  for (const Table::Impl* table : {&child, &parent})
    if ((table->entry.flags & object_flags::kNotForUsers) != 0)
      throw Error(ErrorKind::kNotSupported, {table->entry.name}, "a system table");
  child.RequireChangeable(RowOperation::kDelete);
  parent.RequireChangeable(RowOperation::kDelete);
  if (database.catalog->HasRelationship(spec.name))
    throw Error(ErrorKind::kObjectExists, {spec.name});
  const std::vector<ColumnPair> pairs = PairsOf(child, parent, spec);
  if (spec.enforced) {
    std::vector<std::size_t> referenced;
    referenced.reserve(pairs.size());
    for (const ColumnPair& pair : pairs) referenced.push_back(pair.parent);
    const auto parent_index = FindUniqueIndex(parent, referenced);
    if (!parent_index)
      throw Error(ErrorKind::kObjectNotFound, {spec.referenced_columns.front()},
                  "the referenced columns have no unique index");
    EndsCreator(database, child, parent, spec).Create(pairs, *parent_index);
    database.catalog->MarkChanged(child.entry.id);
    if (&child != &parent) database.catalog->MarkChanged(parent.entry.id);
  }
  AddCatalogRows(database, child, parent, pairs, spec);
}

std::vector<RelationshipSpec> ReadRelationships(Database::Impl& database) {
  Table& table = database.FindTable(SystemTables()[3].name);
  struct Part {
    std::int32_t place = 0;
    std::u16string column;
    std::u16string referenced_column;
  };
  std::vector<RelationshipSpec> relationships;
  std::vector<std::vector<Part>> parts;
  std::map<Bytes, std::size_t> by_name;
  Table::Scan scan = table.ScanRows();
  while (const auto stored = scan.Next()) {
    const auto text = [&](std::u16string_view column) {
      return Get<std::u16string>(table, stored->values, column);
    };
    const auto flags = Get<std::int32_t>(table, stored->values, u"grbit");
    const auto [known, is_new] =
        by_name.emplace(FoldName(text(u"szRelationship")), relationships.size());
    if (is_new) {
      relationships.push_back({.name = text(u"szRelationship"),
                               .table = text(u"szObject"),
                               .referenced_table = text(u"szReferencedObject"),
                               .enforced = (flags & relation_flags::kNotEnforced) == 0,
                               .cascade_updates = (flags & relation_flags::kCascadeUpdates) != 0,
                               .cascade_deletes = (flags & relation_flags::kCascadeDeletes) != 0});
      parts.emplace_back();
    }
    parts[known->second].push_back({.place = Get<std::int32_t>(table, stored->values, u"icolumn"),
                                    .column = text(u"szColumn"),
                                    .referenced_column = text(u"szReferencedColumn")});
  }
  for (std::size_t i = 0; i < relationships.size(); ++i) {
    std::sort(parts[i].begin(), parts[i].end(),
              [](const Part& a, const Part& b) { return a.place < b.place; });
    for (Part& part : parts[i]) {
      relationships[i].columns.push_back(std::move(part.column));
      relationships[i].referenced_columns.push_back(std::move(part.referenced_column));
    }
  }
  return relationships;
}

}  // namespace jet
