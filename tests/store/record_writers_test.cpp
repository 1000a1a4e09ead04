// What each record writer adds, changes, keeps and refuses, against a real product table.
#include <gmock/gmock.h>

#include <functional>

#include "platform/database/recordset.h"
#include "store/clsNewArticle.h"
#include "store/clsNewAssSuppl.h"
#include "store/clsNewAssortment.h"
#include "store/clsNewDiscount.h"
#include "store/clsNewSerie.h"
#include "store/clsNewSupplier.h"
#include "tests/support/surface_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

// Of the rows that SetUp adds; autonumbers count from 1.
constexpr std::int32_t kSupplierA = 1;
constexpr std::int32_t kSupplierB = 2;
constexpr std::int32_t kBeams = 1;
constexpr std::int32_t kPlates = 2;
constexpr std::uint8_t kKindProfile = 1;
constexpr std::uint8_t kKindPlate = 2;

class RecordWritersTest : public test_support::ProductTableTest {
 protected:
  void SetUp() override {
    AddRow(L"Supplier", {{L"Code", L"A"}});
    AddRow(L"Supplier", {{L"Code", L"B"}});
    AddRow(L"Assortment", {{L"AssCode", L"BEAMS"}, {L"DimUnit", kKindProfile}});
    AddRow(L"Assortment", {{L"AssCode", L"PLATES"}, {L"DimUnit", kKindPlate}});
    AddRow(L"Serie", {{L"SerieCode", L"HEA"}, {L"AssNr", kBeams}});
    AddRow(L"Serie", {{L"SerieCode", L"HEB"}, {L"AssNr", kBeams}});
    AddRow(L"Serie", {{L"SerieCode", L"HOT"}, {L"AssNr", kPlates}});
  }

  bool Save(clsNewSupplier& record) {
    bool saved = true;
    record.SaveNewSupplier(Connection(), saved);
    return saved;
  }
  bool Save(clsNewAssortment& record) {
    bool saved = true;
    record.SaveNewAssortment(Connection(), saved);
    return saved;
  }
  bool Save(clsNewSerie& record, std::int32_t assortment) {
    bool saved = true;
    record.SaveNewSerie(Connection(), assortment, saved);
    return saved;
  }
  bool Save(clsNewAssSuppl& record) {
    bool saved = true;
    record.SaveNewAssSuppl(Connection(), saved);
    return saved;
  }
  bool Save(clsNewArticle& record, std::int32_t assortment, std::uint8_t kind) {
    bool saved = true;
    record.SaveNewArticle(Connection(), assortment, kind, saved);
    return saved;
  }
  bool Save(clsNewDiscount& record, std::int32_t supplier) {
    bool saved = true;
    record.SaveNewDiscount(Connection(), supplier, saved);
    return saved;
  }
};

TEST_F(RecordWritersTest, SupplierIsAddedThenOverwritten) {
  clsNewSupplier record;
  record.Code = L"C";
  record.Description = L"First";
  record.ToA = 1.5;
  EXPECT_TRUE(Save(record));
  EXPECT_EQ(record.ResultText, L"#96");

  record.Code = L"c";  // the database compares without case
  record.Description = L"Second";
  record.ToA = 0;
  record.ToB = 2.25;
  EXPECT_TRUE(Save(record));
  EXPECT_EQ(record.ResultText, L"#97");
  EXPECT_THAT(Rows(L"SELECT * FROM Supplier WHERE Code='C'",
                   {L"ID", L"Code", L"Description", L"ToA", L"ToB", L"Rights"}),
              ElementsAre("3|c|Second|0|2.25|False"));
}

