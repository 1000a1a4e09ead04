// A table's rows: values of every type, look-ups, scans, autonumbers, rows older than a column.
#include "platform/jet/table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>
#include <vector>

#include "platform/jet/column_layout.h"
#include "platform/jet/constraints.h"
#include "tests/platform/jet/test_database.h"

namespace jet::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

RowId Add(Table& table, Row row) { return table.Insert(row); }

TEST(TableTest, KeepsValuesOfEveryType) {
  TestDatabase database({.encode = true});
  using enum ColumnType;
  database->CreateTable({.name = u"All",
                         .columns = {{.name = u"Flag", .type = kBoolean},
                                     {.name = u"Byte", .type = kByte},
                                     {.name = u"Integer", .type = kInteger},
                                     {.name = u"Long", .type = kLong},
                                     {.name = u"Currency", .type = kCurrency},
                                     {.name = u"Single", .type = kSingle},
                                     {.name = u"Double", .type = kDouble},
                                     {.name = u"Date", .type = kDate},
                                     {.name = u"Binary", .type = kBinary, .size = 300},
                                     {.name = u"Text", .type = kText, .size = 255},
                                     {.name = u"Ole", .type = kOle},
                                     {.name = u"Memo", .type = kMemo},
                                     {.name = u"Guid", .type = kGuid},
                                     {.name = u"Numeric", .type = kNumeric, .precision = 28}}});
  Table& table = database[u"All"];
  const auto bytes = [](std::size_t size) { return Bytes(size, std::byte{0xa5}); };
  const std::u16string mixed = u"Stahl \u2013 \u00fc\u0416\u0100\u4e2d";
  Guid guid;
  guid.stored.fill(std::byte{7});
  const std::vector<Row> rows = {
      {true, std::uint8_t{255}, std::int16_t{-32768}, std::numeric_limits<std::int32_t>::min(),
       Currency{std::numeric_limits<std::int64_t>::min()}, 3.5f, -0.0, Date{-1.25}, bytes(300),
       mixed, bytes(64), mixed, guid, Numeric{true, 0, {0, 5, 6, 7}}},
      {false, Null{}, Null{}, Null{}, Null{}, Null{}, Null{}, Null{}, Null{}, Null{}, Null{},
       Null{}, Null{}, Null{}},
      {true, std::uint8_t{0}, std::int16_t{0}, 0, Currency{0}, 0.0f, 0.0, Date{0}, bytes(0), u"",
       bytes(0), u"", Guid{}, Numeric{}},
      {false, std::uint8_t{1}, std::int16_t{1}, 1, Currency{1}, 1.0f, 1.0, Date{38061.5}, bytes(1),
       std::u16string(255, u'a'), bytes(65), std::u16string(33, u'm'), guid, Null{}},
      {false, std::uint8_t{1}, std::int16_t{1}, 1, Currency{1}, 1.0f, 1.0, Date{1}, bytes(1), u"x",
       bytes(3816), std::u16string(1908, u'm'), guid, Null{}},
      {false, std::uint8_t{1}, std::int16_t{1}, 1, Currency{1}, 1.0f, 1.0, Date{1}, bytes(1), u"x",
       bytes(3817), std::u16string(50000, u'\u0416'), guid, Null{}},
  };
  std::vector<RowId> ids;
  for (Row row : rows) ids.push_back(table.Insert(row));
  const auto expect_rows = [&](const std::vector<Row>& expected) {
    database.Reopen();
    const Table& reopened = database[u"ALL"];
    for (std::size_t i = 0; i < expected.size(); ++i)
      EXPECT_EQ(*reopened.Read(ids[i]), expected[i]) << "row " << i;
    EXPECT_THAT(database.Problems(), IsEmpty());
  };
  expect_rows(rows);

  std::vector<Row> turned = rows;  // each row gets the values of the next
  std::rotate(turned.begin(), turned.begin() + 1, turned.end());
  for (std::size_t i = 0; i < ids.size(); ++i) database[u"All"].Update(ids[i], turned[i]);
  expect_rows(turned);
  for (const RowId id : ids) database[u"All"].Delete(id);
  EXPECT_THAT(RowsOf(database[u"All"]), IsEmpty());
  EXPECT_EQ(database[u"All"].Read(ids[0]), std::nullopt);
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(TableTest, LooksUpRowsByLeadingColumnsOfAnIndex) {
  TestDatabase database;
  database->CreateTable(
      {.name = u"T",
       .columns = {{.name = u"Code", .type = ColumnType::kText, .size = 255},
                   {.name = u"Kind"},
                   {.name = u"Raw", .type = ColumnType::kBinary, .size = 20}},
       .indexes = {{.name = u"CodeKind", .columns = {{u"Code", false}, {u"Kind"}}},
                   {.name = u"RawKind", .columns = {{u"Raw"}, {u"Kind"}}},
                   {.name = u"Kind", .columns = {{u"Kind"}}, .ignore_nulls = true}}});
  Table& table = database[u"T"];
  const auto raw = [](std::size_t size) { return Bytes(size, std::byte{0}); };
  const RowId a1 = Add(table, {u"Ab", 1, raw(0)});
  const RowId a2 = Add(table, {u"aB ", 2, raw(1)});
  const RowId b1 = Add(table, {u"Ab-", 1, raw(8)});
  const RowId none = Add(table, {Null{}, Null{}, Null{}});
  // Two keys of more than 510 bytes that agree in all that an entry keeps of them unchanged.
  const std::u16string long_text(255, u'\u00e9');
  const RowId long1 = Add(table, {long_text, 1, raw(9)});
  const RowId long2 = Add(table, {long_text.substr(0, 254) + u"\u00e8", 2, raw(16)});

  const auto find = [&](std::size_t index, const std::vector<Value>& values) {
    return table.Lookup(index, values);
  };
  EXPECT_EQ(table.IndexOn(0), 0u);
  EXPECT_EQ(table.IndexOn(1), 2u);
  EXPECT_EQ(table.IndexOn(std::vector<std::size_t>{1, 0}), 0u);
  EXPECT_EQ(table.IndexOn(std::vector<std::size_t>{0, 2}), std::nullopt);
  EXPECT_THAT(find(0, {u"AB"}), ElementsAre(a1, a2));
  EXPECT_THAT(find(0, {u"AB", 2}), ElementsAre(a2));
  EXPECT_THAT(find(0, {u"ab-"}), ElementsAre(b1));
  EXPECT_THAT(find(0, {u"A"}), IsEmpty());
  EXPECT_THAT(find(0, {Null{}}), ElementsAre(none));
  EXPECT_THAT(find(0, {u"\u0e01"}), IsEmpty()) << "a text of unknown order equals no other";
  EXPECT_THAT(find(0, {long_text}), ElementsAre(long1));
  EXPECT_THAT(find(0, {long_text, 1}), ElementsAre(long1));
  EXPECT_THAT(find(0, {long_text, 2}), IsEmpty());
  EXPECT_THAT(find(0, {long_text.substr(0, 254) + u"\u00e8", 2}), ElementsAre(long2));
  EXPECT_THAT(find(1, {raw(0)}), ElementsAre(a1));
  EXPECT_THAT(find(1, {raw(8)}), ElementsAre(b1));
  EXPECT_THAT(find(2, {Null{}}), ElementsAre(none)) << "though the index leaves it out";
  EXPECT_THAT(find(2, {1}), ElementsAre(a1, b1, long1));
  EXPECT_EQ(FailureOf([&] { find(2, {u"1"}); }), (Failure{ErrorKind::kTypeMismatch, {u"Kind"}}));

  EXPECT_THAT(table.RowsInOrder(2), ElementsAre(none, a1, b1, long1, a2, long2));
  // The key of an empty binary has no end, so that what follows it decides.
  EXPECT_THAT(table.RowsInOrder(1), ElementsAre(none, a2, b1, long1, long2, a1));
  EXPECT_EQ(table.RowsInOrder(0).back(), none);  // descending
}

TEST(TableTest, PrefersAUniqueIndexOfTheColumnAlone) {
  TestDatabase database;
  database->CreateTable({.name = u"T",
                         .columns = {{.name = u"A"}, {.name = u"B"}},
                         .indexes = {{.name = u"AB", .columns = {{u"A"}, {u"B"}}, .unique = true},
                                     {.name = u"Plain", .columns = {{u"A"}}},
                                     {.name = u"Unique", .columns = {{u"A"}}, .unique = true}}});
  EXPECT_EQ(database[u"T"].IndexOn(0), 2u);
  EXPECT_EQ(database[u"T"].IndexOn(1), std::nullopt);
}

TEST(TableTest, AScanSeesEachRowOnceWhileRowsChange) {
  TestDatabase database;
  database->CreateTable(
      {.name = u"T",
       .columns = {{.name = u"Id"},
                   {.name = u"Text", .type = ColumnType::kText, .compress = false}}});
  Table& table = database[u"T"];
  for (int i = 0; i < 300; ++i) Add(table, {i, u"short"});
  std::set<RowId> seen;
  std::set<int> numbers;
  Table::Scan scan = table.ScanRows();
  while (const auto row = scan.Next()) {
    EXPECT_TRUE(seen.insert(row->id).second);
    const int number = std::get<int>(row->values[0]);
    numbers.insert(number);
    if (number % 3 == 0) table.Update(row->id, {number, std::u16string(200, u'x')});  // it moves
    if (number % 3 == 1) table.Delete(row->id);
  }
  EXPECT_EQ(numbers.size(), 300u);
  EXPECT_EQ(RowsOf(table).size(), 200u);
  EXPECT_THAT(database.Problems(), IsEmpty());
}

class AutonumberTest : public ::testing::Test {
 protected:
  AutonumberTest() {
    database_->CreateTable(
        {.name = u"T",
         .columns = {{.name = u"Id", .autonumber = true},
                     {.name = u"Text", .type = ColumnType::kText}},
         .indexes = {{.name = u"PrimaryKey", .columns = {{u"Id"}}, .primary = true}}});
  }

  std::int32_t Insert(const Value& number = Null{}) {
    Row row = {number, Null{}};
    last_id_ = database_[u"T"].Insert(row);
    return std::get<std::int32_t>(row[0]);
  }
  void SetCounter(std::int32_t last, std::int32_t increment) {
    database_.EditDefinition(u"T", [&](TableDefinition& definition) {
      definition.last_autonumber = last;
      definition.autonumber_increment = increment;
    });
  }
  std::int32_t last() { return database_[u"T"].definition().last_autonumber; }

  TestDatabase database_;
  RowId last_id_;
};

TEST_F(AutonumberTest, FollowsGeneratedAndGreaterExplicitNumbers) {
  EXPECT_EQ(Insert(), 1);
  EXPECT_EQ(Insert(10), 10);
  EXPECT_EQ(Insert(), 11);
  EXPECT_EQ(Insert(5), 5);
  database_.Reopen();
  EXPECT_EQ(Insert(), 12);
  database_[u"T"].Update(last_id_, {20, Null{}});
  EXPECT_EQ(Insert(), 21);
  database_[u"T"].Delete(last_id_);
  EXPECT_EQ(Insert(), 22);
  EXPECT_EQ(last(), 22);
  EXPECT_THAT(database_.Problems(), IsEmpty());
}

TEST_F(AutonumberTest, WrapsAndCountsDown) {
  SetCounter(std::numeric_limits<std::int32_t>::max(), 1);
  EXPECT_EQ(Insert(), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(Insert(), std::numeric_limits<std::int32_t>::min() + 1);
  SetCounter(3, -5);
  EXPECT_EQ(Insert(), -2);
  EXPECT_EQ(Insert(-10), -10);
  EXPECT_EQ(Insert(40), 40);
  EXPECT_EQ(Insert(), -15);
}

TEST_F(AutonumberTest, PassesOverNumbersThatALaggingCounterWouldRepeat) {
  for (const int number : {1, 2, 3, 5}) Insert(number);
  SetCounter(0, 1);
  EXPECT_EQ(Insert(), 4);
  EXPECT_EQ(Insert(), 6);
  EXPECT_EQ(last(), 6);
}

TEST_F(AutonumberTest, RandomNumbersLeaveTheCounterAlone) {
  PropertyBlob blob;
  blob.groups.push_back(
      {1, u"Id", {TextProperty(std::u16string(property::kDefaultValue), u"GenUniqueID()")}});
  database_.SetProperties(u"T", blob);
  std::set<std::int32_t> numbers;
  for (int i = 0; i < 50; ++i) numbers.insert(Insert());
  EXPECT_EQ(numbers.size(), 50u);
  EXPECT_TRUE(*numbers.begin() < 0 && *numbers.rbegin() > 50);
  EXPECT_EQ(last(), 0);
}

TEST(TableTest, RowsOlderThanAColumnReadNullAndAreRewrittenWhole) {
  TestDatabase database;
  database->CreateTable(
      {.name = u"T", .columns = {{.name = u"Id"}, {.name = u"Text", .type = ColumnType::kText}}});
  const RowId id = Add(database[u"T"], {1, u"old"});
  database.EditDefinition(u"T", [](TableDefinition& definition) {
    ColumnDefinition column;
    column.name = u"Flag";
    column.type = ColumnType::kBoolean;
    column.length = 1;
    AppendColumn(definition, column);
    column.name = u"Late";
    column.type = ColumnType::kText;
    column.length = 40;
    AppendColumn(definition, column);
  });
  Table& table = database[u"T"];
  EXPECT_THAT(*table.Read(id), ElementsAre(Value(1), Value(u"old"), Value(false), Value(Null{})));
  const Row changed = {2, u"old", true, u"late"};
  table.Update(id, changed);
  EXPECT_EQ(*table.Read(id), changed);
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(TableTest, EntriesThatNobodyExpectsDoNotHinderChanges) {
  TestDatabase database;
  database->CreateTable(
      {.name = u"T",
       .columns = {{.name = u"Code", .type = ColumnType::kText, .size = 20}, {.name = u"N"}},
       .indexes = {{.name = u"Code", .columns = {{u"Code"}}, .unique = true}}});
  const RowId id = Add(database[u"T"], {u"X", 1});
  // As after a kill between the two halves of an update: the row says X, an entry says Y, too; and
  // another row has an entry under a key that its text does not have in this engine's order.
  const RowId other = Add(database[u"T"], {u"Z", 2});
  {
    Table& table = database[u"T"];
    table.Update(id, {u"Y", 1});
    const std::vector<PageBytes> with_y = database.disk().Snapshot();
    table.Update(id, {u"X", 1});
    const PageNumber root = table.definition().physical_indexes[0].root;
    database.EditPage(root, [&](ByteEditor& page) {
      std::ranges::copy(with_y[root], page.Slice(0, kPageSize).begin());
    });
  }
  Table& table = database[u"T"];
  const auto find = [&](const char16_t* code) {
    const Value value = code;
    return table.Lookup(0, std::span(&value, 1));
  };
  EXPECT_THAT(find(u"Y"), IsEmpty());
  const RowId added = Add(table, {u"Y", 3});  // nobody has that key
  EXPECT_THAT(find(u"Y"), ElementsAre(added));
  table.Delete(id);
  table.Update(other, {u"X", 2});
  EXPECT_THAT(find(u"X"), ElementsAre(other));
  EXPECT_THAT(database.Problems(), IsEmpty());
}

}  // namespace
}  // namespace jet::test
