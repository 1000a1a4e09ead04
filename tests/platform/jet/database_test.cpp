// Opening a database: passwords, what keeps a file or a table from being changed, other makers'
// files.
#include "platform/jet/database.h"

#include <gmock/gmock.h>

#include "platform/jet/database_impl.h"
#include "platform/jet/table_impl.h"
#include "tests/platform/jet/test_database.h"
#include "tests/support/temporary_folder.h"

namespace jet::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using enum ErrorKind;
using enum ColumnType;

void CreateGoods(TestDatabase& database) {
  database->CreateTable({u"Goods",
                         {{u"Id"}, {u"Code", kText, 20}, {u"Exact", kNumeric}},
                         {PrimaryKey(u"Id"), {u"Code", {{u"Code"}}}, {u"Exact", {{u"Exact"}}}}});
  Add(database[u"Goods"], {1, u"one", Null{}});
}

// Every change of the table is refused, and the disk stays as it is.
void ExpectRefused(TestDatabase& database, const Failure& refusal) {
  const std::vector<PageBytes> before = database.disk().Snapshot();
  Table& goods = database[u"Goods"];
  const StoredRowValues row = RowsOf(goods).at(0);
  EXPECT_EQ(FailureOf([&] { Add(goods, row.values); }), refusal);
  EXPECT_EQ(FailureOf([&] { goods.Update(row.id, row.values); }), refusal);
  EXPECT_EQ(FailureOf([&] { goods.Delete(row.id); }), refusal);
  EXPECT_TRUE(database.disk().Snapshot() == before);
}

TEST(DatabaseTest, APasswordIsComparedExactly) {
  const test_support::TemporaryFolder folder;
  const std::filesystem::path path = folder / "t.mdb";
  Database::Create(path, {.password = u"Wp 4711!", .encode = true});
  for (const char16_t* wrong : {u"", u"wp 4711!", u"Wp 4711", u"Wp 4711!!"})
    EXPECT_EQ(FailureOf([&] { Database::Open(path, {.password = wrong}); }),
              (Failure{kWrongPassword, {}}));
  EXPECT_THAT(Database::Open(path, {.password = u"Wp 4711!"})->TableNames(), IsEmpty());

  const std::filesystem::path open_path = folder / "open.mdb";
  Database::Create(open_path);
  EXPECT_EQ(Database::Open(open_path, {.password = u"any"})->write_refusal(), "");
}

TEST(DatabaseTest, NamesTheFileThatIsNoDatabase) {
  const test_support::TemporaryFolder folder;
  const auto path = folder.Write("text.mdb", std::string(2 * kPageSize, 'x'));
  EXPECT_EQ(FailureOf([&] { Database::Open(path); }), (Failure{kNotADatabase, {path.u16string()}}));
}

TEST(DatabaseTest, OpenedForReadingItRefusesEveryChange) {
  const test_support::TemporaryFolder folder;
  const std::filesystem::path path = folder / "t.mdb";
  Database::Create(path)->CreateTable({u"T", {{u"A"}}});
  const std::string before = test_support::ReadAll(path);
  const auto database = Database::Open(path, {.read_only = true});
  EXPECT_NE(database->write_refusal(), "");
  const Failure refusal{kReadOnly, {}};
  EXPECT_EQ(FailureOf([&] { Add(database->OpenTable(u"T"), {1}); }), refusal);
  EXPECT_EQ(FailureOf([&] { database->CreateTable({u"U", {{u"A"}}}); }), refusal);
  EXPECT_TRUE(test_support::ReadAll(path) == before);
}

TEST(DatabaseTest, FindsTablesWithoutCaseAndListsThoseOfTheUserByName) {
  TestDatabase database;
  for (const char16_t* name : {u"b table", u"\u00c4rger", u"B", u"Zoo", u"a"})
    database->CreateTable({name, {{u"X"}}});
  EXPECT_THAT(database->TableNames(), ElementsAre(u"a", u"\u00c4rger", u"B", u"b table", u"Zoo"));
  EXPECT_EQ(database[u"\u00e4RGER"].name(), u"\u00c4rger");
  EXPECT_EQ(database[u"msysobjects"].name(), u"MSysObjects");
  EXPECT_EQ(FailureOf([&] { database[u"nothing"]; }), (Failure{kTableNotFound, {u"nothing"}}));
  Row row(database[u"MSysObjects"].columns().size());
  EXPECT_EQ(FailureOf([&] { database[u"MSysObjects"].Insert(row); }),
            (Failure{kNotSupported, {u"MSysObjects"}}));
}