TEST_F(RecordWritersTest, AssortmentKeepsItsMakerAndRemark) {
  const std::wstring statement = L"SELECT * FROM Assortment WHERE AssCode='TUBES'";
  const std::vector<std::wstring> columns = {L"Description",    L"FabrCode",  L"Remark",
                                             L"DimUnit",        L"PriceUnit", L"BasePriceGroups",
                                             L"DiscountGroups", L"Rights"};
  clsNewAssortment record;
  record.AssCode = L"TUBES";
  record.Description = L"Tubes";
  record.FabrCode = 7;
  record.Remark = L"first";
  record.DimUnit = 3;
  record.BasePriceGroups = true;
  EXPECT_TRUE(Save(record));
  EXPECT_EQ(record.ResultText, L"#82");
  EXPECT_THAT(Rows(statement, columns), ElementsAre("Tubes|7|first|3|0|True|False|False"));

  record.Description = L"Round tubes";
  record.FabrCode = 8;
  record.Remark = L"second";
  record.DimUnit = 2;
  record.PriceUnit = 255;
  record.BasePriceGroups = false;
  record.DiscountGroups = true;
  EXPECT_TRUE(Save(record));
  EXPECT_EQ(record.ResultText, L"#83");
  EXPECT_THAT(Rows(statement, columns), ElementsAre("Round tubes|7|first|2|255|False|True|False"));
}

TEST_F(RecordWritersTest, EmptyRemarkIsNotWritten) {
  clsNewAssortment assortment;
  assortment.AssCode = L"TUBES";
  ASSERT_TRUE(Save(assortment));
  clsNewSerie serie;
  serie.SerieCode = L"IPE";
  ASSERT_TRUE(Save(serie, kBeams));
  clsNewArticle article;
  article.SerieCode = L"HEA";
  article.Code = L"HEA100";
  ASSERT_TRUE(Save(article, kBeams, kKindProfile));
  EXPECT_THAT(Rows(L"SELECT * FROM Assortment WHERE AssCode='TUBES'", {L"Remark"}),
              ElementsAre("Null"));
  EXPECT_THAT(Rows(L"SELECT * FROM Serie WHERE SerieCode='IPE'", {L"Remark"}), ElementsAre("Null"));
  EXPECT_THAT(Rows(L"Article", {L"Remark"}), ElementsAre("Null"));
}

TEST_F(RecordWritersTest, SerieOfOtherAssortmentIsNotMoved) {
  const std::wstring statement = L"SELECT * FROM Serie WHERE SerieCode = 'UNP'";
  const std::vector<std::wstring> columns = {L"AssNr", L"Description", L"Density",
                                             L"UseOverlengthBonus", L"Remark"};
  clsNewSerie record;
  record.SerieCode = L"UNP";
  record.Description = L"Channels";
  record.Density = 7.85;
  record.UseOverlengthBonus = true;
  record.Remark = L"first";
  EXPECT_TRUE(Save(record, kBeams));
  EXPECT_EQ(record.ResultText, L"#84");
  EXPECT_THAT(Rows(statement, columns), ElementsAre("1|Channels|7.85|True|first"));

  record.Description = L"U";
  record.Remark = L"second";
  EXPECT_TRUE(Save(record, kBeams));
  EXPECT_EQ(record.ResultText, L"#85");
  EXPECT_THAT(Rows(statement, columns), ElementsAre("1|U|7.85|True|first"));

  record.Description = L"moved";
  EXPECT_FALSE(Save(record, kPlates));
  EXPECT_EQ(record.ResultText, L"#86 UNP");
  EXPECT_THAT(Rows(statement, columns), ElementsAre("1|U|7.85|True|first"));
}

TEST_F(RecordWritersTest, LinkNeedsBothSides) {
  const struct {
    const wchar_t* assortment;
    const wchar_t* supplier;
    const wchar_t* result;  // the last thing missing is the one that is told
  } refused[] = {
      {L"NONE", L"A", L"#87 NONE"},
      {L"BEAMS", L"NOBODY", L"#88 NOBODY"},
      {L"NONE", L"NOBODY", L"#88 NOBODY"},
  };
  for (const auto& c : refused) {
    clsNewAssSuppl record;
    record.AssCode = c.assortment;
    record.SupplierCode = c.supplier;
    EXPECT_FALSE(Save(record));
    EXPECT_EQ(record.ResultText, c.result);
  }
  EXPECT_THAT(Rows(L"Ass_Suppl", {L"fkAssNr"}), IsEmpty());

  clsNewAssSuppl record;
  record.AssCode = L"PLATES";
  record.SupplierCode = L"B";
  record.PrcDiscountType = 4;
  EXPECT_TRUE(Save(record));
  EXPECT_EQ(record.ResultText, L"#89");
  record.PrcDiscountType = 5;
  EXPECT_TRUE(Save(record));
  EXPECT_EQ(record.ResultText, L"#90");
  EXPECT_THAT(
      Rows(L"Ass_Suppl", {L"fkAssNr", L"fkSupplierID", L"PrcDiscountType", L"Rights", L"PrcDate"}),
      ElementsAre("2|2|5|False|Null"));
}

