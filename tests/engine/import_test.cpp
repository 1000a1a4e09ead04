// Whole update files applied to a product table: the order of the steps, what each tells, and what
// a failure stops.
#include <gmock/gmock.h>

#include "platform/files/paths.h"
#include "platform/text/date.h"
#include "platform/text/locale.h"
#include "store/modProductTable.h"
#include "tests/engine/update_test.h"
#include "tests/support/file_protection.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

// One record of every section, in an order that is not that of the steps.
constexpr char kEverySection[] =
    "[update pricedata]\r\n\"HEA100\",12.5,1,2,3,4,\"G1\",\"D1\",\"N-1\"\r\n\r\n"
    "[UPDATE OVERLENGTHBONUS]\r\n12.1,15,0.5\r\n\r\n"
    "[UPDATE BASEPRICE]\r\n\"G1\",\"Group\",1,1,0,10,1.5\r\n\r\n"
    "[NEW DISCOUNT]\r\n\"D1\",\"Discount\",1,2,3\r\n\r\n"
    "[NEW ARTICLE]\r\n"
    "\"HEA\",\"HEA100\",\"Beam\",\"\",96,100,100,8,8,5,12,0,2124,2124,0,0,0,0,\"\"\r\n\r\n"
    "[NEW SERIE]\r\n\"HEA\",\"HEA beams\",7.85,True,\"\"\r\n\r\n"
    "[NEW ASSSUPPL]\r\n\"BEAMS\",\"S1\",1\r\n\r\n"
    "[NEW ASSORTMENT]\r\n\"BEAMS\",\"Beams\",1,1,True,True,0,\"\"\r\n\r\n"
    "[NEW SUPPLIER]\r\n\"S1\",\"First\",1,2\r\n";

class ImportTest : public UpdateTest {};

// The same file with another last letter of a column's name, wherever that stands.
std::string WithoutColumn(std::string file, const std::string& name) {
  std::string stored;  // in UTF-16
  for (const char c : name) stored += {c, '\0'};
  for (std::size_t at = 0; (at = file.find(stored, at)) != std::string::npos;) {
    file[at + stored.size() - 2] = 'x';
  }
  return file;
}

TEST_F(ImportTest, StepsRunInTheirOwnOrder) {
  const text::ScopedLocale dutch({.decimal_mark = L',', .thousands_mark = L'.'});
  EXPECT_TRUE(Apply(kEverySection));
  const std::string path = (folder / "update.PRC").string();
  EXPECT_THAT(logged, ElementsAre("#59|" + path, "#60|BEAMS - Beams", "#61|S1 - First",  //
                                  "#63|1", "#96|S1 - First",                             //
                                  "#65|1", "#82|BEAMS - Beams",                          //
                                  "#60|1", "#89|BEAMS - S1",                             //
                                  "#69|1", "#84|HEA - HEA beams",                        //
                                  "#70|1", "#95|HEA100 - Beam (HEA)",                    //
                                  "#71|1", "#81|D1 - Discount",                          //
                                  "#73|1", "#99|G1 - Group",                             //
                                  "#72|1", "|12,1 - 15",                                 //
                                  "#76|1", "#100|HEA100",                                //
                                  "#78|", "#59|#62"));
  EXPECT_THAT(shown, ElementsAre("#59|" + path, "#60|BEAMS - Beams", "#61|S1 - First", "#59|#62"));
  EXPECT_THAT(maxima, ElementsAre(1, 1, 1, 1, 1, 1, 1, 1, 1));
  EXPECT_THAT(progress, ElementsAre(1, 1, 1, 1, 1, 1, 1, 1, 1));
  EXPECT_THAT(prompt.messages, IsEmpty());

  EXPECT_THAT(Rows(L"ArtDimL", {L"ID", L"Ht", L"tfu", L"S"}), ElementsAre("1|96|8|2124"));
  EXPECT_THAT(Rows(L"OverlengthBonus", {L"Begin", L"Price"}), ElementsAre("12.1|0.5"));
  EXPECT_THAT(Rows(L"ArtPrice", {L"fkSupplier", L"fkArticle", L"fkBPG", L"fkDiscount", L"PriceDim",
                                 L"ArtNrSupplier"}),
              ElementsAre("1|1|1|1|12.5|N-1"));
}

