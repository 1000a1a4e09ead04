// The system tables: see the header.
#include "platform/jet/system_tables.h"

#include <algorithm>

#include "platform/jet/column_layout.h"
#include "platform/jet/object_name.h"

namespace jet {

namespace {

constexpr std::uint16_t kText255 = 510;  // bytes
constexpr std::uint16_t kBinary510 = 510;

// Flags of physical indexes.
constexpr std::uint8_t kUnique = 0x81;
constexpr std::uint8_t kIgnoresNulls = 0x82;
constexpr std::uint8_t kRefusesNulls = 0x88;
constexpr std::uint8_t kMeaningfulFlags = 0x0b;

constexpr std::array kObjectColumns = {
    SystemColumn{u"Id", ColumnType::kLong, 4},
    SystemColumn{u"ParentId", ColumnType::kLong, 4},
    SystemColumn{u"Name", ColumnType::kText, kText255},
    SystemColumn{u"Type", ColumnType::kInteger, 2},
    SystemColumn{u"DateCreate", ColumnType::kDate, 8},
    SystemColumn{u"DateUpdate", ColumnType::kDate, 8},
    SystemColumn{u"Owner", ColumnType::kBinary, kBinary510, true},
    SystemColumn{u"Flags", ColumnType::kLong, 4},
    SystemColumn{u"Database", ColumnType::kMemo},
    SystemColumn{u"Connect", ColumnType::kMemo},
    SystemColumn{u"ForeignName", ColumnType::kText, kText255},
    SystemColumn{u"RmtInfoShort", ColumnType::kBinary, kBinary510},
    SystemColumn{u"RmtInfoLong", ColumnType::kOle},
    SystemColumn{u"Lv", ColumnType::kOle},
    SystemColumn{u"LvProp", ColumnType::kOle},
    SystemColumn{u"LvModule", ColumnType::kOle},
    SystemColumn{u"LvExtra", ColumnType::kOle},
};
constexpr std::array kRightColumns = {
    SystemColumn{u"ObjectId", ColumnType::kLong, 4},
    SystemColumn{u"SID", ColumnType::kBinary, kBinary510, true},
    SystemColumn{u"ACM", ColumnType::kLong, 4},
    SystemColumn{u"FInheritable", ColumnType::kBoolean, 1},
};
constexpr std::array kQueryColumns = {
    SystemColumn{u"ObjectId", ColumnType::kLong, 4},
    SystemColumn{u"Attribute", ColumnType::kByte, 1},
    SystemColumn{u"Order", ColumnType::kBinary, kBinary510},
    SystemColumn{u"Name1", ColumnType::kText, kText255},
    SystemColumn{u"Name2", ColumnType::kText, kText255},
    SystemColumn{u"Expression", ColumnType::kMemo},
    SystemColumn{u"Flag", ColumnType::kInteger, 2},
    SystemColumn{u"LvExtra", ColumnType::kLong, 4},
};
constexpr std::array kRelationshipColumns = {
    SystemColumn{u"szRelationship", ColumnType::kText, kText255},
    SystemColumn{u"grbit", ColumnType::kLong, 4},
    SystemColumn{u"ccolumn", ColumnType::kLong, 4},
    SystemColumn{u"icolumn", ColumnType::kLong, 4},
    SystemColumn{u"szObject", ColumnType::kText, kText255},
    SystemColumn{u"szColumn", ColumnType::kText, kText255},
    SystemColumn{u"szReferencedObject", ColumnType::kText, kText255},
    SystemColumn{u"szReferencedColumn", ColumnType::kText, kText255},
};

constexpr std::array<std::u16string_view, 2> kParentIdName = {u"ParentId", u"Name"};
constexpr std::array<std::u16string_view, 1> kId = {u"Id"};
constexpr std::array<std::u16string_view, 1> kObjectId = {u"ObjectId"};
constexpr std::array<std::u16string_view, 3> kQueryKey = {u"ObjectId", u"Attribute", u"Order"};
constexpr std::array<std::u16string_view, 1> kRelationshipName = {u"szRelationship"};
constexpr std::array<std::u16string_view, 1> kRelationshipObject = {u"szObject"};
constexpr std::array<std::u16string_view, 1> kReferencedObject = {u"szReferencedObject"};

constexpr std::array kObjectIndexes = {
    SystemIndex{u"ParentIdName", kParentIdName, kUnique, IndexKind::kOrdinary},
    SystemIndex{u"Id", kId, kUnique, IndexKind::kPrimaryKey},
};
constexpr std::array kRightIndexes = {
    SystemIndex{u"ObjectId", kObjectId, kRefusesNulls, IndexKind::kOrdinary},
};
constexpr std::array kQueryIndexes = {
    SystemIndex{u"ObjectIdAttribute", kQueryKey, kUnique, IndexKind::kPrimaryKey},
};
constexpr std::array kRelationshipIndexes = {
    SystemIndex{u"szRelationship", kRelationshipName, kIgnoresNulls, IndexKind::kOrdinary},
    SystemIndex{u"szObject", kRelationshipObject, kIgnoresNulls, IndexKind::kOrdinary},
    SystemIndex{u"szReferencedObject", kReferencedObject, kIgnoresNulls, IndexKind::kOrdinary},
};

constexpr std::array kSystemTables = {
    SystemTable{u"MSysObjects", system_table::kObjects, kObjectColumns, kObjectIndexes},
    SystemTable{u"MSysACEs", system_table::kRights, kRightColumns, kRightIndexes},
    SystemTable{u"MSysQueries", system_table::kQueries, kQueryColumns, kQueryIndexes},
    SystemTable{u"MSysRelationships", system_table::kRelationships, kRelationshipColumns,
                kRelationshipIndexes},
};

std::uint16_t NumberOf(const SystemTable& table, std::u16string_view column) {
  const auto found = std::find_if(table.columns.begin(), table.columns.end(),
                                  [&](const SystemColumn& c) { return c.name == column; });
  return static_cast<std::uint16_t>(found - table.columns.begin());
}

bool ByName(std::u16string_view one, std::u16string_view other) {
  return FoldName(one) < FoldName(other);
}

}  // namespace

std::span<const SystemTable> SystemTables() { return kSystemTables; }

TableDefinition DefinitionOf(const SystemTable& table, Collation collation) {
  TableDefinition definition;
  definition.page = table.page;
  definition.system = true;
  for (const SystemColumn& column : table.columns) {
    std::uint8_t flags = column_flags::kSystem;
    if (column.holds_account) flags |= column_flags::kHoldsAccount;
    AppendColumn(definition, {.name = std::u16string(column.name),
                              .type = column.type,
                              .length = column.length,
                              .collation = collation,
                              .flags = flags});
  }
  std::sort(definition.columns.begin(), definition.columns.end(),
            [](const auto& a, const auto& b) { return ByName(a.name, b.name); });

  for (const SystemIndex& index : table.indexes) {
    PhysicalIndex physical;
    for (const std::u16string_view column : index.columns)
      physical.columns.push_back({.column_number = NumberOf(table, column)});
    physical.flags = index.flags;
    const auto number = static_cast<std::uint32_t>(definition.physical_indexes.size());
    definition.physical_indexes.push_back(std::move(physical));
    definition.logical_indexes.push_back({.name = std::u16string(index.name),
                                          .number = number,
                                          .physical = number,
                                          .kind = index.kind});
  }
  std::sort(definition.logical_indexes.begin(), definition.logical_indexes.end(),
            [](const auto& a, const auto& b) { return ByName(a.name, b.name); });
  return definition;
}

bool IsAsExpected(const SystemTable& table, const TableDefinition& definition) {
  const TableDefinition expected = DefinitionOf(table, Collation{});
  const auto same_column = [&](const ColumnDefinition& column) {
    const ColumnDefinition* found = definition.FindColumn(column.number);
    return found != nullptr && found->name == column.name && found->type == column.type &&
           found->is_fixed() == column.is_fixed() &&
           (column.is_fixed() ? found->fixed_offset == column.fixed_offset
                              : found->slot == column.slot);
  };
  const auto same_index = [&](const LogicalIndex& index) {
    const auto found =
        std::find_if(definition.logical_indexes.begin(), definition.logical_indexes.end(),
                     [&](const LogicalIndex& l) { return l.name == index.name; });
    if (found == definition.logical_indexes.end()) return false;
    const PhysicalIndex& physical = definition.physical_indexes.at(found->physical);
    const PhysicalIndex& wanted = expected.physical_indexes.at(index.physical);
    return physical.columns == wanted.columns && found->kind == index.kind &&
           (physical.flags & kMeaningfulFlags) == (wanted.flags & kMeaningfulFlags);
  };
  return definition.columns.size() == expected.columns.size() &&
         definition.logical_indexes.size() == expected.logical_indexes.size() &&
         std::all_of(expected.columns.begin(), expected.columns.end(), same_column) &&
         std::all_of(expected.logical_indexes.begin(), expected.logical_indexes.end(), same_index);
}

}  // namespace jet
