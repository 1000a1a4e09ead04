// Rules that a file declares: what may stand in a column, defaults, and rows that refer to rows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "platform/jet/constraints.h"
#include "platform/jet/default_value.h"
#include "tests/platform/jet/test_database.h"

namespace jet::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::optional<Failure> Fails(ErrorKind kind, std::vector<std::u16string> names) {
  return Failure{kind, std::move(names)};
}

TEST(ColumnRulesTest, EachBrokenRuleIsNamedAndChangesNothing) {
  TestDatabase database;
  database->CreateTable(
      {.name = u"Goods",
       .columns = {{.name = u"Id", .autonumber = true},
                   {.name = u"Code",
                    .type = ColumnType::kText,
                    .size = 5,
                    .required = true,
                    .allow_zero_length = false},
                   {.name = u"Grade", .type = ColumnType::kByte},
                   {.name = u"Raw", .type = ColumnType::kBinary, .size = 4},
                   {.name = u"Exact", .type = ColumnType::kNumeric, .precision = 5, .scale = 2},
                   {.name = u"Since", .type = ColumnType::kDate},
                   {.name = u"Note",
                    .type = ColumnType::kMemo,
                    .required = true,
                    .allow_zero_length = false}},
       .indexes = {{.name = u"PrimaryKey", .columns = {{u"Id"}}, .primary = true},
                   {.name = u"ByCode", .columns = {{u"Code"}}, .unique = true},
                   {.name = u"ByGrade", .columns = {{u"Grade"}}, .refuse_nulls = true}}});
  Table& goods = database[u"Goods"];
  const Row sound = {Null{}, u"B", std::uint8_t{1}, Null{}, Null{}, Null{}, u"note"};
  Row first = {Null{}, u"Ab-1", std::uint8_t{1}, Null{}, Null{}, Null{}, u"note"};
  const RowId first_id = goods.Insert(first);
  Row second = sound;
  const RowId second_id = goods.Insert(second);
  const std::vector<PageBytes> before = database.disk().Snapshot();

  struct Case {
    std::size_t column;
    Value value;
    Failure failure;
  };
  using enum ErrorKind;
  const std::vector<Case> cases = {
      {1, Null{}, {kNullInRequired, {u"Goods", u"Code"}}},
      {6, Null{}, {kNullInRequired, {u"Goods", u"Note"}}},
      {1, u"", {kZeroLength, {u"Goods", u"Code"}}},
      {6, u"", {kZeroLength, {u"Goods", u"Note"}}},
      {1, u"123456", {kTooLong, {u"Code"}}},
      {3, Bytes(5), {kTooLong, {u"Raw"}}},
      {1, std::int32_t{3}, {kTypeMismatch, {u"Code"}}},
      {2, std::int32_t{3}, {kTypeMismatch, {u"Grade"}}},
      {2, Null{}, {kNullInKey, {u"ByGrade"}}},
      {1, u"aB-1", {kDuplicateKey, {u"ByCode"}}},   // case counts for nothing
      {1, u"ab-1 ", {kDuplicateKey, {u"ByCode"}}},  // nor do blanks behind it
      {1, u"\u0e01", {kNotSupported, {}}},          // no known place in the order
      {1, u"\ufeffx", {kNotSupported, {u"Code"}}},  // would read back as compressed
      {4, Numeric{false, 2, {0, 0, 0, 100000}}, {kOutOfRange, {u"Exact"}}},
      {4, Numeric{false, 3, {0, 0, 0, 1}}, {kOutOfRange, {u"Exact"}}},
      {5, Date{-657435}, {kOutOfRange, {u"Since"}}},
      {5, Date{2958466}, {kOutOfRange, {u"Since"}}},
      {5, Date{std::nan("")}, {kOutOfRange, {u"Since"}}},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    SCOPED_TRACE("case " + std::to_string(i));
    const Case& test = cases[i];
    Row inserted = sound;
    inserted[1] = u"New";
    inserted[test.column] = test.value;
    const auto insertion = FailureOf([&] { goods.Insert(inserted); });
    ASSERT_TRUE(insertion);
    EXPECT_EQ(insertion->kind, test.failure.kind);
    if (!test.failure.names.empty()) {
      EXPECT_EQ(insertion->names, test.failure.names);
    }
    EXPECT_TRUE(IsNull(inserted[0])) << "an autonumber that was not used stays open";
    Row updated = *goods.Read(second_id);
    updated[test.column] = test.value;
    EXPECT_EQ(FailureOf([&] { goods.Update(second_id, updated); }), insertion);
  }
  EXPECT_EQ(FailureOf([&] {
              goods.Update({second_id.page, 99}, second);
            }),
            Fails(kRecordDeleted, {}));
  EXPECT_EQ(FailureOf([&] { goods.Delete({first_id.page, 99}); }), Fails(kRecordDeleted, {}));
  EXPECT_TRUE(database.disk().Snapshot() == before);
  EXPECT_EQ(goods.row_count(), 2u);

  Row own = *goods.Read(first_id);
  own[1] = u"AB-1";
  EXPECT_EQ(FailureOf([&] { goods.Update(first_id, own); }), std::nullopt)
      << "a row does not collide with itself";
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(ColumnRulesTest, UniqueIndexesLetNullsRepeat) {
  TestDatabase database;
  database->CreateTable(
      {.name = u"T",
       .columns = {{.name = u"A"}, {.name = u"B"}},
       .indexes = {{.name = u"AB", .columns = {{u"A"}, {u"B"}}, .unique = true}}});
  Table& table = database[u"T"];
  const auto insert = [&](const Value& a, const Value& b) {
    Row row = {a, b};
    return FailureOf([&] { table.Insert(row); });
  };
  EXPECT_EQ(insert(1, Null{}), std::nullopt);
  EXPECT_EQ(insert(1, Null{}), std::nullopt);
  EXPECT_EQ(insert(Null{}, Null{}), std::nullopt);
  EXPECT_EQ(insert(1, 1), std::nullopt);
  EXPECT_EQ(insert(1, 1), Fails(ErrorKind::kDuplicateKey, {u"AB"}));
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(ColumnRulesTest, RowsThatAreTooLongMoveTheirInlineValuesOutFirst) {
  TestDatabase database;
  TableSpec spec{.name = u"Wide"};
  for (char16_t c = u'a'; c < u'a' + 8; ++c)
    spec.columns.push_back({.name = std::u16string(1, c), .type = ColumnType::kText});
  for (char16_t c = u'A'; c < u'A' + 6; ++c)
    spec.columns.push_back({.name = std::u16string(u"x") + c, .type = ColumnType::kMemo});
  database->CreateTable(spec);
  Table& table = database[u"Wide"];

  // 7 texts of 510 bytes; an inline memo takes 12 + 64 bytes, one moved out 12.
  Row row(spec.columns.size());
  for (std::size_t i = 0; i < 7; ++i) row[i] = std::u16string(255, u'\u0416');
  for (std::size_t i = 8; i < row.size(); ++i) row[i] = std::u16string(32, u'\u0416');
  const RowId id = table.Insert(row);
  EXPECT_EQ(*table.Read(id), row);
  row[7] = std::u16string(255, u'\u0416');
  EXPECT_EQ(FailureOf([&] { table.Update(id, row); }), Fails(ErrorKind::kRowTooLarge, {}));
  row[7] = Null{};
  EXPECT_EQ(*table.Read(id), row);
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(DefaultValueTest, UnderstandsPlainExpressions) {
  const auto column = [](ColumnType type, std::uint8_t scale = 0) {
    ColumnDefinition definition;
    definition.type = type;
    definition.scale = scale;
    definition.precision = 18;
    return definition;
  };
  struct Case {
    std::u16string expression;
    ColumnDefinition column;
    std::optional<Value> value;  // nothing: not understood
  };
  using enum ColumnType;
  const std::vector<Case> cases = {
      {u"", column(kLong), Null{}},
      {u"Null", column(kText), Null{}},
      {u"0", column(kLong), std::int32_t{0}},
      {u" = -7 ", column(kInteger), std::int16_t{-7}},
      {u"300", column(kByte), std::nullopt},
      {u"\"12\"", column(kByte), std::uint8_t{12}},
      {u"1.5", column(kDouble), 1.5},
      {u"0.1", column(kCurrency), Currency{1000}},
      {u"-2.345", column(kNumeric, 3), Numeric{true, 3, {0, 0, 0, 2345}}},
      {u"1e400", column(kDouble), std::nullopt},
      {u"=No", column(kBoolean), false},
      {u"yes", column(kBoolean), true},
      {u"-1", column(kBoolean), true},
      {u"True", column(kLong), std::int32_t{-1}},
      {u"\"a \"\"b\"\"\"", column(kText), std::u16string(u"a \"b\"")},
      {u"='x'", column(kMemo), std::u16string(u"x")},
      {u"\"a\"b\"", column(kText), std::nullopt},
      {u"0", column(kText), std::u16string(u"0")},
      {u"Yes", column(kText), std::nullopt},
      {u"1+1", column(kLong), std::nullopt},
      {u"UserName()", column(kText), std::nullopt},
      {u"Date()", column(kText), std::nullopt},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    SCOPED_TRACE("case " + std::to_string(i));
    const Case& test = cases[i];
    const DefaultValue parsed = DefaultValue::Parse(test.expression, test.column);
    EXPECT_EQ(parsed.is_unknown(), !test.value);
    if (test.value) {
      EXPECT_EQ(parsed.Evaluate(test.column), *test.value);
    } else {
      EXPECT_TRUE(FailureOf([&] { parsed.Evaluate(test.column); }));
    }
  }
  const ColumnDefinition date = column(kDate);
  const double now = CurrentDays();
  const auto value = [&](const char16_t* text) {
    return std::get<Date>(DefaultValue::Parse(text, date).Evaluate(date)).days;
  };
  EXPECT_NEAR(value(u"=Now()"), now, 0.01);
  EXPECT_NEAR(value(u"Date( )"), std::floor(now), 1);  // the test may run over midnight
  EXPECT_EQ(value(u"Date()"), std::floor(value(u"Date()")));
}

TEST(DefaultValueTest, FillsEmptyColumnsOfNewRowsOnly) {
  TestDatabase database;
  database->CreateTable(
      {.name = u"T",
       .columns = {{.name = u"Text", .type = ColumnType::kText, .required = true},
                   {.name = u"Odd"},
                   {.name = u"Flag", .type = ColumnType::kBoolean},
                   {.name = u"Mark", .type = ColumnType::kGuid, .autonumber = true}}});
  PropertyBlob blob;
  blob.groups.push_back(
      {1, u"Text", {TextProperty(std::u16string(property::kDefaultValue), u"\"none\"")}});
  blob.groups.push_back(
      {1, u"Odd", {TextProperty(std::u16string(property::kDefaultValue), u"=Forms!x!y")}});
  database.SetProperties(u"T", blob);
  Table& table = database[u"T"];

  Row unknown(4);
  EXPECT_EQ(FailureOf([&] { table.Insert(unknown); }), Fails(ErrorKind::kNotSupported, {u"Odd"}));
  EXPECT_EQ(unknown, Row(4)) << "nothing filled in for a row that was not added";
  Row row(4);
  row[1] = 5;
  const RowId id = table.Insert(row);
  EXPECT_EQ(row[0], Value(std::u16string(u"none")));
  EXPECT_EQ(row[2], Value(false));
  EXPECT_TRUE(std::holds_alternative<Guid>(row[3]));
  EXPECT_EQ(*table.Read(id), row);
  row[0] = Null{};
  table.Update(id, row);
  EXPECT_EQ(*table.Read(id), row);
}

TEST(ColumnRulesTest, RulesThatOnlyTheHostCanCheckRefuseRowsButNotTheirDeletion) {
  struct Case {
    std::uint16_t kind;
    std::u16string group;
    std::u16string_view rule;
  };
  const std::vector<Case> cases = {{0, u"", property::kValidationRule},
                                   {1, u"A", property::kValidationRule},
                                   {0, u"", property::kCheckConstraints}};
  for (std::size_t i = 0; i < cases.size(); ++i) {
    SCOPED_TRACE("case " + std::to_string(i));
    TestDatabase database;
    database->CreateTable({.name = u"T", .columns = {{.name = u"A"}}});
    Row row = {1};
    const RowId id = database[u"T"].Insert(row);
    PropertyBlob blob;
    blob.groups.push_back(
        {cases[i].kind, cases[i].group, {TextProperty(std::u16string(cases[i].rule), u">0")}});
    database.SetProperties(u"T", blob);
    const auto refusal = Fails(ErrorKind::kNotSupported, {u"T"});
    EXPECT_EQ(FailureOf([&] { database[u"T"].Insert(row); }), refusal);
    EXPECT_EQ(FailureOf([&] { database[u"T"].Update(id, row); }), refusal);
    EXPECT_EQ(FailureOf([&] { database[u"T"].Delete(id); }), std::nullopt);
  }
}

}  // namespace
}  // namespace jet::test
