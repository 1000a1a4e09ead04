// Whole update files applied to a product table: the order of the steps, what each tells, and what
// a failure stops.
#include <gmock/gmock.h>

#include <map>

#include "platform/text/date.h"
#include "platform/text/locale.h"
#include "store/modProductTable.h"
#include "tests/engine/update_test.h"
#include "tests/support/scripted_event_pump.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

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
  const std::vector<std::pair<std::wstring, std::vector<std::wstring>>> tables = {
      {L"Supplier", {L"ID", L"Code", L"Description", L"ToA", L"ToB"}},
      {L"Article", {L"ID", L"fkSerie", L"Code", L"Description"}},
      {L"Discount", {L"ID", L"Code", L"DiscPercA"}},
      {L"BasePrice", {L"ID", L"Begin", L"End", L"BasePrice"}},
      {L"OverlengthBonus", {L"fkSupplier", L"Begin", L"End", L"Price"}},
      {L"ArtPrice", {L"fkArticle", L"fkBPG", L"fkDiscount", L"PriceDim", L"CoatPrice"}},
  };
  const auto everything = [&] {
    std::map<std::wstring, std::vector<std::string>> rows;
    for (const auto& [table, columns] : tables) rows[table] = Rows(table, columns);
    return rows;
  };
  ASSERT_TRUE(Apply(kEverySection));
  const auto once = everything();
  ASSERT_TRUE(Apply(kEverySection));
  EXPECT_EQ(everything(), once);
  // The clearing of what was there is told now.
  EXPECT_THAT(logged, testing::AllOf(Contains("#74|"), Contains("#77|")));
}

TEST_F(ImportTest, FailureOfTheFirstStepsEndsTheImport) {
  const struct {
    const char* what;
    const char* lines;  // before an article price that must not be applied
    const char* refusal;
  } cases[] = {
      {"supplier", "[NEW SUPPLIER]\n,x,1,2\n",
       "! #64|3315: Field 'Supplier.Code' cannot be a zero-length string."},
      {"assortment", "[NEW ASSORTMENT]\n,x,1,1,1,1,0,\n",
       "! #64|3315: Field 'Assortment.AssCode' cannot be a zero-length string."},
      {"link", "[NEW ASSSUPPL]\nBEAMS,S1,1\nNONE,S1,1\n", "! #64|#87 NONE"},
  };
  ApplyOpeningUpdates();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_FALSE(Apply(std::string(c.lines) + "\n[UPDATE PRICEDATA]\nHEA100,99,1,2,3,4,,,\n"));
    ASSERT_THAT(shown, SizeIs(4));
    EXPECT_EQ(shown[3], c.refusal);
  }
  EXPECT_THAT(Rows(L"SELECT * FROM ArtPrice WHERE PriceDim = 99", {L"fkArticle"}), IsEmpty());
}

TEST_F(ImportTest, UnknownAssortmentOrSupplierEndsTheImport) {
  const struct {
    const wchar_t* assortment;
    const wchar_t* supplier;
    const char* refusal;
  } cases[] = {
      {L"NONE", L"S1", "! #64|#67 NONE"},
      {L"BEAMS", L"NOBODY", "! #64|#68 NOBODY"},
      {L"", L"", "! #64|#67 "},
      {L"O'X", L"S1", "! #64|3001: "},  // and a message box
  };
  ApplyOpeningUpdates();
  for (const auto& c : cases) {
    clsOrvPap& update = NextUpdate("[UPDATE PRICEDATA]\nHEA100,99,1,2,3,4,,,\n");
    update.AssortmentCode = c.assortment;
    update.SupplierCode = c.supplier;
    EXPECT_FALSE(Apply());
    ASSERT_THAT(shown, SizeIs(4));
    EXPECT_THAT(shown[3], testing::StartsWith(c.refusal));
  }
  ASSERT_THAT(prompt.messages, SizeIs(1));
  EXPECT_THAT(prompt.messages[0].text,
              HasSubstr(L"clsOrvPap.FindAssortmentAndSupplier (Function)"));
}

// Each of these steps goes its own way: the others are done, and so is the closing message.
TEST_F(ImportTest, FailureOfALaterStepStopsThatStepOnly) {
  const struct {
    const char* what;
    const char* lines;
    const char* refusal;
  } cases[] = {
      {"series", "[NEW SERIE]\nHOT,moved,1,1,\nNEW,not reached,1,1,\n", "! #64|#86 HOT"},
      {"article", "[NEW ARTICLE]\nHOT,X,,,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\n", "! #64|#91 HOT"},
      {"article without a series", "[NEW ARTICLE]\nNO,X,,,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\n",
       "! #64|#1050 NO"},
      {"base price", "[UPDATE BASEPRICE]\nO'X,,1,1,0,1,1\n", "! #64|3001: "},
  };
  ApplyOpeningUpdates();
  int price = 100;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const std::string next_price = std::to_string(++price);
    clsOrvPap& update = NextUpdate(std::string(c.lines) + "\n[UPDATE PRICEDATA]\nHEA100," +
                                   next_price + ",1,2,3,4,,,\n");
    update.PrcDate = price;
    EXPECT_FALSE(Apply());
    ASSERT_THAT(shown, SizeIs(5));
    EXPECT_THAT(shown[3], testing::StartsWith(c.refusal));
    EXPECT_EQ(shown[4], "#59|#62");
    EXPECT_THAT(
        Rows(L"SELECT * FROM ArtPrice WHERE fkSupplier = 1 AND fkArticle = 1", {L"PriceDim"}),
        ElementsAre(next_price));
    EXPECT_THAT(
        Rows(L"SELECT * FROM Ass_Suppl WHERE fkAssNr = 1 AND fkSupplierID = 1", {L"PrcDate"}),
        ElementsAre(testing::StartsWith("1900-04-")));
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

TEST_F(ImportTest, WithoutALinkTheDatesFailInSilence) {
  ASSERT_TRUE(Apply(kEverySection));
  NextUpdate("[NEW ASSORTMENT]\nTUBES,Tubes,3,1,1,1,0,\n").AssortmentCode = L"TUBES";
  EXPECT_FALSE(Apply());
  EXPECT_THAT(shown, SizeIs(4));
  EXPECT_THAT(prompt.messages, IsEmpty());
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
  test_support::ScriptedEventPump pump;
  settings.objEventPump = &pump;
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

}  // namespace
