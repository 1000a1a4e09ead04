// The file that SavePrcFile writes, byte by byte, and what is read back from it.
#include <gmock/gmock.h>

#include <filesystem>

#include "engine/clsOrvPap.h"
#include "platform/files/paths.h"
#include "platform/text/locale.h"
#include "tests/support/surface_test.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kWritten[] =
    "[VERSION]\r\n3.2\r\n\r\n"
    "[DATE]\r\n20260105\r\n\r\n"
    "[ASSORTMENTCODE]\r\nBEAMS\r\n\r\n"
    "[ASSORTMENTDESCRIPTION]\r\nBeams\r\n\r\n"
    "[SUPPLIERCODE]\r\nS1\r\n\r\n"
    "[SUPPLIERDESCRIPTION]\r\nFirst\r\n\r\n"
    "[PrcDate]\r\n20040315\r\n\r\n"
    "[SawPrcDate]\r\n\r\n\r\n"
    "[BlastCoatDate]\r\n\r\n\r\n"
    "[BasePriceDate]\r\n\r\n\r\n"
    "[OLBonusDate]\r\n\r\n\r\n"
    "[Remark]\r\none\r\ntwo \x80\r\n\r\n"
    "[NEW SUPPLIER]\r\n\"S1\",\"First, and last\",15,0.5\r\n\r\n"
    "[NEW ASSORTMENT]\r\n\"BEAMS\",\"Beams\",1,255,True,False,7,\"\"\r\n\r\n"
    "[NEW ASSSUPPL]\r\n\"BEAMS\",\"S1\",70000\r\n\r\n"
    "[NEW SERIE]\r\n\"HEA\",\"\",7.85,True,\"r\"\r\n\r\n"
    "[NEW ARTICLE]\r\n"
    "\"HEA\",\"HEA100\",\"ab\",\"cd\",96,100.5,0,8,8,5,12,0,2124,2124,0,0,0,-0.25,\"\"\r\n\r\n"
    "[NEW DISCOUNT]\r\n\"D1\",\"\",1.5,2,3\r\n\r\n"
    "[UPDATE BASEPRICE]\r\n\"G1\",\"Group\",1,2,0,99999,1.125\r\n\r\n"
    "[UPDATE OVERLENGTHBONUS]\r\n12.1,15,0.333333333333333\r\n\r\n"
    "[UPDATE PRICEDATA]\r\n"
    "\"HEA100\",,1,0.01,3,4,\"G1\",\"D1\",\"N-1\"\r\n"
    "\"HEA120\",20,0,0,0,0,\"\",\"\",\"\"\r\n\r\n";

class PrcFileWriterTest : public test_support::SurfaceTest {
 protected:
  void SetUp() override {
    std::filesystem::create_directory(folder / "out");
    update.FilePath = folder.Text(std::filesystem::path("in") / "a.PRC");
    update.Version = L"1.0";  // the writer writes its own
    update.PapDate = 46027;
    update.AssortmentCode = L"BEAMS";
    update.AssortmentDescription = L"Beams";
    update.SupplierCode = L"S1";
    update.SupplierDescription = L"First";
    update.PrcDate = 38061;
    update.Remark = L"one\r\ntwo \u20AC";
  }

  void Fill() {
    clsNewSupplier supplier;
    supplier.Code = L"S1";
    supplier.Description = L"First, and last";
    supplier.ToA = 15;
    supplier.ToB = 0.5;
    update.NewSuppliers = {{supplier}};
    clsNewAssortment assortment;
    assortment.AssCode = L"BEAMS";
    assortment.Description = L"Beams";
    assortment.DimUnit = 1;
    assortment.PriceUnit = 255;
    assortment.BasePriceGroups = true;
    assortment.FabrCode = 7;
    update.NewAssortments = {{assortment}};
    clsNewAssSuppl link;
    link.AssCode = L"BEAMS";
    link.SupplierCode = L"S1";
    link.PrcDiscountType = 70000;
    update.NewAssSuppls = {{link}};
    clsNewSerie serie;
    serie.SerieCode = L"HEA";
    serie.Density = 7.85;
    serie.UseOverlengthBonus = true;
    serie.Remark = L"r";
    update.NewSeries = {{serie}};
    clsNewArticle article;
    article.SerieCode = L"HEA";
    article.Code = L"HEA100";
    article.Description = L"a\r\nb";
    article.Description2 = L"\tcd\x1f";
    article.Ht = 96;
    article.Wb = 100.5;
    article.tfb = article.tfu = 8;
    article.tw = 5;
    article.Ri = 12;
    article.S = article.Snet = 2124;
    article.Area = -0.25;
    update.NewArticles = {{article}};
    clsNewDiscount discount;
    discount.Code = L"D1";
    discount.DiscPercA = 1.5;
    discount.DiscPercB = 2;
    discount.DiscPercC = 3;
    update.NewDiscounts = {{discount}};
    clsUpdateBasePrice step;
    step.Code = L"G1";
    step.Description = L"Group";
    step.DimUnit = 1;
    step.PriceUnit = 2;
    step.End = 99999;
    step.BasePrice = 1.125;
    update.BasePrices = {{step}};
    clsUpdateOverlengthB bonus;
    bonus.Begin = 12.1;
    bonus.End = 15;
    bonus.Price = 1.0 / 3;
    update.OverlengthBonuses = {{bonus}};
    clsUpdatePriceData price;
    price.Code = L"HEA100";
    price.OverPrice = 1;
    price.SawPrice = 0.01;
    price.BlastPrice = 3;
    price.CoatPrice = 4;
    price.BPGCode = L"G1";
    price.DiscountCode = L"D1";
    price.ArtNrSupplier = L"N-1";
    clsUpdatePriceData bare;
    bare.Code = L"HEA120";
    bare.PriceDim = 20;
    bare.OverPrice = bare.SawPrice = bare.BlastPrice = bare.CoatPrice = 0;
    update.PriceData = {{price, bare}};
  }

