// A table's rows: look-ups and autonumbers.
#include "platform/jet/table.h"

#include <gmock/gmock.h>

#include <limits>
#include <set>

#include "platform/jet/constraints.h"
#include "tests/platform/jet/test_database.h"

namespace jet::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using enum ColumnType;

TEST(TableTest, LooksUpRowsByLeadingColumnsOfAnIndex) {
  TestDatabase database;
  database->CreateTable({u"T",
                         {{u"Code", kText, 255}, {u"Kind"}, {u"Raw", kBinary, 20}},
                         {{u"CodeKind", {{u"Code", false}, {u"Kind"}}},
                          {u"RawKind", {{u"Raw"}, {u"Kind"}}},
                          {.name = u"Kind", .columns = {{u"Kind"}}, .ignore_nulls = true}}});
  Table& table = database[u"T"];
  const auto raw = [](std::size_t size) { return Bytes(size, std::byte{0}); };
  const RowId a1 = Add(table, {u"Ab", 1, raw(0)});
  const RowId a2 = Add(table, {u"aB ", 2, raw(1)});
  const RowId b1 = Add(table, {u"Ab-", 1, raw(8)});
  const RowId none = Add(table, {Null{}, Null{}, Null{}});
  // Two keys of more than 510 bytes that agree in all that an entry keeps of them unchanged.
  const std::u16string long_text(255, u'\u00e9');
  const std::u16string other_text = long_text.substr(0, 254) + u"\u00e8";
  const RowId long1 = Add(table, {long_text, 1, raw(9)});
  const RowId long2 = Add(table, {other_text, 2, raw(16)});

  EXPECT_EQ(table.IndexOn(0), 0u);
  EXPECT_EQ(table.IndexOn(1), 2u);
  EXPECT_EQ(table.IndexOn(std::vector<std::size_t>{1, 0}), 0u);
  EXPECT_EQ(table.IndexOn(std::vector<std::size_t>{0, 2}), std::nullopt);
  const struct {
    std::size_t index;
    std::vector<Value> values;
    std::vector<RowId> rows;
  } cases[] = {
      {0, {u"AB"}, {a1, a2}},    {0, {u"AB", 2}, {a2}},
      {0, {u"ab-"}, {b1}},       {0, {u"A"}, {}},
      {0, {Null{}}, {none}},     {0, {u"\u0e01"}, {}},  // a text of unknown order equals no other
      {0, {long_text}, {long1}}, {0, {long_text, 1}, {long1}},
      {0, {long_text, 2}, {}},   {0, {other_text, 2}, {long2}},
      {1, {raw(0)}, {a1}},       {1, {raw(8)}, {b1}},
      {2, {Null{}}, {none}},  // though the index leaves it out
      {2, {1}, {a1, b1, long1}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    EXPECT_EQ(table.Lookup(c.index, c.values), c.rows);
  }
  const Value wrong = u"1";
  EXPECT_EQ(FailureOf([&] { table.Lookup(2, std::span(&wrong, 1)); }),
            (Failure{ErrorKind::kTypeMismatch, {u"Kind"}}));
  EXPECT_THAT(table.RowsInOrder(2), ElementsAre(none, a1, b1, long1, a2, long2));
  // The key of an empty binary has no end, so that what follows it decides.
  EXPECT_THAT(table.RowsInOrder(1), ElementsAre(none, a2, b1, long1, long2, a1));
  EXPECT_EQ(table.RowsInOrder(0).back(), none);  // descending
}

class AutonumberTest : public ::testing::Test {
 protected:
  AutonumberTest() {
    database_->CreateTable(
        {u"T", {{.name = u"Id", .autonumber = true}, {u"Text", kText}}, {PrimaryKey(u"Id")}});
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

TEST_F(AutonumberTest, WrapsCountsDownAndPassesOverWhatALaggingCounterWouldRepeat) {
  SetCounter(std::numeric_limits<std::int32_t>::max(), 1);
  EXPECT_EQ(Insert(), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(Insert(), std::numeric_limits<std::int32_t>::min() + 1);
  SetCounter(3, -5);
  EXPECT_EQ(Insert(), -2);
  EXPECT_EQ(Insert(-10), -10);
  EXPECT_EQ(Insert(40), 40);
  EXPECT_EQ(Insert(), -15);
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

}  // namespace
}  // namespace jet::test
