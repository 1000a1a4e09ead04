// The demo installation: complete, able to run by itself, and true to the standards it quotes.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>

#include "demo/catalogue.h"
#include "platform/registry/reg_file.h"
#include "platform/text/code_page.h"
#include "tests/tools/paptool_test.h"

namespace {

namespace fs = std::filesystem;

using testing::Contains;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

class DemoCommandTest : public PaptoolTest {
 protected:
  std::vector<fs::path> Updates() const {
    std::vector<fs::path> updates;
    for (const auto& entry : fs::directory_iterator(folder / "demo" / "PAP32")) {
      updates.push_back(entry.path());
    }
    std::sort(updates.begin(), updates.end());
    return updates;
  }
};

TEST_F(DemoCommandTest, RunsByItself) {
  ASSERT_EQ(Run({"demo", Path("demo")}).status, 0);
  const fs::path program = folder / "demo" / fs::path(PAPTOOL_FILE).filename();
  const std::string table = Path(fs::path("demo") / "Orv.pt");

  const ProgramOutcome tables = RunProgram(program, {"tables", "--table", table}, folder.path());
  EXPECT_THAT(Lines(tables.out),
              testing::IsSupersetOf({"Supplier\t2", "Assortment\t3", "Article\t319"}));

  int refusals = 0;
  for (const fs::path& update : Updates()) {
    SCOPED_TRACE(update.string());
    const std::vector<std::string> shown =
        Lines(RunProgram(program, {"show", update.string()}, folder.path()).out);
    EXPECT_THAT(shown, testing::Not(Contains(StartsWith("line "))));
    const ProgramOutcome applied = RunProgram(
        program,
        {"apply", "--no-backup", "--log", Path("log.txt"), "--table", table, update.string()},
        folder.path());
    EXPECT_THAT(applied.err, testing::IsEmpty());
    int refused = 0;
    for (const std::string& line : Lines(applied.out)) refused += line.starts_with("! ") ? 1 : 0;
    EXPECT_EQ(applied.status, refused == 0 ? 0 : 1);
    refusals += refused;
  }
  EXPECT_EQ(refusals, 4);
  for (const auto& update : fs::directory_iterator(folder / "demo" / "server")) {
    const ProgramOutcome applied = RunProgram(program,
                                              {"apply", "--no-backup", "--log", Path("log.txt"),
                                               "--table", table, update.path().string()},
                                              folder.path());
    EXPECT_EQ(applied.status, 0) << applied.out;
  }
  const ProgramOutcome checked = RunProgram(program, {"check", "--table", table}, folder.path());
  EXPECT_THAT(checked.out, StartsWith("ok: 15 tables, "));

  const registry::RegFile settings(test_support::ReadAll(folder / "demo" / "registry.reg"));
  EXPECT_EQ(settings.Find(L"HKEY_CURRENT_USER\\Software\\Velkor Software\\Orvane\\3.2\\PAP32",
                          L"DelFilesSP1"),
            registry::Value(std::wstring(L"True")));
  EXPECT_EQ(settings.Find(L"HKEY_LOCAL_MACHINE\\Software\\Velkor Software\\Orvane\\3.2\\Settings",
                          L"PAPUPDATERWELCOME"),
            registry::Value(std::wstring(L"welkom.txt")))
      << "found wherever the folder is carried";
}

TEST_F(DemoCommandTest, OverwritesAProductTableOnlyWhenForced) {
  folder.Write("demo/Orv.pt", "somebody's");
  folder.Write("demo/PAP32/own.PRC", "somebody's");
  EXPECT_EQ(Run({"demo", Path("demo")}).status, 2);
  EXPECT_EQ(test_support::ReadAll(folder / "demo" / "Orv.pt"), "somebody's");
  EXPECT_EQ(Run({"demo", Path("demo"), "--force"}).status, 0);
  EXPECT_THAT(Run({"tables", "--table", Path(fs::path("demo") / "Orv.pt")}).out,
              HasSubstr("Supplier\t2\n"));
  EXPECT_EQ(test_support::ReadAll(folder / "demo" / "PAP32" / "own.PRC"), "somebody's");
  EXPECT_THAT(Updates(), SizeIs(7));
}

TEST_F(DemoCommandTest, SaysWhatToDoWhereNoFolderCanBe) {
  folder.Write("file", "");
  const ProgramOutcome outcome = Run({"demo", Path(fs::path("file") / "demo")});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, StartsWith("paptool: the demo installation cannot be made in " +
                                      Path(fs::path("file") / "demo") + ": "));
  EXPECT_THAT(outcome.err, HasSubstr("Give a folder that you may write to."));
}

// The masses that the standards print beside the dimensions, in kg a metre.
TEST(CatalogueTest, MassesAgreeWithTheStandards) {
  const std::map<std::wstring, double> printed = {
      {L"HEA100", 16.7},     {L"HEA200", 42.3},      {L"HEA360", 112},       {L"HEA600", 178},
      {L"HEA800", 224},      {L"HEA1000", 272},      {L"HEB100", 20.4},      {L"HEB240", 83.2},
      {L"HEB500", 187},      {L"HEB700", 241},       {L"HEB1000", 314},      {L"IPE80", 6.0},
      {L"IPE160", 15.8},     {L"IPE270", 36.1},      {L"IPE360", 57.1},      {L"IPE600", 122},
      {L"UNP80", 8.64},      {L"UNP200", 25.3},      {L"UNP320", 59.5},      {L"UNP400", 71.8},
      {L"L20X20X3", 0.882},  {L"L50X50X5", 3.77},    {L"L100X100X10", 15.0}, {L"L200X200X24", 71.1},
      {L"L100X50X8", 8.97},  {L"L150X75X10", 17.0},  {L"L200X150X15", 39.6}, {L"NL21.3X2", 0.952},
      {L"NL48.3X3.2", 3.56}, {L"NL114.3X6.3", 16.8}, {L"NL323.9X10", 77.4},  {L"PR20X2", 0.888},
      {L"VK100X5", 14.4},    {L"VK50X3", 4.25},
  };
  std::map<std::wstring, double> ours;
  for (const auto& range : {demo::Profiles(), demo::Tubes(), demo::SquareTubes()}) {
    for (const demo::Product& product : range.products) {
      ours[product.article.Code] = product.mass;
    }
  }
  for (const auto& [code, mass] : printed) {
    ASSERT_TRUE(ours.contains(code)) << text::WideToUtf8(code);
    EXPECT_NEAR(ours[code], mass, mass * 0.006) << text::WideToUtf8(code);
  }
}

}  // namespace
