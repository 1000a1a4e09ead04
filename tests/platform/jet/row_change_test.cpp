// Row changes that are cut short: by a disk that fails, and by the end of the process.
#include <gmock/gmock.h>

#include <functional>

#include "tests/platform/jet/test_database.h"

namespace jet::test {
namespace {

using ::testing::IsEmpty;
using enum ColumnType;

std::u16string CodeOf(int number) {
  return Text("article " + std::to_string(number)) + std::u16string(100, u'x');
}

Row Article(int number) {
  return {Null{}, Text(std::to_string(number % 3)), CodeOf(number),
          std::u16string(static_cast<std::size_t>(number % 4) * 1500, u'n')};
}

// Groups, and articles that belong to them by a text: several indexes, long values of all forms,
// and cascades that move rows. Pages of articles are full but for what was deleted at the end;
// article 12 has moved.
class TradeDatabase : public TestDatabase {
 public:
  TradeDatabase() {
    (*this)->CreateTable({u"Groups", {{u"Code", kText}}, {PrimaryKey(u"Code")}});
    (*this)->CreateTable({u"Articles",
                          {{.name = u"Id", .autonumber = true},
                           {u"GroupCode", kText},
                           {u"Code", kText, 200},
                           {u"Notes", kMemo}},
                          {PrimaryKey(u"Id"),
                           {.name = u"Code", .columns = {{u"Code"}}, .unique = true},
                           {u"Rank", {{u"GroupCode", false}, {u"Code"}}}}});
    (*this)->CreateRelationship(
        {u"R", u"Articles", {u"GroupCode"}, u"Groups", {u"Code"}, true, true, true});
    for (const char16_t* code : {u"0", u"1", u"2"}) group_ids.push_back(Add(groups(), {code}));
    for (int i = 0; i < 70; ++i) article_ids.push_back(Add(articles(), Article(i)));
    Lengthen(12, 199);
    for (std::size_t i = 60; i < 70; ++i) articles().Delete(article_ids[i]);
    Reopen();
  }

  Table& groups() { return (*this)[u"Groups"]; }
  Table& articles() { return (*this)[u"Articles"]; }
  bool HasArticle(int number) {
    const Value value = CodeOf(number);
    return !articles().Lookup(*articles().IndexOn(2), std::span(&value, 1)).empty();
  }
  // Gives an article a code that takes two bytes a character.
  void Lengthen(std::size_t article, std::size_t length) {
    Row row = *articles().Read(article_ids[article]);
    row[2] = std::u16string(length, u'\u0161');
    articles().Update(article_ids[article], row);
  }
  void Delete(std::size_t article) {
    if (articles().Read(article_ids[article])) articles().Delete(article_ids[article]);
  }
  // The rows of both tables.
  std::pair<std::vector<Row>, std::vector<Row>> Rows() {
    std::pair<std::vector<Row>, std::vector<Row>> rows;
    for (StoredRowValues& row : RowsOf(groups())) rows.first.push_back(std::move(row.values));
    for (StoredRowValues& row : RowsOf(articles())) rows.second.push_back(std::move(row.values));
    return rows;
  }

