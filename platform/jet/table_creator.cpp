// Creating tables: see the header.
#include "platform/jet/table_creator.h"

#include <algorithm>
#include <set>

#include "platform/jet/column_layout.h"
#include "platform/jet/constraints.h"
#include "platform/jet/error.h"
#include "platform/jet/index_creator.h"
#include "platform/jet/object_name.h"
#include "platform/jet/table_definition_store.h"

namespace jet {

namespace {

constexpr std::size_t kMaxColumns = 255;
constexpr std::size_t kMaxTextLength = 255;    // UTF-16 units
constexpr std::size_t kMaxBinaryLength = 510;  // bytes

std::uint16_t ByteLength(const ColumnSpec& spec) {
  if (const auto fixed = LengthOf(spec.type)) return *fixed;
  const bool is_text = spec.type == ColumnType::kText;
  if (!is_text && spec.type != ColumnType::kBinary) return 0;
  const std::size_t limit = is_text ? kMaxTextLength : kMaxBinaryLength;
  if (spec.size > limit) throw Error(ErrorKind::kTooLong, {spec.name}, "a column is too wide");
  const std::size_t size = spec.size == 0 ? limit : spec.size;
  return static_cast<std::uint16_t>(is_text ? size * sizeof(char16_t) : size);
}

bool HoldsText(const ColumnSpec& spec) {
  return spec.type == ColumnType::kText || spec.type == ColumnType::kMemo;
}

ColumnDefinition ColumnOf(const ColumnSpec& spec, Collation collation) {
  if (spec.type == ColumnType::kFixedBytes)
    throw Error(ErrorKind::kNotSupported, {spec.name}, "a column of a type for the host alone");
  ColumnDefinition column;
  column.name = spec.name;
  column.type = spec.type;
  column.length = ByteLength(spec);
  if (spec.type == ColumnType::kNumeric) {
    if (spec.scale > spec.precision) throw Error(ErrorKind::kOutOfRange, {spec.name});
    column.precision = spec.precision;
    column.scale = spec.scale;
  } else {
    column.collation = collation;
  }
  if (spec.autonumber) {
    if (spec.type != ColumnType::kLong && spec.type != ColumnType::kGuid)
      throw Error(ErrorKind::kNotSupported, {spec.name}, "an autonumber of this type");
    column.flags =
        spec.type == ColumnType::kLong ? column_flags::kAutonumber : column_flags::kAutoGuid;
  }
  if (HoldsText(spec) && spec.compress) column.extra_flags = column_flags::kMayCompress;
  return column;
}

void CheckNames(const TableSpec& spec) {
  CheckName(spec.name);
  if (spec.columns.size() > kMaxColumns) throw Error(ErrorKind::kTooManyColumns, {spec.name});
  std::set<Bytes> names;
  for (const ColumnSpec& column : spec.columns) {
    CheckName(column.name);
    if (!names.insert(FoldName(column.name)).second)
      throw Error(ErrorKind::kObjectExists, {column.name});
  }
  const auto autonumbers =
      std::count_if(spec.columns.begin(), spec.columns.end(), [](const ColumnSpec& column) {
        return column.autonumber && column.type == ColumnType::kLong;
      });
  if (autonumbers > 1)
    throw Error(ErrorKind::kNotSupported, {spec.name}, "a table with two autonumbers");
}

// The limits that no single name is to blame for.
void CheckTableLimits(const TableSpec& spec, const TableDefinition& definition) {
  if (definition.columns.empty())
    throw Error(ErrorKind::kNotSupported, {spec.name}, "a table without columns");
  try {
    CheckLimits(definition);
  } catch (const Error& error) {
    if (!error.names().empty()) throw;
    throw Error(error.kind(), {spec.name}, error.what());
  }
}

Bytes PropertiesOf(const TableSpec& spec) {
  constexpr std::uint16_t kObjectGroup = 0;
  constexpr std::uint16_t kColumnGroup = 1;
  PropertyBlob blob;
  blob.groups.push_back({kObjectGroup, {}, {}});
  for (const ColumnSpec& column : spec.columns) {
    PropertyGroup group{kColumnGroup, column.name, {}};
    group.properties.push_back(
        BooleanProperty(std::u16string(property::kRequired), column.required));
    if (HoldsText(column))
      group.properties.push_back(BooleanProperty(std::u16string(property::kAllowZeroLength),
                                                 column.allow_zero_length.value_or(true)));
    if (column.autonumber && column.type == ColumnType::kGuid)
      group.properties.push_back(
          TextProperty(std::u16string(property::kDefaultValue), u"GenGUID()"));
    blob.groups.push_back(std::move(group));
  }
  return blob.Serialize();
}

}  // namespace

void AddMaps(Database::Impl& database, TableDefinition& definition) {
  definition.owned_pages = database.allocator.NewMap();
  definition.pages_with_room = database.allocator.NewMap();
  for (const ColumnDefinition& column : definition.columns) {
    if (!column.is_long_value()) continue;
    const RowPointer owned = database.allocator.NewMap();
    definition.long_value_maps.push_back(
        {.column_number = column.number, .owned = owned, .with_room = database.allocator.NewMap()});
  }
}

void CreateTable(Database::Impl& database, const TableSpec& spec) {
  CheckNames(spec);
  if (database.catalog->HasTableOrQuery(spec.name))
    throw Error(ErrorKind::kTableExists, {spec.name});
  TableDefinition definition;
  for (const ColumnSpec& column : spec.columns)
    AppendColumn(definition, ColumnOf(column, database.header.collation()));
  CheckTableLimits(spec, definition);

  definition.page = database.allocator.Take();
  AddMaps(database, definition);
  for (const IndexSpec& index : spec.indexes) AppendIndex(database, spec.name, definition, index);
  WriteTableDefinition(database.pager, database.allocator, definition);

  const auto admin = std::span(account::kAdmin);
  const auto id = static_cast<std::int32_t>(definition.page);
  database.catalog->Add({.id = id,
                         .parent = object_id::kTables,
                         .name = spec.name,
                         .type = ObjectType::kTable,
                         .owner = Bytes(admin.begin(), admin.end())},
                        PropertiesOf(spec));
  database.catalog->InheritRights(id, object_id::kTables);
}

}  // namespace jet
