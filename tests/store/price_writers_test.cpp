// What the writers of prices do with the recordsets that the import has opened for them.
#include <gmock/gmock.h>

#include "platform/database/recordset.h"
#include "store/clsUpdateBasePrice.h"
#include "store/clsUpdateOverlengthB.h"
#include "store/clsUpdatePriceData.h"
#include "tests/support/surface_test.h"

namespace {

using database::CursorType;
using database::LockType;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr std::int32_t kSupplierA = 1;
constexpr std::int32_t kSupplierB = 2;

class PriceWritersTest : public test_support::ProductTableTest {
 protected:
  void SetUp() override {
    AddRow(L"Supplier", {{L"Code", L"A"}});
    AddRow(L"Supplier", {{L"Code", L"B"}});
    AddRow(L"Assortment", {{L"AssCode", L"BEAMS"}});
    AddRow(L"Serie", {{L"SerieCode", L"HEA"}, {L"AssNr", std::int32_t{1}}});
    for (const wchar_t* code : {L"HEA100", L"HEA120", L"HEA140"}) {
      AddRow(L"Article", {{L"Code", code}, {L"fkSerie", std::int32_t{1}}});
    }
    AddRow(L"BPG", {{L"Code", L"G1"}, {L"fkSupplier", kSupplierA}});
    AddRow(L"Discount", {{L"Code", L"D1"}, {L"fkSupplier", kSupplierA}});
    Open(articles, L"Article");
    Open(groups, L"SELECT * FROM BPG WHERE fkSupplier = 1");
    Open(discounts, L"SELECT * FROM Discount WHERE fkSupplier = 1");
    Open(prices, L"SELECT * FROM ArtPrice WHERE fkSupplier = 1");
    Open(steps, L"SELECT * FROM BasePrice");
  }

  void Open(database::Recordset& recordset, const std::wstring& statement) {
    recordset.Open(statement, Connection(), CursorType::kDynamic, LockType::kOptimistic);
  }

  bool Save(clsUpdatePriceData& record) {
    bool saved = true;
    record.SaveArtPrice(prices, articles, groups, discounts, kSupplierA, saved);
    return saved;
  }
  bool Save(clsUpdateBasePrice& record) {
    bool saved = true;
    record.SaveBasePrice(groups, steps, kSupplierA, saved);
    return saved;
  }
  bool Delete(clsUpdateBasePrice& record) {
    bool deleted = true;
    record.DeleteBasePrice(groups, deleted);
    return deleted;
  }

  std::vector<std::string> Prices() {
    return Rows(L"ArtPrice",
                {L"fkSupplier", L"fkArticle", L"fkBPG", L"fkDiscount", L"PriceDim", L"OverPrice",
                 L"SawPrice", L"BlastPrice", L"CoatPrice", L"ArtNrSupplier"});
  }

