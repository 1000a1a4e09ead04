// The steps that replace prices on product tables that they cannot write as they should.
#include <gmock/gmock.h>

#include "platform/files/paths.h"
#include "store/modProductTable.h"
#include "tests/engine/update_test.h"
#include "tests/support/file_protection.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

class PriceStepsTest : public UpdateTest {
 protected:
  PriceStepsTest() { ApplyOpeningUpdates(); }

  // Gives a column another last letter, wherever its name stands in the file.
  void RenameColumn(const std::string& name) {
    CloseConnection();
    ProductConnection.reset();
    const auto path = files::ToPath(product_table);
    std::string bytes = test_support::ReadAll(path);
    const std::string from = Utf16(name);
    std::size_t found = 0;
    for (std::size_t at = 0; (at = bytes.find(from, at)) != std::string::npos; ++found) {
      bytes[at + from.size() - 2] = 'x';
    }
    ASSERT_GT(found, 0U);
    folder.Write(path.filename(), bytes);
  }

 private:
  static std::string Utf16(const std::string& text) {
    std::string bytes;
    for (const char c : text) bytes += {c, '\0'};
    return bytes;
  }
};

// What would be cleared stays where it could not be written again, and the list tells why.
TEST_F(PriceStepsTest, AMissingColumnClearsNothing) {
  const std::string file(test_support::ReadAll(files::ToPath(product_table)));
  const char* const prices = "[UPDATE PRICEDATA]\nHEA100,99,1,2,3,4,G1,D1,\n";
  const char* const steps = "[UPDATE BASEPRICE]\nG1,Group,1,1,0,10,9.9\n";
  const char* const bonuses = "[UPDATE OVERLENGTHBONUS]\n10,20,0.9\n";
  const struct {
    const char* column;
    const char* lines;
    const wchar_t* table;
    std::vector<std::wstring> columns;  // some of those that are left
  } cases[] = {
      {"PriceDim", prices, L"ArtPrice", {L"fkArticle", L"OverPrice", L"fkBPG"}},
      {"BlastPrice", prices, L"ArtPrice", {L"fkArticle", L"OverPrice", L"PriceDim"}},
      {"Begin", steps, L"BasePrice", {L"ID", L"End", L"BasePrice"}},
      {"PriceUnit", steps, L"BasePrice", {L"ID", L"Begin", L"BasePrice"}},
      {"Begin", bonuses, L"OverlengthBonus", {L"fkSupplier", L"End", L"Price"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.column);
    CloseConnection();
    ProductConnection.reset();
    folder.Write("Orv.pt", file);
    RenameColumn(c.column);
    const auto before = Rows(c.table, c.columns);
    EXPECT_FALSE(Apply(c.lines));
    EXPECT_THAT(shown, Contains(AllOf(StartsWith("! #64|"), HasSubstr("3265: "),
                                      HasSubstr(std::string("(") + c.column + ")"))));
    EXPECT_EQ(shown.back(), "#59|#62");
    EXPECT_EQ(Rows(c.table, c.columns), before);
  }
}

// What was deleted for the groups before the one that is refused is written again.
TEST_F(PriceStepsTest, AGroupThatCannotBeClearedIsRefusedInItsTurn) {
  EXPECT_FALSE(
      Apply("[UPDATE BASEPRICE]\nG1,Group,1,1,0,10,9.9\nO'X,,1,1,0,1,1\nG9,New,1,1,0,10,9.9\n"));
  ASSERT_THAT(shown, SizeIs(5));
  EXPECT_THAT(shown[3], StartsWith("! #64|3001: "));
  EXPECT_THAT(Rows(L"BasePrice", {L"ID", L"BasePrice"}),
              testing::UnorderedElementsAre("1|9.9", "2|1.2", "3|1.3"));
}

TEST_F(PriceStepsTest, AProductTableForReadingOnlyIsToldInEachStep) {
  const struct {
    const char* what;
    const char* lines;
  } cases[] = {
      {"base prices", "[UPDATE BASEPRICE]\nG1,Group,1,1,0,10,9.9\nG9,New,1,1,0,10,9.9\n"},
      {"overlength bonuses", "[UPDATE OVERLENGTHBONUS]\n10,20,0.9\n"},
      {"article prices", "[UPDATE PRICEDATA]\nHEA100,99,1,2,3,4,G1,D1,\n"},
      {"dates", "[VERSION]\n3.2\n"},
  };
  CloseConnection();
  ProductConnection.reset();
  std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    NextUpdate(c.lines);
    std::filesystem::permissions(folder / "update.PRC", std::filesystem::perms::all);
    const test_support::WriteProtection protection(files::ToPath(product_table));
    if (!protection.Holds()) GTEST_SKIP() << "this account may write to any file";
    EXPECT_FALSE(Apply());
    const std::string refused = "! #64|3027: ";
    ASSERT_THAT(shown, SizeIs(c.what == std::string("dates") ? 5 : 6))
        << "the dates are refused as well";
    EXPECT_THAT(shown[3], StartsWith(refused));
    EXPECT_THAT(shown[shown.size() - 2], StartsWith(refused));
    ProductConnection.reset();
  }
}

}  // namespace
