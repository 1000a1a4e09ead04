// Long random runs of row changes, against a plain model and in files made by other writers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "platform/jet/check.h"
#include "tests/platform/jet/test_database.h"
#include "tests/platform/jet/test_random.h"
#include "tests/support/temporary_folder.h"

namespace jet::test {
namespace {

using ::testing::IsEmpty;

// Rows with values of all lengths, most of them short.
class RowMaker {
 public:
  explicit RowMaker(std::uint32_t seed) : random_(seed) {}

  std::uint32_t Below(std::uint32_t limit) { return random_() % limit; }

  Value ValueFor(const ColumnDefinition& column) {
    if (column.type != ColumnType::kBoolean && Below(6) == 0) return Null{};
    switch (column.type) {
      case ColumnType::kBoolean:
        return Below(2) == 0;
      case ColumnType::kByte:
        return static_cast<std::uint8_t>(Below(256));
      case ColumnType::kInteger:
        return static_cast<std::int16_t>(Below(65536));
      case ColumnType::kLong:
        return static_cast<std::int32_t>(Below(300));
      case ColumnType::kCurrency:
        return Currency{std::int64_t{random_()} - (1 << 30)};
      case ColumnType::kSingle:
        return static_cast<float>(Below(100000)) / 7 - 3000;
      case ColumnType::kDouble:
        return static_cast<double>(Below(100000)) / 7 - 3000;
      case ColumnType::kDate:
        return Date{30000.0 + Below(20000)};
      case ColumnType::kBinary:
      case ColumnType::kFixedBytes:
        return BytesOf(Below(column.length + 1u));
      case ColumnType::kText:
        return TextOf(1 + Below(column.length / 2u));
      case ColumnType::kMemo:
        return TextOf(Below(4) == 0 ? Below(9000) : 1 + Below(100));
      case ColumnType::kOle:
        return BytesOf(Below(4) == 0 ? Below(12000) : Below(200));
      case ColumnType::kGuid: {
        Guid guid;
        for (std::byte& byte : guid.stored) byte = static_cast<std::byte>(Below(256));
        return guid;
      }
      case ColumnType::kNumeric: {
        Numeric number;
        number.negative = Below(2) == 0;
        number.scale = column.scale;
        number.magnitude[3] = Below(100000);
        return number;
      }
    }
    return Null{};
  }

  // The row with about a third of its values replaced, all but autonumbers.
  Row Changed(const Table& table, Row row) {
    for (std::size_t i = 0; i < row.size(); ++i)
      if (!table.columns()[i].is_autonumber() && Below(3) == 0)
        row[i] = ValueFor(table.columns()[i]);
    return row;
  }
  Row New(const Table& table, Row like) {
    Row row = Changed(table, std::move(like));
    for (std::size_t i = 0; i < row.size(); ++i) {
      const ColumnDefinition& column = table.columns()[i];
      if (column.is_autonumber() || column.is_auto_guid()) row[i] = Null{};
      if (column.type == ColumnType::kBoolean && IsNull(row[i])) row[i] = false;
    }
    return row;
  }

 private:
  Bytes BytesOf(std::size_t size) { return Bytes(size, static_cast<std::byte>(Below(256))); }
  std::u16string TextOf(std::size_t length) {
    static constexpr std::u16string_view kCharacters = u"abcdefghij -'\u00e9\u00dfXYZ\u2020123";
    std::u16string text(length, u'a');
    for (char16_t& c : text) c = kCharacters[Below(kCharacters.size())];
    return text;
  }

  Random random_;
};

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

// Changes rows of a table at random. Cascades may change other rows of the same table.
void ChangeRows(Table& table, RowMaker& maker, int steps) {
  Model model = ModelOf(table);
  const auto pick = [&] {
    return std::next(model.begin(), maker.Below(static_cast<std::uint32_t>(model.size())));
  };
  int done = 0;
  for (int step = 0; step < steps; ++step) {
    const std::uint32_t action = maker.Below(10);
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
    if (failure) {
      ASSERT_TRUE(IsRefusal(failure->kind)) << ::testing::PrintToString(*failure);
    }
  }
  EXPECT_GT(done, 0);
  ASSERT_EQ(ModelOf(table), model);
  ASSERT_EQ(table.row_count(), model.size());
  ExpectFoundByEveryIndex(table, model);
}

TEST(TableRandomTest, RowsAndIndexesAgreeWithAModel) {
  TestDatabase database;
  using enum ColumnType;
  database->CreateTable(
      {.name = u"All",
       .columns = {{.name = u"Id", .autonumber = true},
                   {.name = u"Code", .type = kText, .size = 40},
                   {.name = u"Long"},
                   {.name = u"Flag", .type = kBoolean},
                   {.name = u"Price", .type = kDouble},
                   {.name = u"Cost", .type = kCurrency},
                   {.name = u"Exact", .type = kNumeric, .precision = 12, .scale = 3},
                   {.name = u"Since", .type = kDate},
                   {.name = u"Mark", .type = kGuid},
                   {.name = u"Raw", .type = kBinary, .size = 40},
                   {.name = u"Notes", .type = kMemo},
                   {.name = u"Picture", .type = kOle},
                   {.name = u"Wide", .type = kText}},
       .indexes = {{.name = u"PrimaryKey", .columns = {{u"Id"}}, .primary = true},
                   {.name = u"Code", .columns = {{u"Code", false}}, .unique = true},
                   {.name = u"Mixed", .columns = {{u"Flag"}, {u"Long", false}, {u"Exact"}}},
                   {.name = u"Cost", .columns = {{u"Cost", false}}, .ignore_nulls = true},
                   {.name = u"Mark", .columns = {{u"Mark", false}, {u"Raw", false}}},
                   {.name = u"Wide", .columns = {{u"Wide"}, {u"Code"}}},
                   {.name = u"Notes", .columns = {{u"Notes"}}}}});
  RowMaker maker(7);
  for (int phase = 0; phase < 3; ++phase) {
    SCOPED_TRACE("phase " + std::to_string(phase));
    ChangeRows(database[u"All"], maker, 700);
    ASSERT_THAT(database.Problems(), IsEmpty());
    database.SaveForOtherReaders("random-rows-" + std::to_string(phase));
    database.Reopen();
  }
  for (const StoredRowValues& row : RowsOf(database[u"All"])) database[u"All"].Delete(row.id);
  EXPECT_THAT(database.Problems(), IsEmpty());
  ChangeRows(database[u"All"], maker, 100);
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
      ChangeRows(database[name], maker, 150);
    }
    EXPECT_LE(database.Problems().size(), problems);
    const std::filesystem::path changed = folder / file.path.filename();
    database.Save(changed);
    if (file.options.password.empty())
      database.SaveForOtherReaders("changed-" + file.path.stem().string());
    const auto before = IndependentCheck(file.path, file.options.password);
    const auto after = IndependentCheck(changed, file.options.password);
    if (before && before->starts_with("ok: ")) {
      EXPECT_THAT(*after, ::testing::StartsWith("ok: "));
    } else if (before) {
      EXPECT_LE(std::ranges::count(*after, '\n'), std::ranges::count(*before, '\n')) << *after;
    }
  }
}

}  // namespace
}  // namespace jet::test
