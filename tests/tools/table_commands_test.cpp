// paptool rows, processed, check and compact: what they print and do, and what they refuse.
#include <gmock/gmock.h>

#include <algorithm>

#include "platform/files/paths.h"
#include "platform/jet/database.h"
#include "tests/tools/paptool_test.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kNames[] = "FileName\tDate\tAssortiment\tSupplier\tDateProcessed";

class TableCommandsTest : public PaptoolTest {};

TEST_F(TableCommandsTest, RowsPrintsEveryKindOfValue) {
  using jet::ColumnType;
  using jet::Null;
  const jet::TableSpec table{
      .name = u"Every kind",
      .columns = {{.name = u"Yes", .type = ColumnType::kBoolean},
                  {.name = u"Byte", .type = ColumnType::kByte},
                  {.name = u"Integer", .type = ColumnType::kInteger},
                  {.name = u"Long", .type = ColumnType::kLong},
                  {.name = u"Currency", .type = ColumnType::kCurrency},
                  {.name = u"Single", .type = ColumnType::kSingle},
                  {.name = u"Double", .type = ColumnType::kDouble},
                  {.name = u"Date", .type = ColumnType::kDate},
                  {.name = u"Binary", .type = ColumnType::kBinary, .size = 10},
                  {.name = u"Text", .type = ColumnType::kText, .size = 20},
                  {.name = u"OLE", .type = ColumnType::kOle},
                  {.name = u"Memo", .type = ColumnType::kMemo},
                  {.name = u"GUID", .type = ColumnType::kGuid},
                  {.name = u"Numeric", .type = ColumnType::kNumeric, .precision = 10, .scale = 3}},
      .indexes = {}};
  jet::Guid guid;
  for (std::size_t i = 0; i < guid.stored.size(); ++i) guid.stored[i] = std::byte(i * 17);
  const std::string path = MakeDatabase(
      table,
      {{true, std::uint8_t{255}, std::int16_t{-32768}, std::int32_t{-2147483647},
        jet::Currency{-12345}, 0.1F, 0.1, jet::Date{38061},
        jet::Bytes{std::byte{0}, std::byte{255}}, std::u16string(u"a\tb\\"),
        jet::Bytes{std::byte{16}}, std::u16string(u"x\r\ny \u20AC"), guid,
        jet::Numeric{.negative = true, .scale = 3, .magnitude = {0, 0, 0, 12500}}},
       {false, Null{}, Null{}, Null{}, Null{}, Null{}, Null{}, Null{}, Null{}, Null{}, Null{},
        Null{}, Null{}, Null{}},
       {false, std::uint8_t{0}, std::int16_t{0}, std::int32_t{0}, jet::Currency{10000}, 16777216.0F,
        1e300, jet::Date{-1.25}, jet::Bytes{}, std::u16string(), jet::Bytes{}, std::u16string(),
        guid, jet::Numeric{.negative = false, .scale = 3, .magnitude = {0, 0, 0, 7}}}});
  const ProgramOutcome outcome = Run({"rows", "--table", path, "--password", "", "every KIND"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.err, IsEmpty());
  const std::string id = "{33221100-5544-7766-8899-aabbccddeeff}";
  EXPECT_THAT(Lines(outcome.out),
              ElementsAre("Yes\tByte\tInteger\tLong\tCurrency\tSingle\tDouble\tDate\tBinary\tText\t"
                          "OLE\tMemo\tGUID\tNumeric",
                          "True\t255\t-32768\t-2147483647\t-1.2345\t0.1\t0.1\t2004-03-15 00:00:00\t"
                          "00ff\ta\\tb\\\\\t10\tx\\r\\ny \xE2\x82\xAC\t" +
                              id + "\t-12.5",
                          "False\t\\N\t\\N\t\\N\t\\N\t\\N\t\\N\t\\N\t\\N\t\\N\t\\N\t\\N\t\\N\t\\N",
                          "False\t0\t0\t0\t1\t16777216\t1e+300\t1899-12-29 06:00:00\t\t\t\t\t" +
                              id + "\t0.007"));
}

TEST_F(TableCommandsTest, ProcessedPrintsTheRegisterOldestFirst) {
  const ProgramOutcome none = Run({"processed", "--table", MakeProductTable()});
  EXPECT_EQ(none.status, 0);
  EXPECT_THAT(Lines(none.out), ElementsAre(kNames));

  using jet::ColumnType;
  using jet::Null;
  jet::TableSpec table{.name = u"PriceUpdates",
                       .columns = {{.name = u"FileName", .type = ColumnType::kText, .size = 50},
                                   {.name = u"Date", .type = ColumnType::kDate},
                                   {.name = u"Assortiment", .type = ColumnType::kText, .size = 50},
                                   {.name = u"Supplier", .type = ColumnType::kText, .size = 50},
                                   {.name = u"DateProcessed", .type = ColumnType::kDate}},
                       .indexes = {}};
  const std::u16string tab = u"B\tC";
  const std::string path =
      MakeDatabase(table, {{std::u16string(u"late"), Null{}, tab, Null{}, jet::Date{38062.5}},
                           {std::u16string(u"never"), Null{}, Null{}, Null{}, Null{}},
                           {std::u16string(u"same"), Null{}, Null{}, Null{}, jet::Date{38062.5}},
                           {std::u16string(u"early"), jet::Date{1}, Null{}, Null{}, jet::Date{2}}});
  const ProgramOutcome all = Run({"processed", "--table", path, "--password", ""});
  EXPECT_EQ(all.status, 0);
  EXPECT_THAT(Lines(all.out),
              ElementsAre(kNames, "never\t\\N\t\\N\t\\N\t\\N",
                          "early\t1899-12-31 00:00:00\t\\N\t\\N\t1900-01-01 00:00:00",
                          "late\t\\N\tB\\tC\t\\N\t2004-03-16 12:00:00",
                          "same\t\\N\t\\N\t\\N\t2004-03-16 12:00:00"));

  std::filesystem::remove(folder / "values.mdb");
  table.columns.pop_back();
  MakeDatabase(table, {});
  const ProgramOutcome other_shape = Run({"processed", "--table", path, "--password", ""});
  EXPECT_EQ(other_shape.status, 1);
  EXPECT_THAT(other_shape.out, IsEmpty());
  EXPECT_THAT(other_shape.err, HasSubstr("Too few parameters"));
}

TEST_F(TableCommandsTest, CheckTellsSoundFromDamaged) {
  const std::string path = MakeDatabase(
      {.name = u"T",
       .columns = {{.name = u"ID"}},
       .indexes = {{.name = u"PK", .columns = {{u"ID"}}, .primary = true, .unique = true}}},
      {{std::int32_t{1}}, {std::int32_t{2}}});
  const ProgramOutcome sound = Run({"check", "--table", path});
  EXPECT_EQ(sound.status, 0);
  EXPECT_EQ(sound.out, "ok: 1 tables, 2 rows, 2 index entries\n");

  // The file's last pages are those of the new table; without them its rows are gone.
  std::string bytes = test_support::ReadAll(folder / "values.mdb");
  constexpr std::size_t kPage = 4096;
  std::fill(bytes.end() - kPage, bytes.end(), '\0');
  folder.Write("values.mdb", bytes);
  const ProgramOutcome damaged = Run({"check", "--table", path});
  EXPECT_EQ(damaged.status, 1);
  EXPECT_THAT(damaged.out, testing::Not(HasSubstr("ok:")));
  EXPECT_THAT(damaged.out + damaged.err, testing::Not(IsEmpty()));
}

TEST_F(TableCommandsTest, CompactReplacesTheFileOrLeavesItAsItWas) {
  const std::string path = MakeDatabase(
      {.name = u"T", .columns = {{.name = u"Text", .type = jet::ColumnType::kText}}, .indexes = {}},
      std::vector<jet::Row>(200, {std::u16string(250, u'\u0161')}));
  {
    const auto database = jet::Database::Open(folder / "values.mdb");
    jet::Table& table = database->OpenTable(u"T");
    auto scan = table.ScanRows();
    while (const auto row = scan.Next()) table.Delete(row->id);
  }
  const std::string before = test_support::ReadAll(folder / "values.mdb");
  {
    const auto user = jet::Database::Open(folder / "values.mdb");
    const ProgramOutcome refused = Run({"compact", "--table", path});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.err, HasSubstr("file already in use. Close the program"));
  }
  EXPECT_EQ(test_support::ReadAll(folder / "values.mdb"), before);

  const ProgramOutcome done = Run({"compact", "--table", path});
  EXPECT_EQ(done.status, 0);
  EXPECT_THAT(done.err, IsEmpty());
  const std::string after = test_support::ReadAll(folder / "values.mdb");
  EXPECT_LT(after.size(), before.size() / 2);
  EXPECT_EQ(done.out, "ok: " + std::to_string(before.size()) + " bytes before, " +
                          std::to_string(after.size()) + " after\n");
  EXPECT_EQ(Run({"check", "--table", path}).out, "ok: 1 tables, 0 rows, 0 index entries\n");
}

TEST_F(TableCommandsTest, WhatCannotBeOpenedIsToldWithAdvice) {
  const std::string table = MakeProductTable();
  folder.Write("text.pt", std::string(9000, 'x'));
  const struct {
    std::vector<std::string> arguments;
    const char* error;
  } cases[] = {
      {{"tables", "--table", Path("missing.pt")}, "--table"},
      {{"tables", "--table", Path("text.pt")}, "Unrecognized database format"},
      {{"tables", "--table", table, "--password", "wrong"}, "Not a valid password. Give the"},
      {{"rows", "--table", table, "Nothing"}, "`paptool tables`"},
      {{"rows", "--table", table, "MSysObjects"}, "no read permission on 'MSysObjects'"},
      {{"check", "--table", Path("missing.pt")}, "Could not find file"},
      {{"compact", "--table", Path("text.pt")}, "Unrecognized database format"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));
    const ProgramOutcome outcome = Run(c.arguments);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.out, IsEmpty());
    EXPECT_EQ(Lines(outcome.err).size(), 1u);
    EXPECT_THAT(outcome.err, HasSubstr(c.error));
  }
}

}  // namespace
