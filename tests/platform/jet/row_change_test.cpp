// Row changes that are cut short: by a disk that fails, and by the end of the process.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/jet/check.h"
#include "tests/platform/jet/test_database.h"

namespace jet::test {
namespace {

using ::testing::IsEmpty;

// Groups, and articles that belong to them: several indexes, long values of all forms, cascades.
class TradeDatabase : public TestDatabase {
 public:
  TradeDatabase() {
    (*this)->CreateTable(
        {.name = u"Groups",
         .columns = {{.name = u"Id"}, {.name = u"Code", .type = ColumnType::kText, .size = 20}},
         .indexes = {{.name = u"PrimaryKey", .columns = {{u"Id"}}, .primary = true}}});
    (*this)->CreateTable(
        {.name = u"Articles",
         .columns = {{.name = u"Id", .autonumber = true},
                     {.name = u"GroupId"},
                     {.name = u"Code", .type = ColumnType::kText, .size = 200},
                     {.name = u"Notes", .type = ColumnType::kMemo}},
         .indexes = {{.name = u"PrimaryKey", .columns = {{u"Id"}}, .primary = true},
                     {.name = u"Code", .columns = {{u"Code"}}, .unique = true},
                     {.name = u"Rank", .columns = {{u"GroupId", false}, {u"Code"}}}}});
    (*this)->CreateRelationship({.name = u"GroupsArticles",
                                 .table = u"Articles",
                                 .columns = {u"GroupId"},
                                 .referenced_table = u"Groups",
                                 .referenced_columns = {u"Id"},
                                 .cascade_updates = true,
                                 .cascade_deletes = true});
    for (int i = 1; i <= 3; ++i) {
      Row row = {i, u"group"};
      groups.push_back(table(u"Groups").Insert(row));
    }
    for (int i = 0; i < 60; ++i) {
      Row row = Article(i);
      articles.push_back(table(u"Articles").Insert(row));
    }
  }

  static std::u16string CodeOf(int number) {
    return Text("article " + std::to_string(number)) + std::u16string(100, u'x');
  }
  static Row Article(int number) {
    return {Null{}, number % 3 + 1, CodeOf(number),
            std::u16string(static_cast<std::size_t>(number % 4) * 1500, u'n')};
  }
  Table& table(std::u16string_view name) { return (*this)[name]; }
  std::optional<RowId> FindArticle(const std::u16string& code) {
    Table& articles_table = table(u"Articles");
    const Value value = code;
    const auto found = articles_table.Lookup(*articles_table.IndexOn(2), std::span(&value, 1));
    return found.empty() ? std::nullopt : std::optional(found.front());
  }