  std::vector<RowId> group_ids;
  std::vector<RowId> article_ids;
};

// A change that does nothing when it was done already, or does it again.
struct Change {
  const char* name;
  std::function<void(TradeDatabase&)> run;
  bool cascades = false;
};

const Change kChanges[] = {
    {"insert",
     [](TradeDatabase& d) {
       if (!d.HasArticle(503)) Add(d.articles(), Article(503));
     }},
    {"insert a long value that makes the file grow",
     [](TradeDatabase& d) {
       Row row = Article(503);
       row[3] = std::u16string(40000, u'n');
       if (!d.HasArticle(503)) Add(d.articles(), row);
     }},
    {"update keys and long values",
     [](TradeDatabase& d) {
       Row row = Article(602);
       row[0] = 7;
       d.articles().Update(d.article_ids[6], row);
     }},
    {"move a row", [](TradeDatabase& d) { d.Lengthen(10, 190); }},
    {"change a moved row", [](TradeDatabase& d) { d.Lengthen(12, 150); }},
    {"bring a moved row home", [](TradeDatabase& d) { d.Lengthen(12, 10); }},
    {"delete", [](TradeDatabase& d) { d.Delete(3); }},
    {"delete a moved row", [](TradeDatabase& d) { d.Delete(12); }},
    {"cascading update that moves many rows",
     [](TradeDatabase& d) { d.groups().Update(d.group_ids[1], {std::u16string(200, u'\u0161')}); },
     true},
    {"cascading delete",
     [](TradeDatabase& d) {
       if (d.groups().Read(d.group_ids[2])) d.groups().Delete(d.group_ids[2]);
     },
     true},
};

TEST(RowChangeTest, EveryWriteThatFailsLeavesFileAndCountersAsTheyWere) {
  for (const Change& change : kChanges) {
    SCOPED_TRACE(change.name);
    TradeDatabase database;
    const std::vector<PageBytes> before = database.disk().Snapshot();
    const auto rows_before = database.Rows();
    std::size_t failing = 0;
    for (;; ++failing) {
      SCOPED_TRACE("write " + std::to_string(failing));
      database.disk().FailAtWrite(failing);
      const auto failure = FailureOf([&] { change.run(database); });
      database.disk().Heal();
      if (!failure) break;
      ASSERT_EQ(failure->kind, ErrorKind::kDiskFull);
      ASSERT_EQ(database.disk().Snapshot(), before);
      ASSERT_EQ(database.Rows(), rows_before);
      ASSERT_EQ(database.articles().row_count(), 60u);
      ASSERT_EQ(database.articles().definition().last_autonumber, 70);
    }
    EXPECT_GT(failing, 2u);
    EXPECT_NE(database.Rows(), rows_before);
    EXPECT_THAT(database.Problems(), IsEmpty());
  }
}

// The state in between need not be sound in every respect, but every row that the change does not
// touch is there, and the same change can be made at once.
TEST(RowChangeTest, AKilledProcessLeavesAFileThatTakesTheChangeAgain) {
  TradeDatabase database;
  const std::vector<PageBytes> pages = database.disk().Snapshot();
  const std::vector<Row> before = database.Rows().second;
  for (const Change& change : kChanges) {
    SCOPED_TRACE(change.name);
    database.Restore(pages);
    change.run(database);
    const std::size_t writes = database.disk().writes;
    const std::vector<Row> after = database.Rows().second;
    const auto has = [](const std::vector<Row>& rows, const Row& row) {
      return std::ranges::find(rows, row) != rows.end();
    };
    for (std::size_t cut = 0; cut < writes; ++cut) {
      SCOPED_TRACE("killed at write " + std::to_string(cut));
      database.Restore(pages);
      database.disk().CutOffAtWrite(cut);
      change.run(database);
      database.disk().Heal();
      database.Reopen();
      const std::vector<Row> found = database.Rows().second;
      for (const Row& row : before) ASSERT_TRUE(has(found, row) || !has(after, row));
      for (const Row& row : found) ASSERT_TRUE(has(before, row) || has(after, row));
      // Compaction makes everything else whole again, but for rows that lack the one they refer to.
      if (!change.cascades) {
        TestDatabase copy;
        copy.Restore(database.Compacted());
        EXPECT_THAT(copy.Problems(), IsEmpty());
        EXPECT_EQ(copy[u"Articles"].row_count(), found.size());
      }
      ASSERT_EQ(FailureOf([&] { change.run(database); }), std::nullopt);
      Row added = Article(901);
      added[1] = u"0";
      ASSERT_EQ(FailureOf([&] { Add(database.articles(), added); }), std::nullopt);
      database.Reopen();
      EXPECT_TRUE(database.HasArticle(901));
    }
  }
}

TEST(RowChangeTest, ARefusedInsertHandsOutItsAutonumberAgainAndNoDifferenceWritesNothing) {
  TradeDatabase database;
  EXPECT_TRUE(FailureOf([&] { Add(database.articles(), Article(1)); }));
  Row row = Article(700);
  const RowId id = database.articles().Insert(row);
  EXPECT_EQ(row[0], Value(71));
  database.disk().Heal();
  database.articles().Update(id, row);
  EXPECT_EQ(database.disk().writes, 0u);
}

}  // namespace
}  // namespace jet::test