TEST_F(RecordWritersTest, ArticleIsAddedThenChangedInItsSerieOnly) {
  const std::vector<std::wstring> columns = {L"fkSerie", L"Code", L"Description", L"Description2",
                                             L"Remark"};
  clsNewArticle record;
  record.SerieCode = L"HEA";
  record.Code = L"HEA100";
  record.Description = L"one";
  record.Description2 = L"two";
  record.Remark = L"first";
  EXPECT_TRUE(Save(record, kBeams, kKindProfile));
  EXPECT_EQ(record.ResultText, L"#95");
  EXPECT_THAT(Rows(L"Article", columns), ElementsAre("1|HEA100|one|two|first"));

  record.Description = L"uno";
  record.Remark = L"second";
  EXPECT_TRUE(Save(record, kBeams, kKindProfile));
  EXPECT_EQ(record.ResultText, L"#94");
  EXPECT_THAT(Rows(L"Article", columns), ElementsAre("1|HEA100|uno|two|first"));

  const struct {
    const wchar_t* serie;
    const wchar_t* result;
  } refused[] = {
      {L"HEB", L"#93 HEA100"},  // the article is in HEA
      {L"HOT", L"#91 HOT"},     // the series is of the other assortment
      {L"NONE", L"#1050 NONE"},
  };
  for (const auto& c : refused) {
    SCOPED_TRACE(testing::Message() << "serie " << testing::PrintToString(c.serie));
    clsNewArticle moved;
    moved.SerieCode = c.serie;
    moved.Code = L"HEA100";
    EXPECT_FALSE(Save(moved, kBeams, kKindProfile));
    EXPECT_EQ(moved.ResultText, c.result);
  }
  EXPECT_THAT(Rows(L"Article", columns), ElementsAre("1|HEA100|uno|two|first"));
}

TEST_F(RecordWritersTest, DimensionsGoWhereTheKindSays) {
  clsNewArticle record;
  record.SerieCode = L"HEA";
  double value = 0.5;
  for (double* dimension : {&record.Ht, &record.Wb, &record.Wu, &record.tfb, &record.tfu,
                            &record.tw, &record.Ri, &record.Ro, &record.S, &record.Snet,
                            &record.Slope, &record.t, &record.VolDim, &record.Area}) {
    *dimension = value++;
  }
  for (const std::uint8_t kind : std::initializer_list<std::uint8_t>{1, 2, 3, 0}) {
    record.Code = L"K" + std::to_wstring(kind);
    ASSERT_TRUE(Save(record, kBeams, kind));
  }
  EXPECT_THAT(Rows(L"ArtDimL", {L"ID", L"Ht", L"Wb", L"Wu", L"tfb", L"tfu", L"tw", L"Ri", L"Ro",
                                L"S", L"Snet", L"Slope"}),
              ElementsAre("1|0.5|1.5|2.5|3.5|4.5|5.5|6.5|7.5|8.5|9.5|10.5"));
  EXPECT_THAT(Rows(L"ArtDimPl", {L"ID", L"t"}), ElementsAre("2|11.5"));
  EXPECT_THAT(Rows(L"ArtOrvc", {L"ID", L"VolDim", L"Area"}),
              ElementsAre("3|12.5|13.5", "4|12.5|13.5"));

  record.Code = L"K2";
  record.t = 20;
  ASSERT_TRUE(Save(record, kBeams, kKindPlate));
  EXPECT_THAT(Rows(L"ArtDimPl", {L"ID", L"t"}), ElementsAre("2|20"));
}