  std::vector<RowId> groups;
  std::vector<RowId> articles;
};

struct Change {
  const char* name;
  std::function<void(TradeDatabase&)> run;  // fails when it was done already, or does it again
};

const std::vector<Change>& Changes() {
  static const std::vector<Change> changes = {
      {"insert",
       [](TradeDatabase& database) {
         Row row = TradeDatabase::Article(503);
         if (!database.FindArticle(TradeDatabase::CodeOf(503)))
           database.table(u"Articles").Insert(row);
       }},
      {"update keys and long values",
       [](TradeDatabase& database) {
         Row row = TradeDatabase::Article(602);
         row[0] = 7;
         database.table(u"Articles").Update(database.articles[6], row);
       }},
      {"update that moves the row",
       [](TradeDatabase& database) {
         Row row = *database.table(u"Articles").Read(database.articles[10]);
         row[2] = std::u16string(199, u'\u20ac');
         database.table(u"Articles").Update(database.articles[10], row);
       }},
      {"delete",
       [](TradeDatabase& database) {
         if (database.table(u"Articles").Read(database.articles[3]))
           database.table(u"Articles").Delete(database.articles[3]);
       }},
      {"cascading update",
       [](TradeDatabase& database) {
         Row row = {9, u"other"};
         database.table(u"Groups").Update(database.groups[1], row);
       }},
      {"cascading delete",
       [](TradeDatabase& database) {
         if (database.table(u"Groups").Read(database.groups[2]))
           database.table(u"Groups").Delete(database.groups[2]);
       }},
  };
  return changes;
}

struct Rows {
  std::vector<Row> groups;
  std::vector<Row> articles;
  bool operator==(const Rows&) const = default;
};

Rows RowsIn(TradeDatabase& database) {
  Rows rows;
  for (StoredRowValues& row : RowsOf(database.table(u"Groups")))
    rows.groups.push_back(std::move(row.values));
  for (StoredRowValues& row : RowsOf(database.table(u"Articles")))
    rows.articles.push_back(std::move(row.values));
  return rows;
}

TEST(RowChangeTest, EveryWriteThatFailsLeavesFileAndCountersAsTheyWere) {
  for (const Change& change : Changes()) {
    SCOPED_TRACE(change.name);
    TradeDatabase database;
    const std::vector<PageBytes> before = database.disk().Snapshot();
    const Rows rows_before = RowsIn(database);
    std::size_t failing = 0;
    for (;; ++failing) {
      SCOPED_TRACE("write " + std::to_string(failing));
      database.disk().FailAtWrite(failing);
      const auto failure = FailureOf([&] { change.run(database); });
      database.disk().Heal();
      if (!failure) break;
      ASSERT_EQ(failure->kind, ErrorKind::kDiskFull);
      ASSERT_EQ(database.disk().Snapshot(), before);
      ASSERT_EQ(RowsIn(database), rows_before);
      ASSERT_EQ(database.table(u"Articles").row_count(), rows_before.articles.size());
      ASSERT_EQ(database.table(u"Articles").definition().last_autonumber, 60);
    }
    EXPECT_GT(failing, 2u);
    EXPECT_NE(RowsIn(database), rows_before);
    EXPECT_THAT(database.Problems(), IsEmpty());
  }
}

// The state in between need not be sound in every respect, but every row that the change does not
// touch is there, and the same change can be made at once.
TEST(RowChangeTest, AKilledProcessLeavesAFileThatTakesTheChangeAgain) {
  TradeDatabase database;
  const std::vector<PageBytes> pages = database.disk().Snapshot();
  const Rows before = RowsIn(database);
  for (const Change& change : Changes()) {
    SCOPED_TRACE(change.name);
    database.Restore(pages);
    change.run(database);
    const std::size_t writes = database.disk().writes;
    const Rows expected = RowsIn(database);
    for (std::size_t cut = 0; cut < writes; ++cut) {
      SCOPED_TRACE("killed at write " + std::to_string(cut));
      database.Restore(pages);
      database.disk().CutOffAtWrite(cut);
      change.run(database);
      database.disk().Heal();
      database.Reopen();
      const Rows found = RowsIn(database);
      for (const Row& row : before.articles) {
        const bool stays = std::ranges::find(expected.articles, row) != expected.articles.end();
        if (stays) {
          ASSERT_TRUE(std::ranges::find(found.articles, row) != found.articles.end());
        }
      }
      ASSERT_EQ(FailureOf([&] { change.run(database); }), std::nullopt);
      Row added = TradeDatabase::Article(901);
      added[1] = 1;
      ASSERT_EQ(FailureOf([&] { database.table(u"Articles").Insert(added); }), std::nullopt);
      database.Reopen();
      EXPECT_TRUE(database.FindArticle(TradeDatabase::CodeOf(901)));
    }
  }
}

TEST(RowChangeTest, AFailedInsertHandsOutItsAutonumberAgain) {
  TradeDatabase database;
  Table& articles = database.table(u"Articles");
  Row row = TradeDatabase::Article(700);
  row[2] = TradeDatabase::CodeOf(1);
  EXPECT_TRUE(FailureOf([&] { articles.Insert(row); }));
  row[2] = TradeDatabase::CodeOf(700);
  articles.Insert(row);
  EXPECT_EQ(row[0], Value(61));
}

TEST(RowChangeTest, AnUpdateWithoutDifferenceWritesNothing) {
  TradeDatabase database;
  Table& articles = database.table(u"Articles");
  database.disk().Heal();
  articles.Update(database.articles[5], *articles.Read(database.articles[5]));
  EXPECT_EQ(database.disk().writes, 0u);
}

}  // namespace
}  // namespace jet::test
