// What each record of an update adds, changes, keeps and refuses in a product table.
#include <gmock/gmock.h>

#include "tests/engine/update_test.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;

class RecordsTest : public UpdateTest {
 protected:
  RecordsTest() { ApplyOpeningUpdates(); }
};

// What stays of a row that is there already, and what is overwritten.
TEST_F(RecordsTest, EachIsAddedOrChanged) {
  ASSERT_TRUE(Apply("[NEW ASSORTMENT]\nLINKS,,1,0,True,False,7,\n"));
  AddRow(L"Discount", {{L"fkSupplier", std::int32_t{2}}, {L"Code", L"D1"}});
  struct Step {
    const char* lines;
    const char* told;
    std::vector<std::string> rows;  // what the statement selects afterwards
  };
  const struct {
    const wchar_t* statement;
    std::vector<std::wstring> columns;
    std::vector<Step> steps;
  } cases[] = {
      {L"SELECT * FROM Supplier WHERE Code='S2'",
       {L"ID", L"Code", L"Description", L"ToA", L"ToB", L"Rights"},
       {{"[NEW SUPPLIER]\ns2,Again,0,7\n", "#97|s2 - Again", {"2|s2|Again|0|7|False"}}}},
      {L"SELECT * FROM Assortment WHERE AssCode='TUBES'",
       {L"Description", L"FabrCode", L"Remark", L"DimUnit", L"PriceUnit", L"BasePriceGroups",
        L"DiscountGroups", L"Rights"},
       {{"[NEW ASSORTMENT]\nTUBES,Tubes,3,0,True,False,7,first\n",
         "#82|TUBES - Tubes",
         {"Tubes|7|first|3|0|True|False|False"}},
        {"[NEW ASSORTMENT]\nTUBES,Round,2,255,False,True,8,second\n",
         "#83|TUBES - Round",
         {"Round|7|first|2|255|False|True|False"}}}},
      {L"SELECT * FROM Ass_Suppl WHERE fkAssNr = 3",
       {L"fkSupplierID", L"PrcDiscountType", L"Rights", L"PrcDate"},
       {{"[NEW ASSSUPPL]\nLINKS,S2,4\n", "#89|LINKS - S2", {"2|4|False|Null"}},
        {"[NEW ASSSUPPL]\nLINKS,S2,5\n", "#90|LINKS - S2", {"2|5|False|Null"}}}},
      {L"SELECT * FROM Serie WHERE SerieCode = 'UNP'",
       {L"AssNr", L"Description", L"Density", L"UseOverlengthBonus", L"Remark"},
       {{"[NEW SERIE]\nUNP,Channels,7.85,True,first\n",
         "#84|UNP - Channels",
         {"1|Channels|7.85|True|first"}},
        {"[NEW SERIE]\nUNP,U,1.5,False,second\n", "#85|UNP - U", {"1|U|1.5|False|first"}}}},
      {L"SELECT * FROM Article WHERE fkSerie = 3",
       {L"fkSerie", L"Code", L"Description", L"Description2", L"Remark"},
       {{"[NEW ARTICLE]\nUNP,U1,one,two,0,0,0,0,0,0,0,0,0,0,0,0,0,0,first\n",
         "#95|U1 - one (UNP)",
         {"3|U1|one|two|first"}},
        {"[NEW ARTICLE]\nUNP,U1,uno,dos,0,0,0,0,0,0,0,0,0,0,0,0,0,0,second\n",
         "#94|U1 - uno (UNP)",
         {"3|U1|uno|dos|first"}}}},
      {L"Discount",
       {L"fkSupplier", L"Description", L"DiscPercA", L"DiscPercB", L"DiscPercC"},
       {{"[NEW DISCOUNT]\nD1,again,9,9,9\n",
         "#79|D1 - again",
         {"1|again|1|2|3", "2|Null|Null|Null|Null"}}}},
      // Every base price adds a step to its group.
      {L"SELECT * FROM BPG WHERE Code = 'G9'",
       {L"fkSupplier", L"Description", L"Rights", L"DimUnit", L"PriceUnit"},
       {{"[UPDATE BASEPRICE]\nG9,Nine,1,2,0,10,2.5\n", "#99|G9 - Nine", {"1|Nine|False|1|2"}}}},
      {L"SELECT * FROM BasePrice WHERE ID = 4",
       {L"Begin", L"End", L"BasePrice"},
       {{"[UPDATE BASEPRICE]\nG9,9,2,1,0,10,3.5\nG9,9,2,1,10,20,3\n",
         "#98|G9 - 9",
         {"0|10|3.5", "10|20|3"}}}},
      // Each search covers all articles, wherever the one before it ended; group and discount stay
      // unless a record names others.
      {L"SELECT * FROM ArtPrice WHERE fkSupplier = 1 AND fkArticle < 3",
       {L"fkArticle", L"fkBPG", L"fkDiscount", L"PriceDim", L"OverPrice", L"SawPrice",
        L"BlastPrice", L"CoatPrice", L"ArtNrSupplier"},
       {{"[UPDATE PRICEDATA]\nHEA120,12.5,1,2,3,4,G2,D1,N-1\nHEA100,5,0,0,0,0,,,\n"
         "HEA120,13,0,0,0,7,,,\n",
         "#100|HEA120",
         {"1|Null|Null|5|0|0|0|0|Null", "2|2|1|13|0|0|0|7|Null"}}}},
  };
  for (const auto& c : cases) {
    for (const Step& step : c.steps) {
      SCOPED_TRACE(step.lines);
      EXPECT_TRUE(Apply(step.lines));
      EXPECT_THAT(logged, Contains(step.told));
      EXPECT_EQ(Rows(c.statement, c.columns), step.rows);
    }
  }
}