TEST_F(RecordWritersTest, DiscountKeepsItsPercentagesAndItsSupplier) {
  const std::vector<std::wstring> columns = {L"fkSupplier", L"Code",      L"Description",
                                             L"DiscPercA",  L"DiscPercB", L"DiscPercC"};
  clsNewDiscount record;
  record.Code = L"D1";
  record.Description = L"first";
  record.DiscPercA = 1.5;
  record.DiscPercB = 2.5;
  record.DiscPercC = 3.5;
  EXPECT_TRUE(Save(record, kSupplierB));
  EXPECT_EQ(record.ResultText, L"#81");

  record.Description = L"second";
  record.DiscPercA = 99;
  EXPECT_TRUE(Save(record, kSupplierB));
  EXPECT_EQ(record.ResultText, L"#79");
  EXPECT_FALSE(Save(record, kSupplierA));
  EXPECT_EQ(record.ResultText, L"#80 D1");
  EXPECT_THAT(Rows(L"Discount", columns), ElementsAre("2|D1|second|1.5|2.5|3.5"));

  // Where both suppliers have the code, each changes its own.
  AddRow(L"Discount", {{L"fkSupplier", kSupplierA}, {L"Code", L"D1"}});
  record.Description = L"third";
  EXPECT_TRUE(Save(record, kSupplierA));
  EXPECT_THAT(Rows(L"SELECT * FROM Discount WHERE Code = 'D1'", {L"fkSupplier", L"Description"}),
              testing::UnorderedElementsAre("2|second", "1|third"));
}

// A failure of the database is told in its own words, and nothing of the record is left behind.
TEST_F(RecordWritersTest, DatabaseErrorsBecomeTheResult) {
  const std::wstring quoted = L"O'X";
  const std::wstring too_long(300, L'x');
  clsNewSupplier supplier;
  clsNewAssortment assortment;
  clsNewSerie serie;
  clsNewAssSuppl link;
  clsNewArticle article;
  clsNewDiscount discount;
  const struct {
    const char* what;
    std::function<bool()> save;
    const std::wstring& result;
    const wchar_t* error;
  } cases[] = {
      {"supplier with an apostrophe", [&] { return supplier.Code = quoted, Save(supplier); },
       supplier.ResultText, L"3075: "},
      {"assortment with an apostrophe",
       [&] { return assortment.AssCode = quoted, Save(assortment); }, assortment.ResultText,
       L"3075: "},
      {"series with an apostrophe", [&] { return serie.SerieCode = quoted, Save(serie, kBeams); },
       serie.ResultText, L"3075: "},
      {"link with an apostrophe", [&] { return link.AssCode = quoted, Save(link); },
       link.ResultText, L"3075: "},
      {"article of a series with an apostrophe",
       [&] { return article.SerieCode = quoted, Save(article, kBeams, kKindProfile); },
       article.ResultText, L"3075: "},
      {"article with an apostrophe",
       [&] {
         article.SerieCode = L"HEA";
         article.Code = quoted;
         return Save(article, kBeams, kKindProfile);
       },
       article.ResultText, L"3075: "},
      {"discount with an apostrophe",
       [&] { return discount.Code = quoted, Save(discount, kSupplierA); }, discount.ResultText,
       L"3075: "},
      {"supplier without a code", [&] { return supplier.Code.clear(), Save(supplier); },
       supplier.ResultText, L"3315: Field 'Supplier.Code' cannot be a zero-length string."},
      {"description too long",
       [&] {
         serie.SerieCode = L"NEW";
         serie.Description = too_long;
         return Save(serie, kBeams);
       },
       serie.ResultText, L"3163: The field is too small"},
      {"assortment that does not exist", [&] { return serie.Description.clear(), Save(serie, 99); },
       serie.ResultText, L"3201: "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_FALSE(c.save());
    EXPECT_THAT(c.result, StartsWith(c.error));
  }
  EXPECT_EQ(Rows(L"Supplier", {L"Code"}).size(), 2u);
  EXPECT_EQ(Rows(L"Assortment", {L"AssCode"}).size(), 2u);
  EXPECT_EQ(Rows(L"Serie", {L"SerieCode"}).size(), 3u);
  EXPECT_THAT(Rows(L"Article", {L"Code"}), IsEmpty());
  EXPECT_THAT(Rows(L"Discount", {L"Code"}), IsEmpty());
  EXPECT_TRUE(prompt.messages.empty());
}

}  // namespace