TEST_F(ImportTest, ASecondTimeChangesNothing) {
  const auto everything = [&] {
    return std::vector{
        Rows(L"Supplier", {L"ID", L"Code"}),
        Rows(L"Article", {L"ID", L"fkSerie", L"Code"}),
        Rows(L"Discount", {L"ID", L"Code", L"DiscPercA"}),
        Rows(L"BasePrice", {L"ID", L"Begin", L"End", L"BasePrice"}),
        Rows(L"OverlengthBonus", {L"fkSupplier", L"Begin", L"End", L"Price"}),
        Rows(L"ArtPrice", {L"fkArticle", L"fkBPG", L"fkDiscount", L"PriceDim", L"CoatPrice"})};
  };
  ASSERT_TRUE(Apply(kEverySection));
  const auto once = everything();
  ASSERT_TRUE(Apply(kEverySection));
  EXPECT_EQ(everything(), once);
  // The clearing of what was there is told now.
  EXPECT_THAT(logged, AllOf(Contains("#74|"), Contains("#77|")));
}

TEST_F(ImportTest, FailureOfTheFirstStepsEndsTheImport) {
  const struct {
    const char* lines;  // before an article price that must not be applied
    const wchar_t* assortment;
    const wchar_t* supplier;
    const char* refusal;
  } cases[] = {
      {"[NEW SUPPLIER]\n,x,1,2\n", L"BEAMS", L"S1",
       "3315: Field 'Supplier.Code' cannot be a zero-length string."},
      {"[NEW ASSORTMENT]\n,x,1,1,1,1,0,\n", L"BEAMS", L"S1", "3315: Field 'Assortment.AssCode'"},
      {"[NEW ASSSUPPL]\nBEAMS,S1,1\nNONE,S1,1\n", L"BEAMS", L"S1", "#87 NONE"},
      {"", L"NONE", L"S1", "#67 NONE"},
      {"", L"BEAMS", L"NOBODY", "#68 NOBODY"},
      {"", L"O'X", L"S1", "3001: "},  // and a message box
  };
  ApplyOpeningUpdates();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.refusal);
    clsOrvPap& update =
        NextUpdate(std::string(c.lines) + "\n[UPDATE PRICEDATA]\nHEA100,99,1,2,3,4,,,\n");
    update.AssortmentCode = c.assortment;
    update.SupplierCode = c.supplier;
    EXPECT_FALSE(Apply());
    ASSERT_THAT(shown, SizeIs(4));
    EXPECT_THAT(shown[3], StartsWith(std::string("! #64|") + c.refusal));
  }
  EXPECT_THAT(Boxes(), ElementsAre(HasSubstr("clsOrvPap.FindAssortmentAndSupplier (Function)")));
  EXPECT_THAT(Rows(L"SELECT * FROM ArtPrice WHERE PriceDim = 99", {L"fkArticle"}), IsEmpty());
}

// Each of these steps goes its own way: the others are done, and so is the closing message.
TEST_F(ImportTest, FailureOfALaterStepStopsThatStepOnly) {
  const std::pair<const char*, const char*> cases[] = {
      {"[NEW SERIE]\nHOT,moved,1,1,\nNEW,not reached,1,1,\n", "! #64|#86 HOT"},
      {"[NEW ARTICLE]\nHOT,X,,,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\n", "! #64|#91 HOT"},
      {"[NEW ARTICLE]\nNO,X,,,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\n", "! #64|#1050 NO"},
      {"[UPDATE BASEPRICE]\nO'X,,1,1,0,1,1\n", "! #64|3001: "},
  };
  ApplyOpeningUpdates();
  int price = 100;
  for (const auto& [lines, refusal] : cases) {
    SCOPED_TRACE(refusal);
    const std::string next_price = std::to_string(++price);
    clsOrvPap& update = NextUpdate(std::string(lines) + "\n[UPDATE PRICEDATA]\nHEA100," +
                                   next_price + ",1,2,3,4,,,\n");
    update.PrcDate = price;
    EXPECT_FALSE(Apply());
    ASSERT_THAT(shown, SizeIs(5));
    EXPECT_THAT(shown[3], StartsWith(refusal));
    EXPECT_EQ(shown[4], "#59|#62");
    EXPECT_THAT(
        Rows(L"SELECT * FROM ArtPrice WHERE fkSupplier = 1 AND fkArticle = 1", {L"PriceDim"}),
        ElementsAre(next_price));
    EXPECT_THAT(
        Rows(L"SELECT * FROM Ass_Suppl WHERE fkAssNr = 1 AND fkSupplierID = 1", {L"PrcDate"}),
        ElementsAre(StartsWith("1900-04-")));
  }
  EXPECT_THAT(Rows(L"SELECT * FROM Serie WHERE SerieCode = 'NEW'", {L"SerieNr"}), IsEmpty());
}

