// Long random runs of row changes, against a plain model and in files made by other writers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "platform/jet/check.h"
#include "tests/platform/jet/random_rows.h"
#include "tests/platform/jet/test_database.h"
#include "tests/support/temporary_folder.h"

namespace jet::test {
namespace {

using ::testing::IsEmpty;

// Rows by id, as they should be.
using Model = std::map<RowId, Row>;

Model ModelOf(const Table& table) {
  Model model;
  for (StoredRowValues& row : RowsOf(table)) model.emplace(row.id, std::move(row.values));
  return model;
}

// Values of an index's columns in a row.
std::vector<Value> KeyOf(const Table& table, std::size_t index, const Row& row) {
  std::vector<Value> key;
  for (const IndexColumn& column : table.definition().physical_indexes[index].columns) {
    const auto at =
        std::ranges::find(table.columns(), column.column_number, &ColumnDefinition::number);
    key.push_back(row[static_cast<std::size_t>(at - table.columns().begin())]);
  }
  return key;
}

// In a large table some rows stand for all.
void ExpectFoundByEveryIndex(const Table& table, const Model& model) {
  const std::size_t stride = model.size() / 1000 + 1;
  for (std::size_t index = 0; index < table.definition().physical_indexes.size(); ++index) {
    std::size_t place = 0;
    for (const auto& [id, row] : model) {
      if (place++ % stride != 0) continue;
      const std::vector<Value> key = KeyOf(table, index, row);
      const std::vector<RowId> found = table.Lookup(index, key);
      ASSERT_TRUE(std::ranges::find(found, id) != found.end()) << "index " << index;
    }
  }
}

// Whether a rule of the file, and not a fault, refused the change.
bool IsRefusal(ErrorKind kind) {
  using enum ErrorKind;
  return kind == kDuplicateKey || kind == kNullInRequired || kind == kNullInKey ||
         kind == kZeroLength || kind == kNoParentRow || kind == kHasChildRows ||
         kind == kRowTooLarge;
}

// Changes rows of a table at random; now and then the disk fails on the way. Cascades may change
// other rows of the same table.
void ChangeRows(TestDatabase& database, std::u16string_view name, RowMaker& maker, int steps) {
  Table& table = database[name];
  Model model = ModelOf(table);
  const auto pick = [&] {
    return std::next(model.begin(), maker.Below(static_cast<std::uint32_t>(model.size())));
  };
  int done = 0;
  for (int step = 0; step < steps; ++step) {
    const std::uint32_t action = maker.Below(10);
    const bool disk_fails = maker.Below(10) == 0;
    if (disk_fails) database.disk().FailAtWrite(maker.Below(6));
    const auto failure = FailureOf([&] {
      if (action < 4 || model.empty()) {
        Row row = maker.New(table, model.empty() ? Row(table.columns().size()) : pick()->second);
        const RowId id = table.Insert(row);
        model[id] = row;
      } else if (action < 8) {
        const auto old = pick();
        const Row row = maker.Changed(table, old->second);
        table.Update(old->first, row);
        old->second = row;
      } else {
        const auto old = pick();
        table.Delete(old->first);
        model.erase(old);
      }
      ++done;
    });
    database.disk().Heal();
    const bool expected = !failure || IsRefusal(failure->kind) ||
                          (disk_fails && failure->kind == ErrorKind::kDiskFull);
    ASSERT_TRUE(expected) << ::testing::PrintToString(*failure);
  }
  EXPECT_GT(done, 0);
  ASSERT_EQ(ModelOf(table), model);
  ASSERT_EQ(table.row_count(), model.size());
  ExpectFoundByEveryIndex(table, model);
}

TEST(TableRandomTest, RowsAndIndexesAgreeWithAModel) {
  TestDatabase database;
  using enum ColumnType;
  database->CreateTable({u"All",
                         {{.name = u"Id", .autonumber = true},
                          {u"Code", kText, 40},
                          {u"Long"},
                          {u"Flag", kBoolean},
                          {u"Small", kByte},
                          {u"Short", kInteger},
                          {u"Rate", kSingle},
                          {u"Price", kDouble},
                          {u"Cost", kCurrency},
                          {.name = u"Exact", .type = kNumeric, .precision = 12, .scale = 3},
                          {u"Since", kDate},
                          {u"Mark", kGuid},
                          {u"Raw", kBinary, 40},
                          {u"Notes", kMemo},
                          {u"Picture", kOle},
                          {u"Wide", kText}},
                         {PrimaryKey(u"Id"),
                          {.name = u"Code", .columns = {{u"Code", false}}, .unique = true},
                          {u"Mixed", {{u"Flag"}, {u"Long", false}, {u"Exact"}}},
                          {.name = u"Cost", .columns = {{u"Cost", false}}, .ignore_nulls = true},
                          {u"Mark", {{u"Mark", false}, {u"Raw", false}}},
                          {u"Wide", {{u"Wide"}, {u"Code"}}},
                          {u"Notes", {{u"Notes"}}}}});
  RowMaker maker(7);
  for (int phase = 0; phase < 3; ++phase) {
    SCOPED_TRACE("phase " + std::to_string(phase));
    ChangeRows(database, u"All", maker, 700);
    ASSERT_THAT(database.Problems(), IsEmpty());
    database.SaveForOtherReaders("random-rows-" + std::to_string(phase));
    database.Reopen();
  }
  for (const StoredRowValues& row : RowsOf(database[u"All"])) database[u"All"].Delete(row.id);
  EXPECT_THAT(database.Problems(), IsEmpty());
  ChangeRows(database, u"All", maker, 100);
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(TableRandomTest, FilesOfOtherWritersStayAsSoundAsTheyWere) {
  const std::vector<SharedFile> files = SharedFiles();
  if (files.empty()) GTEST_SKIP() << "ORVPAP_SHARED is not set";
  const test_support::TemporaryFolder folder;
  for (const SharedFile& file : files) {
    SCOPED_TRACE(file.path.filename().string());
    TestDatabase database(file.path, file.options);
    const std::size_t problems = database.Problems().size();
    RowMaker maker(11);
    for (const std::u16string& name : database->TableNames()) {
      SCOPED_TRACE(std::string(name.begin(), name.end()));
      ChangeRows(database, name, maker, 150);
    }
    EXPECT_LE(database.Problems().size(), problems);
    const std::filesystem::path changed = folder / file.path.filename();
    database.Save(changed);
    if (file.options.password.empty())
      database.SaveForOtherReaders("changed-" + file.path.stem().string());
    const auto before = IndependentCheck(file.path, file.options.password);
    const auto after = IndependentCheck(changed, file.options.password);
    if (before) {
      EXPECT_LE(std::ranges::count(*after, '\n'), std::ranges::count(*before, '\n')) << *after;
      EXPECT_EQ(after->starts_with("ok: "), before->starts_with("ok: ")) << *after;
    }
  }
}

}  // namespace
}  // namespace jet::test
