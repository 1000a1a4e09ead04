// The pages over a demo installation, on one record of settings: from the welcome to the finish;
// and three updates, the second of which fails in one record, with list, log, register, backups and
// product table together.
#include <gmock/gmock.h>

#include <filesystem>

#include "app/modGeneralFunctions.h"
#include "app/modMain.h"
#include "app/modSharedRegistryFuncties.h"
#include "demo/installation.h"
#include "platform/database/database_engine.h"
#include "platform/database/recordset.h"
#include "platform/files/paths.h"
#include "platform/language/language_provider.h"
#include "platform/registry/reg_file.h"
#include "platform/text/code_page.h"
#include "platform/text/date.h"
#include "store/modProductTable.h"
#include "tests/support/fixed_clock.h"
#include "tests/support/memory_registry.h"
#include "tests/support/surface_test.h"
#include "updates/modSharedPap.h"
#include "updates/modSharedPapFolder.h"
#include "updates/modSharedPapRegister.h"
#include "wizard/usrImport.h"
#include "wizard/usrPapProcessed.h"
#include "wizard/usrSelectPap.h"
#include "wizard/usrTarget.h"
#include "wizard/usrWelkom.h"

namespace {

namespace fs = std::filesystem;

using test_support::ReadAll;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kNoon = 46081.5;  // 2026-02-28 12:00
constexpr double kAnHour = 1.0 / 24;

// All rows of all tables but the register, as texts.
std::vector<std::wstring> Contents(const fs::path& vTable) {
  const std::wstring path = files::ToText(vTable);
  const auto tables =
      database::DBEngine().OpenDatabase(path, false, false, L";pwd=quorbelintax")->TableDefs();
  const auto connection = test_support::OpenConnection(path, kProductTablePassword);
  std::vector<std::wstring> contents;
  for (const database::TableDef& definition : tables) {
    if (definition.Name == L"PriceUpdates") continue;
    database::Recordset rows;
    rows.Open(definition.Name, *connection);
    for (; !rows.Eof(); rows.MoveNext()) {
      std::wstring row = definition.Name;
      for (const database::FieldDefinition& field : definition.Fields) {
        row += L"|" + NullToString(rows(field.Name).Value(), L"Null");
      }
      contents.push_back(row);
    }
  }
  return contents;
}

class WalkTest : public test_support::SurfaceTest {
 protected:
  WalkTest() {
    // The installation copies the program that makes it; here any file will do.
    const fs::path program = folder.Write("bin/program", "");
    fs::copy(ORVPAP_LANG_FOLDER, folder / "bin/lang", fs::copy_options::recursive);
    demo::MakeInstallation(installation, program);
    settings.objClock = &clock;
    settings.objRegistry = &registry;
    settings.strProgramFolder = files::ToText(installation);
    // The installation's own settings, but for the language.
    const registry::RegFile file(test_support::ReadAll(installation / demo::kRegistryFile));
    const std::wstring root = L"HKEY_LOCAL_MACHINE\\";
    const auto setting = [this](const wchar_t* vName) -> registry::Value& {
      return registry.values[{registry::RootKey::kLocalMachine, kSettingsKey, vName}];
    };
    setting(L"PAPUPDATERLANGUAGE") = L"english.lng";
    setting(L"PAPUPDATERWELCOME") = file.Find(root + kSettingsKey, L"PAPUPDATERWELCOME").value();
    EXPECT_TRUE(PrepareWizard(language));
  }

  // What the select page offers, a line an item: "x" when checked, "-" when in grey, the rest.
  std::vector<std::string> Offered() const {
    std::vector<std::string> lines;
    for (const controls::ListItem& item : select_page.lvPrc.Items()) {
      lines.push_back(std::string(item.checked ? "x" : " ") +
                      (item.colour == controls::kGrayText ? "-" : " ") +
                      text::WideToUtf8(item.text) + "|" + text::WideToUtf8(item.sub_items.at(0)) +
                      "|" + text::WideToUtf8(item.sub_items.at(1)));
    }
    return lines;
  }

  // The wizard's page of processed updates, a line an item.
  std::vector<std::string> ShownRegister(const std::wstring& vPath) {
    usrPapProcessed processed_page;
    processed_page.Init(vPath);
    std::vector<std::string> lines;
    for (const controls::ListItem& item : processed_page.lvPrc.Items()) {
      lines.push_back(text::WideToUtf8(item.text + L"|" + item.sub_items.at(0) + L"|" +
                                       item.sub_items.at(1) + L"|" + item.sub_items.at(2)));
    }
    return lines;
  }

  std::vector<std::string> Listed() const {
    std::vector<std::string> lines;
    for (const controls::ListItem& item : page.lvResults.Items()) {
      lines.push_back((item.colour == controls::kRed ? "! " : "") + text::WideToUtf8(item.text) +
                      "|" + text::WideToUtf8(item.sub_items.front()));
    }
    return lines;
  }