TEST_F(ImportTest, RecordsBeforeARefusedOneStayRecordsAfterItDoNot) {
  ApplyOpeningUpdates();
  EXPECT_FALSE(Apply(
      "[UPDATE PRICEDATA]\nHEA100,91,1,2,3,4,,,\nHEA999,92,1,2,3,4,,,\nHEA120,93,1,2,3,4,,,\n"));
  EXPECT_THAT(shown, Contains("! #64|#101 HEA999"));
  EXPECT_THAT(Rows(L"SELECT * FROM ArtPrice WHERE fkSupplier = 1", {L"fkArticle", L"PriceDim"}),
              testing::UnorderedElementsAre("1|91", "2|20", "3|30"));
}

// Prices replace those of the file's supplier and assortment, and nobody else's.
TEST_F(ImportTest, PriceStepsClearWhatTheyReplace) {
  ApplyOpeningUpdates();
  EXPECT_TRUE(
      Apply("[UPDATE BASEPRICE]\nG1,Group,1,1,0,5,2.1\nG1,Group,1,1,5,10,2.2\n\n"
            "[UPDATE OVERLENGTHBONUS]\n10,20,0.9\n\n"
            "[UPDATE PRICEDATA]\nHEA100,12,,0,,5,G1,D1,\n"));
  EXPECT_THAT(
      Rows(L"ArtPrice", {L"fkSupplier", L"fkArticle", L"fkBPG", L"fkDiscount", L"PriceDim",
                         L"OverPrice", L"SawPrice", L"BlastPrice", L"CoatPrice", L"ArtNrSupplier"}),
      testing::UnorderedElementsAre(
          "1|1|1|1|12|0|0|0|5|Null",                    // named in the file
          "1|2|Null|Null|20|Null|Null|Null|Null|Null",  // not named: keeps its price alone
          "1|3|1|1|30|1|2|3|4|N-3",                     // of the other assortment
          "2|1|3|Null|11|1|2|3|4|M-1"));                // of the other supplier
  EXPECT_THAT(Rows(L"OverlengthBonus", {L"fkSupplier", L"Begin", L"Price"}),
              testing::UnorderedElementsAre("1|10|0.9", "2|12|0.7"));
  EXPECT_THAT(Rows(L"BasePrice", {L"ID", L"Begin", L"BasePrice"}),
              testing::UnorderedElementsAre("1|0|2.1", "1|5|2.2", "2|0|1.2", "3|0|1.3"));
}

TEST_F(ImportTest, DatesOfTheLinkFollowTheFile) {
  ApplyOpeningUpdates();
  const std::wstring statement = L"SELECT * FROM Ass_Suppl WHERE fkAssNr = 1 AND fkSupplierID = 1";
  const std::vector<std::wstring> columns = {L"PrcDate", L"SawPrcDate", L"BlastCoatDate",
                                             L"BasePriceDate", L"OLBonusDate"};
  clsOrvPap& first = NextUpdate("[VERSION]\n3.2\n");
  first.PrcDate = text::DateSerial(2026, 1, 5);
  first.SawPrcDate = text::DateSerial(2026, 1, 6);
  first.BlastCoatDate = text::DateSerial(2026, 1, 7);
  first.BasePriceDate = text::DateSerial(2026, 1, 8);
  first.OlBonusDate = text::DateSerial(2026, 1, 9);
  EXPECT_TRUE(Apply());
  EXPECT_THAT(Rows(statement, columns),
              ElementsAre("2026-01-05|2026-01-06|2026-01-07|2026-01-08|2026-01-09"));

  // An older file overwrites; a date that it does not give is cleared, but for the price date.
  NextUpdate("[VERSION]\n3.2\n").BlastCoatDate = text::DateSerial(2004, 3, 15);
  EXPECT_TRUE(Apply());
  EXPECT_THAT(Rows(statement, columns), ElementsAre("1899-12-30|Null|2004-03-15|Null|Null"));
}

