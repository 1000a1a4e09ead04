// Opening a database: passwords, what keeps a file or a table from being changed, other makers'
// files.
#include "platform/jet/database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/jet/check.h"
#include "platform/jet/database_header_format.h"
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

void CreateSimpleTable(TestDatabase& database) {
  database->CreateTable({.name = u"Goods",
                         .columns = {{.name = u"Id"},
                                     {.name = u"Code", .type = ColumnType::kText, .size = 20},
                                     {.name = u"Exact", .type = ColumnType::kNumeric}},
                         .indexes = {{.name = u"PrimaryKey", .columns = {{u"Id"}}, .primary = true},
                                     {.name = u"Code", .columns = {{u"Code"}}},
                                     {.name = u"Exact", .columns = {{u"Exact"}}}}});
  Row row = {1, u"one", Null{}};
  database[u"Goods"].Insert(row);
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
  Database::Create(path)->CreateTable({.name = u"T", .columns = {{.name = u"A"}}});
  const std::string before = test_support::ReadAll(path);
  const auto database = Database::Open(path, {.read_only = true});
  EXPECT_NE(database->write_refusal(), "");
  Row row = {1};
  EXPECT_EQ(FailureOf([&] { database->OpenTable(u"T").Insert(row); }), (Failure{kReadOnly, {}}));
  EXPECT_EQ(FailureOf([&] { database->CreateTable({.name = u"U", .columns = {{.name = u"A"}}}); }),
            (Failure{kReadOnly, {}}));
  EXPECT_TRUE(test_support::ReadAll(path) == before);
}

TEST(DatabaseTest, FindsTablesWithoutCaseAndListsThoseOfTheUserByName) {
  TestDatabase database;
  for (const char16_t* name : {u"b table", u"\u00c4rger", u"B", u"Zoo", u"a"})
    database->CreateTable({.name = name, .columns = {{.name = u"X"}}});
  EXPECT_THAT(database->TableNames(), ElementsAre(u"a", u"\u00c4rger", u"B", u"b table", u"Zoo"));
  EXPECT_EQ(database[u"\u00e4RGER"].name(), u"\u00c4rger");
  EXPECT_EQ(database[u"msysobjects"].name(), u"MSysObjects");
  EXPECT_EQ(FailureOf([&] { database[u"nothing"]; }), (Failure{kTableNotFound, {u"nothing"}}));
  Row row(database[u"MSysObjects"].columns().size());
  EXPECT_EQ(FailureOf([&] { database[u"MSysObjects"].Insert(row); }),
            (Failure{kNotSupported, {u"MSysObjects"}}));
}