  static std::vector<std::wstring> RegisterOf(const fs::path& vTable) {
    std::vector<std::wstring> rows;
    GetProcessedCollection(files::ToText(vTable));
    if (!ProcessedPaps()) return rows;
    for (const auto& pap : *ProcessedPaps()) {
      rows.push_back(pap->FilePath + L"|" + text::FormatDateTime(pap->PapDate) + L"|" +
                     text::FormatDateTime(pap->DateProcessed));
    }
    return rows;
  }

  const fs::path installation = folder / "demo";
  const fs::path table = installation / demo::kProductTableFile;
  language::FileLanguageProvider language{folder / "bin"};
  test_support::FixedClock clock{kNoon};
  test_support::MemoryRegistry registry;
  usrSelectPap select_page;
  usrImport page;
};

// What the user sees from the first page to the last, and finds again the next time.
TEST_F(WalkTest, FromTheWelcomeToTheFinishAndBackAnotherDay) {
  std::vector<std::string> heard;
  const auto listen_to = [&heard](auto& vPage) {
    vPage.SetStepText = [&heard](const std::wstring& v) { heard.push_back(text::WideToUtf8(v)); };
    vPage.AanzettenVolgende = [&heard](bool vAan) {
      heard.emplace_back(vAan ? "next" : "no next");
    };
  };
  const std::string go_on = " - click Next to continue";

  usrWelkom welcome;
  listen_to(welcome);
  welcome.Init();
  EXPECT_THAT(heard, ElementsAre("Welkom bij de demo-installatie" + go_on, "next"));
  EXPECT_THAT(text::WideToUtf8(welcome.Text1.Text()), testing::StartsWith("Met deze wizard"));

  heard.clear();
  usrTarget target;
  listen_to(target);
  target.Init();
  EXPECT_THAT(heard, ElementsAre(testing::EndsWith(go_on), "next"));
  EXPECT_EQ(files::ToPath(target.ptLocation()), table) << "beside the program";
  EXPECT_TRUE(target.MakeBackup());
  target.chkBackup.Toggle();

  EXPECT_TRUE(OpenProductTable(target.ptLocation()));
  EXPECT_THAT(ShownRegister(target.ptLocation()), IsEmpty());

  // Two of the five have faults.
  listen_to(select_page);
  select_page.Init(target.ptLocation());
  ASSERT_EQ(Offered().size(), 5U);
  heard.clear();
  for (const std::size_t faulty : {3U, 4U}) select_page.lvPrc.Check(faulty, false);
  EXPECT_THAT(heard, ElementsAre("next", "next"));
  ASSERT_EQ(select_page.SelectedPAP().size(), 3U);
  EXPECT_TRUE(
      page.StartImport(target.ptLocation(), select_page.SelectedPAP(), target.MakeBackup()));
  const auto imported = Contents(table);

  // The finish: the product table is compacted, for which nobody may have it open any more.
  const std::wstring compacted = target.ptLocation() + L"_tmp";
  database::DBEngine().CompactDatabase(target.ptLocation(), compacted, L";pwd=quorbelintax");
  EXPECT_TRUE(CopyPapFile(compacted, target.ptLocation()));
  CurrentUser_BrengWeg(L"", L"PTLocation", target.ptLocation());
  CurrentUser_BrengWegBoolean(L"", L"Backup", target.MakeBackup());
  EXPECT_EQ(Contents(table), imported);

  usrTarget another_day;
  another_day.Init();
  EXPECT_EQ(another_day.ptLocation(), target.ptLocation());
  EXPECT_FALSE(another_day.MakeBackup());
  EXPECT_THAT(ShownRegister(another_day.ptLocation()),
              ElementsAre("2004-03-15|Plaatstaal|Veldhaven Staalservice|2026-02-28 12:00",
                          "2026-01-05|Balken en profielen|Veldhaven Staalservice|2026-02-28 12:00",
                          "2026-02-02|Buizen en kokers|Brugmeer Metaal en Buis|2026-02-28 12:00"));
  usrSelectPap select_again;
  select_again.Init(another_day.ptLocation());
  EXPECT_EQ(select_again.SelectedPAP().size(), 2U) << "those with faults";
  EXPECT_THAT(prompt.messages, IsEmpty());
}

TEST_F(WalkTest, ThreeUpdatesTheSecondOfWhichFailsInOneRecord) {
  // In the order of the folder, the update with one fault comes second.
  const fs::path pap_folder = installation / demo::kUpdateFolder;
  fs::rename(pap_folder / "20260202_BRUGMEER_BUIS.PRC", pap_folder / "20260223_BRUGMEER_BUIS.PRC");
  // It was applied before, an hour ago, and so is in the register.
  const std::wstring path = files::ToText(table);
  clsOrvPap applied_before;
  ReadPapHeader(files::ToText(pap_folder / "20260216_BRUGMEER_PLAAT.PRC"), applied_before);
  clock.now = kNoon - kAnHour;
  ASSERT_TRUE(SetPapProcessed(path, applied_before, true));
  clock.now = kNoon;
  const std::string before = ReadAll(table);

  // The update of a supplier that the product table does not have is not offered. The user does
  // not want the two updates of Veldhaven's plates, and wants the grey one again.
  select_page.Init(path);
  ASSERT_THAT(Offered(), ElementsAre("x 2004-03-15|Plaatstaal|Veldhaven Staalservice",
                                     "x 2026-01-05|Balken en profielen|Veldhaven Staalservice",
                                     "x 2026-02-09|Plaatstaal|Veldhaven Staalservice",
                                     " -2026-02-16|Plaatstaal|Brugmeer Metaal",
                                     "x 2026-02-02|Buizen en kokers|Brugmeer Metaal en Buis"));
  select_page.lvPrc.Check(0, false);
  select_page.lvPrc.Check(2, false);
  select_page.lvPrc.Check(3, true);
  const std::vector<std::shared_ptr<clsOrvPap>> chosen = select_page.SelectedPAP();
  ASSERT_THAT(chosen, testing::SizeIs(3));

  // The same by the engine alone, to compare with.
  const fs::path engine_only = folder / "engine.pt";
  fs::copy_file(table, engine_only);
  std::vector<std::vector<std::wstring>> after_each = {Contents(engine_only)};
  for (const auto& update : chosen) {
    update->UpdatePT(files::ToText(engine_only));
    ProductConnection.reset();
    after_each.push_back(Contents(engine_only));
    ASSERT_NE(after_each.back(), *(after_each.end() - 2)) << "an update without an effect";
  }

  std::vector<std::string> heard;
  page.SetStepText = [&](const std::wstring& vText) { heard.push_back(text::WideToUtf8(vText)); };
  page.AanzettenVolgende = [&](bool vAan) { heard.emplace_back(vAan ? "next" : "no next"); };
  page.AanzettenVorige = [&](bool vAan) { heard.emplace_back(vAan ? "back" : "no back"); };
  EXPECT_FALSE(page.StartImport(path, chosen, true));
  EXPECT_THAT(prompt.messages, IsEmpty());
  EXPECT_THAT(heard, ElementsAre("The price updates are being applied - click Next to continue",
                                 "next", "back"));

  const fs::path backups[] = {installation / "PROFIEL_VELDHAVEN_20260105.pt",
                              installation / "PLAAT_BRUGMEER_20260216.pt",
                              installation / "BUIS_BRUGMEER_20260202.pt"};
  const auto update_line = [&](std::size_t vIndex) {
    return "Price update|" + text::WideToUtf8(chosen[vIndex]->FilePath);
  };
  const std::vector<std::string> list = {
      "Backup|" + backups[0].string(),
      update_line(0),
      "Assortment|PROFIEL - Balken en profielen",
      "Supplier|VELDHAVEN - Veldhaven Staalservice",
      "Price update|finished",
      "Backup|" + backups[1].string(),
      update_line(1),
      "Assortment|PLAAT - Plaatstaal",
      "Supplier|BRUGMEER - Brugmeer Metaal",
      "! Not applied|Article price: the discount 'B-ONBEKEND' was not found.",
      "Price update|finished",
      "Backup|" + backups[2].string(),
      update_line(2),
      "Assortment|BUIS - Buizen en kokers",
      "Supplier|BRUGMEER - Brugmeer Metaal en Buis",
      "Price update|finished",
  };
  EXPECT_EQ(Listed(), list);

  // The log has the list's lines in their order, with a colon, among those that are not shown.
  const std::string log = ReadAll(installation / "paplog.txt");
  std::size_t at = 0;
  for (std::string line : list) {
    if (line.starts_with("! ")) line.erase(0, 2);
    line.replace(line.find('|'), 1, ": ");
    at = log.find("\r\n" + line + "\r\n", at);
    ASSERT_NE(at, std::string::npos) << line;
  }
  EXPECT_TRUE(log.starts_with(
      "=========================\r\nProduct table opened: " + table.string() + "\r\n"));
  EXPECT_TRUE(log.ends_with("\r\n=========================\r\n"));

  EXPECT_THAT(RegisterOf(table),
              ElementsAre(L"20260105_VELDHAVEN_PROFIEL.PRC|2026-01-05 00:00:00|2026-02-28 12:00:00",
                          L"20260223_BRUGMEER_BUIS.PRC|2026-02-02 00:00:00|2026-02-28 12:00:00"));
  EXPECT_EQ(Contents(table), after_each[3]);
  EXPECT_TRUE(ReadAll(backups[0]) == before);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(Contents(backups[i]), after_each[i]) << i;
  EXPECT_THAT(RegisterOf(backups[1]), testing::SizeIs(2)) << "the first of now, the second of then";
  EXPECT_THAT(RegisterOf(backups[2]), testing::SizeIs(1)) << "the second is withdrawn";

  // Back on the select page: what was applied is grey, what failed is offered again. The new
  // supplier's update is still not.
  select_page.Init(path);
  std::vector<std::string> marks;
  for (const std::string& line : Offered()) marks.push_back(line.substr(0, 2));
  EXPECT_THAT(marks, ElementsAre("x ", " -", "x ", "x ", " -"));
}

}  // namespace
