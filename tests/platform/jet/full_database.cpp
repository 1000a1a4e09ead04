// A database with everything, and what a database holds: see the header.
#include "tests/platform/jet/full_database.h"

#include <algorithm>
#include <utility>

#include "platform/jet/database_impl.h"
#include "tests/platform/jet/random_rows.h"

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
  using enum ColumnType;
  database->CreateTable({u"All",
                         {{u"Key"},
                          {u"Flag", kBoolean},
                          {u"Byte", kByte},
                          {u"Integer", kInteger},
                          {u"Currency", kCurrency},
                          {u"Single", kSingle},
                          {u"Double", kDouble},
                          {u"Date", kDate},
                          {u"Binary", kBinary, 120},
                          {u"Text", kText, 120},
                          {u"Ole", kOle},
                          {u"Memo", kMemo},
                          {u"Guid", kGuid},
                          {u"Numeric", kNumeric}},
                         {PrimaryKey(u"Key"),
                          {u"Texts", {{u"Text", false}, {u"Flag"}}},
                          {.name = u"Memos", .columns = {{u"Memo"}}, .ignore_nulls = true},
                          {u"Bytes", {{u"Byte"}}}}});
  database->CreateTable(
      {u"Parents",
       {{.name = u"Id", .autonumber = true}, {u"Code", kText, 20, false, true, false}},
       {PrimaryKey(u"Id")}});
  database->CreateTable({u"Children",
                         {{u"Parent"},
                          {u"Gone"},
                          {u"Yes", kBoolean},
                          {u"Name", kText, 50},
                          {u"GoneText", kText, 50},
                          {u"Last", kText, 50}},
                         {{u"Last", {{u"Last"}}}}});
  database->CreateTable({u"Empty", {{u"X", kMemo}}});
  database->CreateRelationship({.name = u"ParentsChildren",
                                .table = u"Children",
                                .columns = {u"Parent"},
                                .referenced_table = u"Parents",
                                .referenced_columns = {u"Id"},
                                .cascade_deletes = true});

  // Keys descend, so that the order of the rows is not that of the primary key.
  RowMaker maker(1);
  Table& all = database[u"All"];
  for (std::int32_t n = 300; n-- > 0;) {
    Row row = maker.New(all);
    row[0] = n;
    all.Insert(row);
  }
  const std::vector<StoredRowValues> rows = RowsOf(all);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (i % 3 == 0) {
      all.Delete(rows[i].id);
    } else if (i % 5 == 0) {
      Row row = rows[i].values;
      row[*all.FindColumn(u"Text")] = std::u16string(120, u'\u0161');
      row[*all.FindColumn(u"Binary")] = Bytes(120, std::byte{7});
      all.Update(rows[i].id, row);
    }
  }
  for (std::int32_t i = 1; i <= 60; ++i) {
    Add(database[u"Parents"], {Null{}, u"P" + Text(std::to_string(i))});
    for (std::int32_t child = 0; child < 5; ++child)
      Add(database[u"Children"], {i, child, child % 2 == 0, u"child of " + Text(std::to_string(i)),
                                  std::u16string(40, u'g'), Text(std::to_string(child))});
  }
  const std::vector<StoredRowValues> parents = RowsOf(database[u"Parents"]);
  for (std::size_t i = 40; i < parents.size(); ++i) database[u"Parents"].Delete(parents[i].id);
  database.EditDefinition(u"Children", [](TableDefinition& definition) {
    std::erase_if(definition.columns,
                  [](const ColumnDefinition& c) { return c.name.starts_with(u"Gone"); });
  });
}

}  // namespace jet::test