  std::string Written() const { return test_support::ReadAll(folder / "out" / "a.PRC"); }

  clsOrvPap update;
};

TEST_F(PrcFileWriterTest, WritesTheSameBytesUnderEveryLocale) {
  Fill();
  for (const text::Locale locale : {text::Locale{L',', L'.'}, text::Locale{L'.', L','}}) {
    const text::ScopedLocale scope(locale);
    EXPECT_TRUE(update.SavePrcFile(folder.Text("out")));
    EXPECT_EQ(Written(), kWritten);
  }
}

// What the file cannot say is what the bytes above show: control characters, an empty price.
TEST_F(PrcFileWriterTest, WhatWasReadIsWrittenAgain) {
  const text::ScopedLocale locale({.decimal_mark = L'.', .thousands_mark = L','});
  std::string bytes = kWritten;
  bytes.replace(bytes.find("\"HEA100\",,"), 10, "\"HEA100\",0,");
  update.FilePath = files::ToText(folder.Write(std::filesystem::path("in") / "a.PRC", bytes));
  ASSERT_TRUE(update.GetPrcData());
  ASSERT_TRUE(update.SavePrcFile(folder.Text("out")));
  EXPECT_EQ(Written(), bytes);
}

TEST_F(PrcFileWriterTest, WithoutCollectionsOnlyTheSectionLinesStand) {
  update.PapDate = text::kUnsetDate;
  update.Remark.clear();
  EXPECT_TRUE(update.SavePrcFile(folder.Text("out")));
  EXPECT_THAT(Written(), HasSubstr("[DATE]\r\n18991230\r\n\r\n"));
  EXPECT_THAT(Written(),
              HasSubstr("[Remark]\r\n\r\n\r\n[NEW SUPPLIER]\r\n\r\n[NEW ASSORTMENT]\r\n"));
  EXPECT_THAT(Written(), testing::EndsWith("[UPDATE PRICEDATA]\r\n\r\n"));
}

TEST_F(PrcFileWriterTest, APathWithoutAFolderIsAllName) {
  update.FilePath = L"a.PRC";
  EXPECT_TRUE(update.SavePrcFile(folder.Text("out")));
  EXPECT_THAT(Written(), testing::StartsWith("[VERSION]\r\n3.2\r\n"));
}

TEST_F(PrcFileWriterTest, AsksBeforeItOverwrites) {
  folder.Write("out/a.PRC", "old");
  const std::wstring path = folder.Text(std::filesystem::path("out") / "a.PRC");
  prompt.answer = false;
  EXPECT_FALSE(update.SavePrcFile(folder.Text("out")));
  EXPECT_EQ(Written(), "old");
  EXPECT_THAT(prompt.questions,
              ElementsAre(test_support::RecordingPrompt::Shown{
                  L"Wilt u het bestand '" + path + L"' overschrijven?", L"Title"}));
  prompt.answer = true;
  EXPECT_TRUE(update.SavePrcFile(folder.Text("out")));
  EXPECT_THAT(Written(), testing::StartsWith("[VERSION]\r\n3.2\r\n"));
}

TEST_F(PrcFileWriterTest, FailureIsReported) {
  EXPECT_FALSE(update.SavePrcFile(folder.Text("missing")));
  ASSERT_THAT(prompt.messages, SizeIs(1));
  EXPECT_THAT(prompt.messages[0].text, HasSubstr(L"Procedure = clsOrvPap.SavePrcFile (Function)"));
  EXPECT_THAT(prompt.messages[0].text, HasSubstr(L"Error = 76: "));
  EXPECT_THAT(prompt.questions, IsEmpty());
}

}  // namespace