TEST_F(RecordsTest, DimensionsGoWhereTheKindSays) {
  const std::string dimensions = ",,,0.5,1.5,2.5,3.5,4.5,5.5,6.5,7.5,8.5,9.5,10.5,11.5,12.5,13.5,";
  for (const char* kind : {"1", "2", "3", "0"}) {
    const std::string code = std::string("K") + kind;
    NextUpdate("[NEW ASSORTMENT]\n" + code + ",x," + kind + ",1,1,1,0,\n\n[NEW ASSSUPPL]\n" + code +
               ",S1,1\n\n[NEW SERIE]\n" + code + ",x,1,1,\n\n[NEW ARTICLE]\n" + code + "," + code +
               dimensions + "\n")
        .AssortmentCode = std::wstring(code.begin(), code.end());
    ASSERT_TRUE(Apply());
  }
  EXPECT_THAT(
      Rows(L"SELECT * FROM ArtDimL WHERE ID > 3", {L"ID", L"Ht", L"Wb", L"Wu", L"tfb", L"tfu",
                                                   L"tw", L"Ri", L"Ro", L"S", L"Snet", L"Slope"}),
      ElementsAre("4|0.5|1.5|2.5|3.5|4.5|5.5|6.5|7.5|8.5|9.5|10.5"));
  EXPECT_THAT(Rows(L"SELECT * FROM ArtDimPl WHERE ID > 3", {L"ID", L"t"}), ElementsAre("5|11.5"));
  EXPECT_THAT(Rows(L"ArtOrvc", {L"ID", L"VolDim", L"Area"}),
              ElementsAre("6|12.5|13.5", "7|12.5|13.5"));
  NextUpdate("[NEW ARTICLE]\nK2,K2,,,0,0,0,0,0,0,0,0,0,0,0,20,0,0,\n").AssortmentCode = L"K2";
  ASSERT_TRUE(Apply());
  EXPECT_THAT(Rows(L"SELECT * FROM ArtDimPl WHERE ID > 3", {L"ID", L"t"}), ElementsAre("5|20"));
}

// Nothing of a refused record is left behind; a failure of the database is told in its own words.
TEST_F(RecordsTest, WhatCannotBeTakenIsRefusedWhole) {
  ASSERT_TRUE(Apply("[NEW SERIE]\nHEB,,1,1,\n"));
  const std::string dimensions = ",,,0,0,0,0,0,0,0,0,0,0,0,0,0,0,\n";
  const std::string prices = "[UPDATE PRICEDATA]\n";
  const struct {
    const wchar_t* supplier;
    std::string lines;
    const char* refusal;
  } cases[] = {
      {L"S1", "[NEW SUPPLIER]\nO'X,x,1,2\n", "3075: "},
      {L"S1", "[NEW ASSORTMENT]\nO'X,x,1,1,1,1,0,\n", "3075: "},
      {L"S1", "[NEW ASSSUPPL]\nO'X,S1,1\n", "3075: "},
      {L"S1", "[NEW ASSSUPPL]\nBEAMS,NOBODY,1\n", "#88 NOBODY"},
      {L"S1", "[NEW ASSSUPPL]\nNONE,NOBODY,1\n", "#88 NOBODY"},  // the last thing missing is told
      {L"S1", "[NEW SERIE]\nO'X,x,1,1,\n", "3075: "},
      {L"S1", "[NEW SERIE]\nNEW," + std::string(300, 'x') + ",1,1,\n", "3163: "},
      {L"S1", "[NEW ARTICLE]\nO'X,X" + dimensions, "3075: "},
      {L"S1", "[NEW ARTICLE]\nHEA,O'X" + dimensions, "3075: "},
      {L"S1", "[NEW ARTICLE]\nHEB,HEA100" + dimensions, "#93 HEA100"},  // it is in HEA
      {L"S1", "[NEW DISCOUNT]\nO'X,x,1,2,3\n", "3075: "},
      {L"S2", "[NEW DISCOUNT]\nD1,x,1,2,3\n", "#80 D1"},  // the other supplier's
      {L"S1", prices + ",9,0,0,0,0,,,\n", "#101 "},
      {L"S1", prices + "O'X,9,0,0,0,0,,,\n", "3001: "},
      {L"S1", prices + "HEA100,9,0,0,0,0,G1,D9,\n", "#102 D9"},
      {L"S2", prices + "HEA120,9,0,0,0,0,G1,D1,\n", "#102 D1"},  // the other supplier's
      {L"S2", prices + "HEA120,9,0,0,0,0,G2,,\n", "#103 G2"},    // the other supplier's
      {L"S2", prices + "HEA120,9,0,0,0,0,G2,D1,\n", "#102 D1"},
  };
  const auto codes = [&] {
    return std::vector{Rows(L"Supplier", {L"Code"}),     Rows(L"Assortment", {L"AssCode"}),
                       Rows(L"Serie", {L"SerieCode"}),   Rows(L"Article", {L"Code"}),
                       Rows(L"Discount", {L"Code"}),     Rows(L"BPG", {L"Code"}),
                       Rows(L"Ass_Suppl", {L"fkAssNr"}), Rows(L"ArtPrice", {L"fkArticle"})};
  };
  const auto before = codes();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.lines);
    NextUpdate(c.lines).SupplierCode = c.supplier;
    EXPECT_FALSE(Apply());
    EXPECT_THAT(shown, Contains(StartsWith(std::string("! #64|") + c.refusal)));
    EXPECT_EQ(codes(), before);
  }
  EXPECT_THAT(Boxes(), testing::IsEmpty());
}

}  // namespace