// Gives every row of a system table another security id.
void ForgeSecurityIds(TestDatabase& database, std::u16string_view name, const char16_t* column) {
  Table& table = database[name];
  for (StoredRowValues& row : RowsOf(table)) {
    row.values[*table.FindColumn(column)] = Bytes(2, std::byte{0x55});
    table.impl().Update(row.id, row.values);
  }
}

// What makes a whole file one that is only read.
TEST(DatabaseTest, FilesNotFullyUnderstoodAreReadButNotChanged) {
  struct Case {
    const char* reason;
    std::function<void(TestDatabase&)> damage;
  };
  const auto map_row = [](TestDatabase& d) { return ByteView(d.disk().Page(1)).U16(14); };
  const Case cases[] = {
      {"repair", [](auto& d) { ByteEditor(d.disk().Page(0)).SetU16(0xe00 + 2 * 7, 0x0000); }},
      {"security ids", [](auto& d) { ForgeSecurityIds(d, u"MSysObjects", u"Owner"); }},
      {"secured", [](auto& d) { ForgeSecurityIds(d, u"MSysACEs", u"SID"); }},
      {"replication",
       [](auto& d) {
         d->CreateTable({u"MSysReplicas", {{u"A"}}});
       }},
      {"replication",
       [](auto& d) {
         d->CreateTable({u"T", {{u"S_GUID"}}});
       }},
      {"replication",
       [](auto& d) {
         d->CreateTable({u"T", {{u"Gen_Notes"}}});
       }},
      {"system tables",
       [](auto& d) {
         d.EditDefinition(u"MSysQueries", [](auto& table) { table.columns[0].name = u"Other"; });
       }},
      {"maps",  // the page of the table's rows is offered as free
       [&](auto& d) {
         const PageNumber page = RowsOf(d[u"Goods"]).at(0).id.page;
         d.disk().Page(1).at(map_row(d) + 5 + page / 8) |= std::byte{1} << page % 8;
       }},
      {"maps", [&](auto& d) { d.disk().Page(1).at(map_row(d)) = std::byte{2}; }},  // no such form
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.reason);
    TestDatabase database;
    CreateGoods(database);
    test.damage(database);
    database.Reopen();
    EXPECT_THAT(database->write_refusal(), HasSubstr(test.reason));
    const Failure refusal{kNotSupported, {}};
    ExpectRefused(database, refusal);
    EXPECT_EQ(FailureOf([&] { database->CreateTable({u"New", {{u"A"}}}); }), refusal);
    EXPECT_EQ(FailureOf([&] { database->CreateIndex(u"Goods", {u"New", {{u"Id"}}}); }), refusal);
  }
}

// What makes one table one that is only read, while the others can be changed.
TEST(DatabaseTest, TablesNotFullyUnderstoodAreReadButNotChanged) {
  using Definition = TableDefinition;
  const std::pair<const char*, void (*)(Definition&)> cases[] = {
      {"sort order", [](Definition& table) { table.columns[1].collation.language = 2052; }},
      {"sort version", [](Definition& table) { table.columns[1].collation.version = 1; }},
      {"descending decimals",
       [](Definition& table) { table.physical_indexes[2].columns[0].ascending = false; }},
      {"root of another index",
       [](Definition& table) {
         std::swap(table.physical_indexes[1].pages_map, table.physical_indexes[2].pages_map);
       }},
  };
  for (const auto& [what, change] : cases) {
    SCOPED_TRACE(what);
    TestDatabase database;
    CreateGoods(database);
    database->CreateTable({u"Other", {{u"A"}}});
    database.EditDefinition(u"Goods", change);
    EXPECT_EQ(database->write_refusal(), "");
    ExpectRefused(database, {kNotSupported, {u"Goods"}});
    EXPECT_EQ(FailureOf([&] { Add(database[u"Other"], {1}); }), std::nullopt);
  }
}

}  // namespace
}  // namespace jet::test