  database::Recordset articles, groups, discounts, prices, steps;
};

clsUpdatePriceData Price(const wchar_t* article, double price) {
  clsUpdatePriceData record;
  record.Code = article;
  record.PriceDim = price;
  return record;
}

clsUpdateBasePrice Step(const wchar_t* code, double begin, double price) {
  clsUpdateBasePrice record;
  record.Code = code;
  record.Description = L"Group";
  record.DimUnit = 1;
  record.PriceUnit = 2;
  record.Begin = begin;
  record.End = begin + 10;
  record.BasePrice = price;
  return record;
}

TEST_F(PriceWritersTest, PriceIsAddedThenOverwritten) {
  clsUpdatePriceData full = Price(L"HEA120", 12.5);
  full.BPGCode = L"G1";
  full.DiscountCode = L"D1";
  full.OverPrice = 1;
  full.SawPrice = 2;
  full.BlastPrice = 3;
  full.CoatPrice = 4;
  full.ArtNrSupplier = L"N-1";
  EXPECT_TRUE(Save(full));
  EXPECT_EQ(full.ResultText, L"#100");
  EXPECT_THAT(Prices(), ElementsAre("1|2|1|1|12.5|1|2|3|4|N-1"));

  // Group and discount stay unless the record names others; everything else is the record's.
  clsUpdatePriceData bare = Price(L"HEA120", 13);
  bare.CoatPrice = 0;
  EXPECT_TRUE(Save(bare));
  EXPECT_THAT(Prices(), ElementsAre("1|2|1|1|13|Null|Null|Null|0|Null"));

  clsUpdatePriceData empty = Price(L"HEA120", 0);
  empty.PriceDim.reset();
  EXPECT_TRUE(Save(empty));
  EXPECT_THAT(Prices(), ElementsAre("1|2|1|1|Null|Null|Null|Null|Null|Null"));
}

// Each search covers the whole recordset, wherever the one before it ended.
TEST_F(PriceWritersTest, OrderOfRecordsDoesNotMatter) {
  for (const wchar_t* article : {L"HEA140", L"HEA100", L"HEA120", L"HEA140", L"HEA100"}) {
    clsUpdatePriceData record = Price(article, 5);
    EXPECT_TRUE(Save(record));
  }
  EXPECT_EQ(Prices().size(), 3u);
}

TEST_F(PriceWritersTest, PriceThatNamesTheUnknownIsRefusedWhole) {
  // The other supplier's group and discount do not count.
  AddRow(L"BPG", {{L"Code", L"G2"}, {L"fkSupplier", kSupplierB}});
  AddRow(L"Discount", {{L"Code", L"D2"}, {L"fkSupplier", kSupplierB}});
  const struct {
    const wchar_t* article;
    const wchar_t* group;
    const wchar_t* discount;
    const wchar_t* result;
  } cases[] = {
      {L"HEA999", L"G1", L"D1", L"#101 HEA999"}, {L"", L"G1", L"D1", L"#101 "},
      {L"HEA100", L"G1", L"D2", L"#102 D2"},     {L"HEA100", L"G2", L"D1", L"#103 G2"},
      {L"HEA100", L"G2", L"D2", L"#102 D2"},
  };
  for (const auto& c : cases) {
    clsUpdatePriceData record = Price(c.article, 5);
    record.BPGCode = c.group;
    record.DiscountCode = c.discount;
    EXPECT_FALSE(Save(record));
    EXPECT_EQ(record.ResultText, c.result);
  }
  clsUpdatePriceData quoted = Price(L"O'X", 5);
  EXPECT_FALSE(Save(quoted));
  EXPECT_THAT(quoted.ResultText, StartsWith(L"3001: "));
  EXPECT_THAT(Prices(), IsEmpty());
}

TEST_F(PriceWritersTest, EveryBasePriceRecordAddsAStep) {
  clsUpdateBasePrice known = Step(L"G1", 0, 1.5);
  EXPECT_TRUE(Save(known));
  EXPECT_EQ(known.ResultText, L"#98");
  clsUpdateBasePrice added = Step(L"G9", 0, 2.5);
  EXPECT_TRUE(Save(added));
  EXPECT_EQ(added.ResultText, L"#99");
  clsUpdateBasePrice again = Step(L"G9", 10, 3.5);
  EXPECT_TRUE(Save(again));
  EXPECT_EQ(again.ResultText, L"#98");

  EXPECT_THAT(Rows(L"BPG", {L"ID", L"fkSupplier", L"Code", L"Description", L"Rights", L"DimUnit",
                            L"PriceUnit"}),
              ElementsAre("1|1|G1|Group|False|1|2", "2|1|G9|Group|False|1|2"));
  EXPECT_THAT(Rows(L"BasePrice", {L"ID", L"Begin", L"End", L"BasePrice"}),
              ElementsAre("1|0|10|1.5", "2|0|10|2.5", "2|10|20|3.5"));
}

TEST_F(PriceWritersTest, DeletingTheStepsOfOneGroupLeavesTheOthers) {
  for (double begin : {0.0, 10.0, 20.0}) {
    clsUpdateBasePrice of_g1 = Step(L"G1", begin, 1);
    clsUpdateBasePrice of_g9 = Step(L"G9", begin, 1);
    ASSERT_TRUE(Save(of_g1));
    ASSERT_TRUE(Save(of_g9));
  }
  clsUpdateBasePrice unknown = Step(L"G5", 0, 1);
  EXPECT_FALSE(Delete(unknown));
  EXPECT_EQ(unknown.ResultText, L"");
  clsUpdateBasePrice known = Step(L"G1", 0, 1);
  EXPECT_TRUE(Delete(known));
  EXPECT_THAT(Rows(L"BasePrice", {L"ID", L"Begin"}), ElementsAre("2|0", "2|10", "2|20"));
  EXPECT_TRUE(Delete(known));  // there is nothing left to delete, but the group is there
}

TEST_F(PriceWritersTest, BonusesAreAddedWithoutLookingBack) {
  database::Recordset bonuses;
  Open(bonuses, L"SELECT * FROM OverlengthBonus WHERE fkSupplier = 1");
  clsUpdateOverlengthB record;
  record.Begin = 12.1;
  record.End = 15;
  record.Price = 0.5;
  for (int i = 0; i < 2; ++i) {
    bool saved = false;
    record.SaveOverlengthBonus(bonuses, kSupplierA, saved);
    EXPECT_TRUE(saved);
  }
  bool saved = true;
  record.SaveOverlengthBonus(bonuses, 99, saved);
  EXPECT_FALSE(saved);
  EXPECT_THAT(record.ResultText, StartsWith(L"3201: "));
  EXPECT_THAT(Rows(L"OverlengthBonus", {L"fkSupplier", L"Begin", L"End", L"Price"}),
              ElementsAre("1|12.1|15|0.5", "1|12.1|15|0.5"));
}

}  // namespace
