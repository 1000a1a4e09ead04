// Whole files damaged at random, then checked, and used as if nothing were wrong: whatever a file
// contains, the check ends in a report, and each operation with an answer or the engine's own
// error.
#include <gmock/gmock.h>

#include <functional>

#include "tests/platform/jet/random_rows.h"
#include "tests/platform/jet/test_database.h"

namespace jet::test {
namespace {

using enum ColumnType;

// Small, so that each page is often hit: two tables with a relationship between them, moved rows,
// chains of long values, an index of two levels.
void Fill(TestDatabase& database) {
  database->CreateTable({u"Parents", {{u"Id"}, {u"Notes", kMemo}}, {PrimaryKey(u"Id")}});
  database->CreateTable({u"Children",
                         {{u"Parent"}, {u"Code", kText}, {u"Raw", kBinary, 50}, {u"Yes", kBoolean}},
                         {{u"Code", {{u"Code", false}, {u"Raw"}}}}});
  database->CreateRelationship(
      {u"R", u"Children", {u"Parent"}, u"Parents", {u"Id"}, true, true, true});
  for (int i = 0; i < 10; ++i) {
    Add(database[u"Parents"], {i, std::u16string(static_cast<std::size_t>(i) * 1000, u'\u0416')});
    for (int child = 0; child < 4; ++child) {
      const RowId id = Add(database[u"Children"], {i, u"short", Bytes(20), false});
      const std::u16string code = Text(std::to_string(i)) + std::u16string(200, u'\u00e9');
      if (child > 1) database[u"Children"].Update(id, {i, code, Bytes(50), true});
    }
  }
}

// Reads, finds, changes, adds and deletes rows of every table; how many of these steps failed.
int Use(TestDatabase& database, RowMaker& maker) {
  int failed = 0;
  const auto attempt = [&](const std::function<void()>& step) {
    if (FailureOf(step)) ++failed;
  };
  for (const char16_t* name : {u"Parents", u"Children"}) {
    std::vector<StoredRowValues> rows;
    attempt([&] { rows = RowsOf(database[name]); });
    attempt([&] { database[name].RowsInOrder(0); });
    attempt([&] { Add(database[name], maker.New(database[name])); });
    for (std::size_t i = 0; i < rows.size(); i += 3) {
      attempt([&] { database[name].Lookup(0, std::span(&rows[i].values[0], 1)); });
      attempt(
          [&] { database[name].Update(rows[i].id, maker.New(database[name], rows[i].values)); });
      attempt([&] { database[name].Delete(rows[i].id); });
    }
  }
  return failed;
}

TEST(DamagedFilesTest, EveryOperationEndsInAnErrorOrAnAnswer) {
  TestDatabase database;
  Fill(database);
  const std::vector<PageBytes> sound = database.disk().Snapshot();
  RowMaker maker(3);
  int refused = 0;
  int noticed = 0;
  int failed = 0;
  for (int round = 0; round < 1500; ++round) {
    std::vector<PageBytes> pages = sound;
    for (std::uint32_t left = 1 + maker.Below(4); left > 0; --left) {
      // The head of a page, where counts and pointers stand, is hit as often as all the rest; and
      // the tables' own pages more often than the catalog's.
      const auto count = static_cast<std::uint32_t>(pages.size());
      const std::uint32_t page =
          maker.Below(8) == 0 ? maker.Below(16) : 16 + maker.Below(count - 16);
      const std::uint32_t at = maker.Below(maker.Below(2) == 0 ? 64 : kPageSize);
      pages[page][at] = static_cast<std::byte>(maker.Below(4) == 0 ? maker.Below(256) : page);
      if (maker.Below(20) == 0) pages.resize(pages.size() - 1);
    }
    const bool is_opened = !FailureOf([&] { database.Restore(pages); });
    if (round % 10 == 0 && pages[0] == sound[0]) noticed += database.Problems().empty() ? 0 : 1;
    if (!is_opened) {
      ++refused;
    } else {
      failed += Use(database, maker);
    }
  }
  EXPECT_GT(refused, 20);
  EXPECT_GT(noticed, 1500 / 10 / 2);
  EXPECT_GT(failed, 2000);
}

}  // namespace
}  // namespace jet::test
