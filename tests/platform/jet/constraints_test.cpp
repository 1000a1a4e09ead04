// Rules that a file declares: what may stand in a column, defaults, and rows that refer to rows.
#include <gmock/gmock.h>

#include <cmath>

#include "platform/jet/constraints.h"
#include "platform/jet/default_value.h"
#include "tests/platform/jet/test_database.h"

namespace jet::test {
namespace {

using ::testing::IsEmpty;
using enum ColumnType;

std::optional<Failure> Fails(ErrorKind kind, std::vector<std::u16string> names) {
  return Failure{kind, std::move(names)};
}

TEST(ColumnRulesTest, EachBrokenRuleIsNamedAndChangesNothing) {
  TestDatabase database;
  database->CreateTable({u"Goods",
                         {{.name = u"Id", .autonumber = true},
                          {u"Code", kText, 5, false, true, false},
                          {u"Grade", kByte},
                          {u"Raw", kBinary, 4},
                          {.name = u"Exact", .type = kNumeric, .precision = 5, .scale = 2},
                          {u"Since", kDate},
                          {u"Note", kMemo, 0, false, true, false}},
                         {PrimaryKey(u"Id"),
                          {.name = u"ByCode", .columns = {{u"Code"}}, .unique = true},
                          {.name = u"ByGrade", .columns = {{u"Grade"}}, .refuse_nulls = true},
                          {.name = u"Since", .columns = {{u"Since"}, {u"Raw"}}, .unique = true}}});
  Table& goods = database[u"Goods"];
  const Row sound = {Null{}, u"B", std::uint8_t{1}, Null{}, Null{}, Null{}, u"note"};
  Row first = sound;
  first[1] = u"Ab-1";
  const RowId first_id = goods.Insert(first);
  const RowId second_id = Add(goods, sound);  // in a unique index Nulls may repeat
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
  const RowId nowhere{second_id.page, 99};
  EXPECT_EQ(FailureOf([&] { goods.Update(nowhere, first); }), Fails(kRecordDeleted, {}));
  EXPECT_EQ(FailureOf([&] { goods.Delete(nowhere); }), Fails(kRecordDeleted, {}));
  EXPECT_TRUE(database.disk().Snapshot() == before);
  EXPECT_EQ(goods.row_count(), 2u);

  Row own = *goods.Read(first_id);
  own[1] = u"AB-1";
  EXPECT_EQ(FailureOf([&] { goods.Update(first_id, own); }), std::nullopt)
      << "a row does not collide with itself";
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(ColumnRulesTest, RowsThatAreTooLongMoveTheirInlineValuesOutFirst) {
  TestDatabase database;
  TableSpec spec{.name = u"Wide"};
  for (char16_t c = u'a'; c < u'a' + 14; ++c)
    spec.columns.push_back({std::u16string(1, c), c < u'a' + 8 ? kText : kMemo});
  database->CreateTable(spec);
  Table& table = database[u"Wide"];
  // 7 texts of 510 bytes; an inline memo takes 12 + 64 bytes, one moved out 12.
  Row row(14, std::u16string(32, u'\u0416'));
  for (std::size_t i = 0; i < 7; ++i) row[i] = std::u16string(255, u'\u0416');
  row[7] = Null{};
  const RowId id = table.Insert(row);
  EXPECT_EQ(*table.Read(id), row);
  Row longer = row;
  longer[7] = std::u16string(255, u'\u0416');
  EXPECT_EQ(FailureOf([&] { table.Update(id, longer); }), Fails(ErrorKind::kRowTooLarge, {}));
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

TEST(ColumnRulesTest, RulesThatOnlyTheHostCanCheckRefuseRowsButNotTheirDeletion) {
  const auto rule_of = [](std::uint16_t kind, std::u16string owner, std::u16string_view name) {
    return PropertyGroup{kind, std::move(owner), {TextProperty(std::u16string(name), u">0")}};
  };
  for (const PropertyGroup& rule :
       {rule_of(0, u"", property::kValidationRule), rule_of(1, u"A", property::kValidationRule),
        rule_of(0, u"", property::kCheckConstraints)}) {
    TestDatabase database;
    database->CreateTable({u"T", {{u"A"}}});
    Row row = {1};
    const RowId id = database[u"T"].Insert(row);
    PropertyBlob blob;
    blob.groups.push_back(rule);
    database.SetProperties(u"T", blob);
    const auto refusal = Fails(ErrorKind::kNotSupported, {u"T"});
    EXPECT_EQ(FailureOf([&] { database[u"T"].Insert(row); }), refusal);
    EXPECT_EQ(FailureOf([&] { database[u"T"].Update(id, row); }), refusal);
    EXPECT_EQ(FailureOf([&] { database[u"T"].Delete(id); }), std::nullopt);
  }
}

}  // namespace
}  // namespace jet::test
