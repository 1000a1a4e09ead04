// paptool processed: the register as it is in a file, and as the import leaves it.
#include <gmock/gmock.h>

#include "tests/tools/paptool_test.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kNames[] = "FileName\tDate\tAssortiment\tSupplier\tDateProcessed";

class ProcessedCommandTest : public PaptoolTest {};

TEST_F(ProcessedCommandTest, PrintsTheRegisterOldestFirst) {
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

}  // namespace
