// The file that SavePrcFile writes, byte by byte, and what is read back from it.
#include <gmock/gmock.h>

#include <filesystem>

#include "engine/clsOrvPap.h"
#include "platform/files/paths.h"
#include "platform/text/date.h"
#include "platform/text/locale.h"
#include "tests/support/surface_test.h"
#include "updates/modSharedPap.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr char kWritten[] =
    "[VERSION]\r\n3.2\r\n\r\n"
    "[DATE]\r\n20260105\r\n\r\n"
    "[ASSORTMENTCODE]\r\nBEAMS\r\n\r\n"
    "[ASSORTMENTDESCRIPTION]\r\nBeams\r\n\r\n"
    "[SUPPLIERCODE]\r\nS1\r\n\r\n"
    "[SUPPLIERDESCRIPTION]\r\nFirst\r\n\r\n"
    "[PrcDate]\r\n20040315\r\n\r\n"
    "[SawPrcDate]\r\n20040316\r\n\r\n"
    "[BlastCoatDate]\r\n20040317\r\n\r\n"
    "[BasePriceDate]\r\n20040318\r\n\r\n"
    "[OLBonusDate]\r\n20040319\r\n\r\n"
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
  PrcFileWriterTest() {
    std::filesystem::create_directory(folder / "out");
    update.FilePath = folder.Text(std::filesystem::path("in") / "a.PRC");
    update.PapDate = text::kUnsetDate;
  }

  std::string Written() const { return test_support::ReadAll(folder / "out" / "a.PRC"); }

  clsOrvPap update;
};

// Which the reader reads, but for what a file cannot say: control characters and an empty price.
TEST_F(PrcFileWriterTest, WritesTheSameBytesUnderEveryLocale) {
  std::string bytes = kWritten;
  bytes.replace(bytes.find("\"HEA100\",,"), 10, "\"HEA100\",0,");
  ReadPapHeader(files::ToText(folder.Write(std::filesystem::path("in") / "a.PRC", bytes)), update);
  EXPECT_EQ(text::FormatDate(update.PrcDate), L"2004-03-15");
  EXPECT_EQ(text::FormatDate(update.SawPrcDate), L"2004-03-16");
  EXPECT_EQ(text::FormatDate(update.BlastCoatDate), L"2004-03-17");
  EXPECT_EQ(text::FormatDate(update.BasePriceDate), L"2004-03-18");
  EXPECT_EQ(text::FormatDate(update.OlBonusDate), L"2004-03-19");
  for (const text::Locale locale : {text::Locale{L',', L'.'}, text::Locale{L'.', L','}}) {
    const text::ScopedLocale scope(locale);
    update.Version = L"1.0";  // the writer writes its own
    ASSERT_TRUE(update.GetPrcData());
    update.NewSuppliers->front().ToB = 0.5;  // read by the locale
    update.NewArticles->front().Description = L"a\r\nb";
    update.NewArticles->front().Description2 = L"\tcd\x1f";
    update.PriceData->front().PriceDim.reset();
    EXPECT_TRUE(update.SavePrcFile(folder.Text("out")));
    EXPECT_EQ(Written(), kWritten);
  }
}

TEST_F(PrcFileWriterTest, WithoutCollectionsOnlyTheSectionLinesStand) {
  EXPECT_TRUE(update.SavePrcFile(folder.Text("out")));
  EXPECT_THAT(Written(), HasSubstr("[DATE]\r\n18991230\r\n\r\n"));
  EXPECT_THAT(Written(),
              HasSubstr("[Remark]\r\n\r\n\r\n[NEW SUPPLIER]\r\n\r\n[NEW ASSORTMENT]\r\n"));
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
  EXPECT_THAT(Boxes(), ElementsAre(HasSubstr("clsOrvPap.SavePrcFile (Function)\r\nError = 76: ")));
}

}  // namespace
