// The demo installation: complete, able to run by itself, and true to the standards it quotes.
#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
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
  std::vector<std::string> sorted = Lines(tables.out);
  std::ranges::sort(sorted, {}, [](std::string line) {
    std::ranges::transform(line, line.begin(), [](unsigned char c) { return std::tolower(c); });
    return line;
  });
  EXPECT_EQ(Lines(tables.out), sorted);

  const auto apply = [&](const fs::path& update) {
    return RunProgram(
        program,
        {"apply", "--no-backup", "--log", Path("log.txt"), "--table", table, update.string()},
        folder.path());
  };
  int refusals = 0;
  for (const fs::path& update : Updates()) {
    SCOPED_TRACE(update.string());
    const std::vector<std::string> shown =
        Lines(RunProgram(program, {"show", update.string()}, folder.path()).out);
    EXPECT_THAT(shown, testing::Not(Contains(StartsWith("line "))));
    const ProgramOutcome applied = apply(update);
    EXPECT_THAT(applied.err, testing::IsEmpty());
    int refused = 0;
    for (const std::string& line : Lines(applied.out)) refused += line.starts_with("! ") ? 1 : 0;
    EXPECT_EQ(applied.status, refused == 0 ? 0 : 1);
    refusals += refused;
  }
  EXPECT_EQ(refusals, 4);
  for (const auto& update : fs::directory_iterator(folder / "demo" / "server")) {
    const ProgramOutcome applied = apply(update);
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

// The masses that the standards print beside the dimensions, in kg a metre: one of each shape.
TEST(CatalogueTest, MassesAgreeWithTheStandards) {
  std::map<std::wstring, double> printed = {
      {L"HEA200", 42.3},  {L"HEB500", 187},       {L"IPE360", 57.1},
      {L"UNP200", 25.3},  {L"L50X50X5", 3.77},    {L"L200X150X15", 39.6},
      {L"PR20X2", 0.888}, {L"NL114.3X6.3", 16.8}, {L"VK100X5", 14.4},
  };
  for (const auto& range : {demo::Profiles(), demo::Tubes(), demo::SquareTubes()}) {
    for (const demo::Product& product : range.products) {
      const auto mass = printed.extract(product.article.Code);
      if (!mass) continue;
      EXPECT_NEAR(product.mass, mass.mapped(), mass.mapped() * 0.006)
          << text::WideToUtf8(product.article.Code);
    }
  }
  EXPECT_THAT(printed, testing::IsEmpty()) << "not in the catalogue";
}

}  // namespace