// A missing update file is an error; then there is nothing to apply but the dates, and nothing that
// the prices would be cleared for.
TEST_F(ImportTest, MissingUpdateFileChangesNoPrice) {
  ApplyOpeningUpdates();
  const auto everything = [&] {
    return std::vector{Rows(L"ArtPrice", {L"fkArticle", L"PriceDim", L"CoatPrice", L"fkBPG"}),
                       Rows(L"OverlengthBonus", {L"Price"}), Rows(L"BasePrice", {L"BasePrice"})};
  };
  const auto before = everything();
  NextUpdate("").FilePath = folder.Text("missing.PRC");
  EXPECT_TRUE(Apply());
  ASSERT_THAT(prompt.messages, SizeIs(1));
  EXPECT_THAT(prompt.messages[0].text, HasSubstr(L"53: File not found"));
  EXPECT_EQ(shown.front(), "! #64|53: File not found");
  EXPECT_THAT(maxima, ElementsAre(0, 0, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(everything(), before);
}

// What was cleared is cleared whole.
TEST_F(ImportTest, ClearingLoopLetsTheProcessEndBetweenRows) {
  ApplyOpeningUpdates();
  clsOrvPap& update = NextUpdate("[UPDATE PRICEDATA]\nHEA100,12,1,2,3,4,G1,D1,\n");
  const auto record = update.ShowListMessage;
  update.ShowListMessage = [&](const std::wstring& message, const std::wstring& detail, bool show,
                               bool error) {
    record(message, detail, show, error);
    pump.meanwhile = [ends = message == L"#77"] {
      if (ends) throw ProcessEnding();
    };
  };
  EXPECT_THROW(Apply(), ProcessEnding);
  ProductConnection.reset();
  EXPECT_THAT(Rows(L"SELECT * FROM ArtPrice WHERE fkSupplier = 1 AND fkArticle < 3",
                   {L"fkArticle", L"PriceDim", L"CoatPrice", L"ArtNrSupplier"}),
              testing::UnorderedElementsAre("1|10|Null|Null", "2|20|4|N-2"));
}

// What would be cleared stays where it could not be written again, and the list tells why.
TEST_F(ImportTest, AMissingColumnClearsNothing) {
  ApplyOpeningUpdates();
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
      {"Begin", steps, L"BasePrice", {L"ID", L"End", L"BasePrice"}},
      {"PriceUnit", steps, L"BasePrice", {L"ID", L"Begin", L"BasePrice"}},
      {"Begin", bonuses, L"OverlengthBonus", {L"fkSupplier", L"End", L"Price"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.column);
    CloseConnection();
    ProductConnection.reset();
    folder.Write("Orv.pt", WithoutColumn(file, c.column));
    const auto before = Rows(c.table, c.columns);
    EXPECT_FALSE(Apply(c.lines));
    EXPECT_THAT(shown, Contains(AllOf(StartsWith("! #64|"), HasSubstr("3265: "),
                                      HasSubstr(std::string("(") + c.column + ")"))));
    EXPECT_EQ(shown.back(), "#59|#62");
    EXPECT_EQ(Rows(c.table, c.columns), before);
  }
}

// What was deleted for the groups before the one that is refused is written again.
TEST_F(ImportTest, AGroupThatCannotBeClearedIsRefusedInItsTurn) {
  ApplyOpeningUpdates();
  EXPECT_FALSE(
      Apply("[UPDATE BASEPRICE]\nG1,Group,1,1,0,10,9.9\nO'X,,1,1,0,1,1\nG9,New,1,1,0,10,9.9\n"));
  ASSERT_THAT(shown, SizeIs(5));
  EXPECT_THAT(shown[3], StartsWith("! #64|3001: "));
  EXPECT_THAT(Rows(L"BasePrice", {L"ID", L"BasePrice"}),
              testing::UnorderedElementsAre("1|9.9", "2|1.2", "3|1.3"));
}

TEST_F(ImportTest, AProductTableForReadingOnlyIsToldInEachStep) {
  ApplyOpeningUpdates();
  const std::string dates = "[VERSION]\n3.2\n";
  const std::string price = "[UPDATE PRICEDATA]\nHEA100,99,1,2,3,4,G1,D1,\n";
  const std::string steps = "[UPDATE BASEPRICE]\nG1,Group,1,1,0,10,9.9\nG9,New,1,1,0,10,9.9\n";
  const std::string bonus = "[UPDATE OVERLENGTHBONUS]\n10,20,0.9\n";
  std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
  for (const std::string& lines : {steps, bonus, price, dates}) {
    SCOPED_TRACE(lines);
    ProductConnection.reset();
    NextUpdate(lines);
    std::filesystem::permissions(folder / "update.PRC", std::filesystem::perms::all);
    const test_support::WriteProtection protection(files::ToPath(product_table));
    if (!protection.Holds()) GTEST_SKIP() << "this account may write to any file";
    EXPECT_FALSE(Apply());
    const std::string refused = "! #64|3027: ";
    ASSERT_THAT(shown, SizeIs(lines == dates ? 5 : 6)) << "the dates are refused as well";
    EXPECT_THAT(shown[3], StartsWith(refused));
    EXPECT_THAT(shown[shown.size() - 2], StartsWith(refused));
  }
}

}  // namespace
