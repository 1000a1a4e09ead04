// A database with everything, and what a database holds: see the header.
#include "tests/platform/jet/full_database.h"

#include <algorithm>
#include <utility>

#include "platform/jet/database_impl.h"

namespace jet::test {

namespace {

std::string DescribeColumn(const Table& table, std::size_t position) {
  const ColumnDefinition& column = table.columns()[position];
  std::string text = Ascii(column.name);
  const bool is_memo = column.type == ColumnType::kMemo;
  for (const int part :
       {static_cast<int>(column.type), int{column.length}, int{column.precision}, int{column.scale},
        int{column.flags}, int{column.extra_flags}, int{column.position},
        int{column.collation.language}, int{table.IsRequired(position)},
        int{(column.type == ColumnType::kText || is_memo) && table.AllowsZeroLength(position)}})
    text += ' ' + std::to_string(part);
  return text;
}

std::string DescribeIndex(Database& database, const Table& table, const LogicalIndex& logical) {
  const PhysicalIndex& physical = table.definition().physical_indexes.at(logical.physical);
  std::string text = "index " + Ascii(logical.name) + ':';
  for (const IndexColumn& column : physical.columns)
    text += (column.ascending ? " +" : " -") +
            Ascii(table.definition().FindColumn(column.column_number)->name);
  if (logical.other_table != 0)
    text += " with " + Ascii(database.impl().FindTable(logical.other_table)->name());
  for (const unsigned part :
       {unsigned{physical.flags}, static_cast<unsigned>(logical.kind), logical.number,
        static_cast<unsigned>(logical.side), logical.other_number,
        static_cast<unsigned>(logical.on_update), static_cast<unsigned>(logical.on_delete)})
    text += ' ' + std::to_string(part);
  return text;
}

// Columns that name objects by id: the id of a table is another one in the copy.
const std::map<std::u16string, std::vector<std::u16string>> kIdColumns = {
    {u"MSysObjects", {u"Id", u"ParentId"}},
    {u"MSysACEs", {u"ObjectId"}},
    {u"MSysNavPaneObjectIDs", {u"Id"}},
    {u"MSysNavPaneGroupToObjects", {u"ObjectID"}}};

// Puts a table's name in the place of its id. False for the id of a table that is gone.
bool NameObjects(Database& database, const Table& table, Row& row) {
  const auto columns = kIdColumns.find(table.name());
  if (columns == kIdColumns.end()) return true;
  for (const std::u16string& column : columns->second) {
    Value& value = row[*table.FindColumn(column)];
    const auto* const id = std::get_if<std::int32_t>(&value);
    if (id == nullptr || *id <= 0 || *id >= 0x80000) continue;
    const CatalogEntry* const entry =
        database.impl().catalog->FindTable(static_cast<PageNumber>(*id));
    if (entry == nullptr) return false;
    value = entry->name;
  }
  return true;
}

constexpr ColumnType kTypes[] = {ColumnType::kBoolean,  ColumnType::kByte,   ColumnType::kInteger,
                                 ColumnType::kCurrency, ColumnType::kSingle, ColumnType::kDouble,
                                 ColumnType::kDate,     ColumnType::kBinary, ColumnType::kText,
                                 ColumnType::kOle,      ColumnType::kMemo,   ColumnType::kGuid,
                                 ColumnType::kNumeric};

Value ValueOf(ColumnType type, std::uint32_t n) {
  const std::size_t length = n % 3 == 0 ? n % 50 : n % 7 == 0 ? 4000 + n * 20 : 100 + n;
  switch (type) {
    case ColumnType::kBoolean:
      return n % 2 == 0;
    case ColumnType::kByte:
      return static_cast<std::uint8_t>(n);
    case ColumnType::kInteger:
      return static_cast<std::int16_t>(n * 77);
    case ColumnType::kCurrency:
      return Currency{std::int64_t{n} * -12345};
    case ColumnType::kSingle:
      return static_cast<float>(n) / 3;
    case ColumnType::kDouble:
      return n / -7.0;
    case ColumnType::kDate:
      return Date{38000.0 + n};
    case ColumnType::kBinary:
      return Bytes(n % 40, static_cast<std::byte>(n));
    case ColumnType::kText:
      return std::u16string(n % 60, static_cast<char16_t>(u'a' + n % 26)) + u"\u00e9";
    case ColumnType::kOle:
      return Bytes(length, static_cast<std::byte>(n));
    case ColumnType::kMemo:
      return std::u16string(length, n % 2 == 0 ? u'm' : u'\u0161');
    case ColumnType::kGuid: {
      Guid guid;
      guid.stored.fill(static_cast<std::byte>(n));
      return guid;
    }
    default:
      return Numeric{.negative = n % 2 == 0, .scale = 0, .magnitude = {0, 0, n, n}};
  }
}

}  // namespace

std::string Ascii(const std::u16string& text) {
  std::string ascii;
  for (const char16_t c : text) ascii += c < 0x80 ? static_cast<char>(c) : '?';
  return ascii;
}

Contents ContentsOf(Database& database) {
  Contents contents;
  for (const CatalogEntry& entry : database.impl().catalog->entries()) {
    if (entry.type != ObjectType::kTable) continue;
    const Table& table = database.impl().TableOf(entry);
    TableContents& told = contents[entry.name];
    for (std::size_t i = 0; i < table.columns().size(); ++i)
      told.design.push_back(DescribeColumn(table, i));
    for (const LogicalIndex& logical : table.definition().logical_indexes)
      told.indexes.insert(DescribeIndex(database, table, logical));
    told.design.push_back("counts by " + std::to_string(table.definition().autonumber_increment));
    for (StoredRowValues& row : RowsOf(table))
      if (NameObjects(database, table, row.values)) told.rows.push_back(std::move(row.values));
    std::sort(told.rows.begin(), told.rows.end());
  }
  return contents;
}

void FillWithEverything(TestDatabase& database) {
  TableSpec all{.name = u"All", .columns = {{.name = u"Key", .type = ColumnType::kLong}}};
  for (const ColumnType type : kTypes)
    all.columns.push_back(
        {.name = u"C" + Text(std::to_string(static_cast<int>(type))), .type = type, .size = 120});
  all.indexes = {{.name = u"PrimaryKey", .columns = {{u"Key"}}, .primary = true},
                 {.name = u"Texts", .columns = {{u"C10", false}, {u"C1"}}},
                 {.name = u"Memos", .columns = {{u"C12"}}, .ignore_nulls = true},
                 {.name = u"Kinds", .columns = {{u"C2"}}}};
  database->CreateTable(all);
  database->CreateTable({.name = u"Parents",
                         .columns = {{.name = u"Id", .type = ColumnType::kLong, .autonumber = true},
                                     {.name = u"Code",
                                      .type = ColumnType::kText,
                                      .size = 20,
                                      .required = true,
                                      .allow_zero_length = false}},
                         .indexes = {{.name = u"PK", .columns = {{u"Id"}}, .primary = true}}});
  database->CreateTable({.name = u"Children",
                         .columns = {{.name = u"Parent", .type = ColumnType::kLong},
                                     {.name = u"Gone", .type = ColumnType::kLong},
                                     {.name = u"Yes", .type = ColumnType::kBoolean},
                                     {.name = u"Name", .type = ColumnType::kText, .size = 50},
                                     {.name = u"GoneText", .type = ColumnType::kText, .size = 50},
                                     {.name = u"Last", .type = ColumnType::kText, .size = 50}},
                         .indexes = {{.name = u"Last", .columns = {{u"Last"}}}}});
  database->CreateTable(
      {.name = u"Empty", .columns = {{.name = u"X", .type = ColumnType::kMemo}}, .indexes = {}});
  database->CreateRelationship({.name = u"ParentsChildren",
                                .table = u"Children",
                                .columns = {u"Parent"},
                                .referenced_table = u"Parents",
                                .referenced_columns = {u"Id"},
                                .cascade_deletes = true});

  // Keys descend, so that the order of the rows is not that of the primary key.
  for (std::uint32_t n = 400; n-- > 0;) {
    Row row{static_cast<std::int32_t>(n)};
    for (const ColumnType type : kTypes)
      row.push_back(n % 11 == 5 && type != ColumnType::kBoolean ? Value(Null{}) : ValueOf(type, n));
    database[u"All"].Insert(row);
  }
  const std::vector<StoredRowValues> rows = RowsOf(database[u"All"]);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (i % 3 == 0) {
      database[u"All"].Delete(rows[i].id);
    } else if (i % 5 == 0) {
      Row row = rows[i].values;
      row[*database[u"All"].FindColumn(u"C10")] = std::u16string(120, u'\u0161');
      row[*database[u"All"].FindColumn(u"C9")] = Bytes(120, std::byte{7});
      database[u"All"].Update(rows[i].id, row);
    }
  }
  for (std::int32_t i = 1; i <= 60; ++i) {
    Row parent{Null{}, u"P" + Text(std::to_string(i))};
    database[u"Parents"].Insert(parent);
    for (std::int32_t child = 0; child < 5; ++child) {
      Row row{i,
              child,
              child % 2 == 0,
              u"child of " + Text(std::to_string(i)),
              std::u16string(40, u'g'),
              Text(std::to_string(child))};
      database[u"Children"].Insert(row);
    }
  }
  const std::vector<StoredRowValues> parents = RowsOf(database[u"Parents"]);
  for (std::size_t i = 40; i < parents.size(); ++i) database[u"Parents"].Delete(parents[i].id);
  database.EditDefinition(u"Children", [](TableDefinition& definition) {
    std::erase_if(definition.columns,
                  [](const ColumnDefinition& c) { return c.name.starts_with(u"Gone"); });
  });
}

}  // namespace jet::test