// What makes a whole file one that is only read.
TEST(DatabaseTest, FilesNotFullyUnderstoodAreReadButNotChanged) {
  struct Case {
    const char* reason;
    std::function<void(TestDatabase&)> damage;
  };
  const std::vector<Case> cases = {
      {"repair",
       [](TestDatabase& database) {
         database.EditPage(0, [](ByteEditor& page) { page.SetU16(0xe00 + 2 * 7, 0x0000); });
       }},
      {"repair",
       [](TestDatabase& database) {
         database.EditPage(0, [](ByteEditor& page) { page.SetU16(0xe00 + 2 * 255, 0x0001); });
       }},
      {"security ids",
       [](TestDatabase& database) {
         Table& objects = database[u"MSysObjects"];
         for (StoredRowValues& row : RowsOf(objects)) {
           Row changed = row.values;
           changed[*objects.FindColumn(u"Owner")] = Bytes(2, std::byte{0x55});
           objects.impl().Update(row.id, changed);
         }
         database.Reopen();
       }},
      {"secured",
       [](TestDatabase& database) {
         Table& rights = database[u"MSysACEs"];
         for (StoredRowValues& row : RowsOf(rights)) {
           Row changed = row.values;
           changed[*rights.FindColumn(u"SID")] = Bytes(2, std::byte{0x55});
           rights.impl().Update(row.id, changed);
         }
         database.Reopen();
       }},
      {"replication",
       [](TestDatabase& database) {
         database->CreateTable({.name = u"MSysReplicas", .columns = {{.name = u"A"}}});
         database.Reopen();
       }},
      {"replication",
       [](TestDatabase& database) {
         database->CreateTable({.name = u"T", .columns = {{.name = u"S_GUID"}}});
         database.Reopen();
       }},
      {"replication",
       [](TestDatabase& database) {
         database->CreateTable({.name = u"T", .columns = {{.name = u"Gen_Notes"}}});
         database.Reopen();
       }},
      {"system tables",
       [](TestDatabase& database) {
         database.EditDefinition(u"MSysQueries", [](TableDefinition& definition) {
           definition.columns[0].name = u"Other";
         });
       }},
      {"maps",
       [](TestDatabase& database) {
         // The page of the table's rows is offered as free.
         const PageNumber page = RowsOf(database[u"Goods"]).at(0).id.page;
         PageBytes& maps = database.disk().Page(1);
         const std::size_t row = ByteView(maps).U16(14);
         maps.at(row + 5 + page / 8) |= std::byte{1} << page % 8;
         database.Reopen();
       }},
      {"maps",
       [](TestDatabase& database) {
         PageBytes& maps = database.disk().Page(1);
         maps.at(ByteView(maps).U16(14)) = std::byte{2};  // no such form
         database.Reopen();
       }},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.reason);
    TestDatabase database;
    CreateSimpleTable(database);
    test.damage(database);
    EXPECT_THAT(database->write_refusal(), HasSubstr(test.reason));
    const std::vector<PageBytes> before = database.disk().Snapshot();
    Table& goods = database[u"Goods"];
    const StoredRowValues row = RowsOf(goods).at(0);
    Row added = {2, u"two", Null{}};
    EXPECT_EQ(FailureOf([&] { goods.Insert(added); }), (Failure{kNotSupported, {}}));
    EXPECT_EQ(FailureOf([&] { goods.Update(row.id, added); }), (Failure{kNotSupported, {}}));
    EXPECT_EQ(FailureOf([&] { goods.Delete(row.id); }), (Failure{kNotSupported, {}}));
    EXPECT_EQ(
        FailureOf([&] { database->CreateTable({.name = u"New", .columns = {{.name = u"A"}}}); }),
        (Failure{kNotSupported, {}}));
    EXPECT_EQ(
        FailureOf([&] { database->CreateIndex(u"Goods", {.name = u"New", .columns = {{u"Id"}}}); }),
        (Failure{kNotSupported, {}}));
    EXPECT_TRUE(database.disk().Snapshot() == before);
  }
}

// What makes one table one that is only read, while the others can be changed.
TEST(DatabaseTest, TablesNotFullyUnderstoodAreReadButNotChanged) {
  struct Case {
    const char* what;
    void (*change)(TableDefinition&);
  };
  const std::vector<Case> cases = {
      {"sort order",
       [](TableDefinition& definition) { definition.columns[1].collation.language = 2052; }},
      {"sort version",
       [](TableDefinition& definition) { definition.columns[1].collation.version = 1; }},
      {"descending decimals",
       [](TableDefinition& definition) {
         definition.physical_indexes[2].columns[0].ascending = false;
       }},
      {"root of another index",
       [](TableDefinition& definition) {
         std::swap(definition.physical_indexes[1].pages_map,
                   definition.physical_indexes[2].pages_map);
       }},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.what);
    TestDatabase database;
    CreateSimpleTable(database);
    database->CreateTable({.name = u"Other", .columns = {{.name = u"A"}}});
    database.EditDefinition(u"Goods", test.change);
    EXPECT_EQ(database->write_refusal(), "");
    const std::vector<PageBytes> before = database.disk().Snapshot();
    Table& goods = database[u"Goods"];
    Row row = RowsOf(goods).at(0).values;
    const auto refusal = Failure{kNotSupported, {u"Goods"}};
    EXPECT_EQ(FailureOf([&] { goods.Insert(row); }), refusal);
    EXPECT_EQ(FailureOf([&] { goods.Update(RowsOf(goods)[0].id, row); }), refusal);
    EXPECT_EQ(FailureOf([&] { goods.Delete(RowsOf(goods)[0].id); }), refusal);
    EXPECT_TRUE(database.disk().Snapshot() == before);
    Row other = {1};
    EXPECT_EQ(FailureOf([&] { database[u"Other"].Insert(other); }), std::nullopt);
  }
}

TEST(DatabaseTest, CommitWordsStayAsTheyAre) {
  TestDatabase database;
  const PageBytes header = database.disk().Page(0);
  CreateSimpleTable(database);
  EXPECT_EQ(database.disk().Page(0), header);
}

}  // namespace
}  // namespace jet::test
