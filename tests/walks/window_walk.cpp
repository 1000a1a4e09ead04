// A demo installation for a walk through the wizard's real windows.
#include "tests/walks/window_walk.h"

#include <algorithm>

#include "app/modGeneralFunctions.h"
#include "app/modMain.h"
#include "platform/files/paths.h"
#include "platform/jet/check.h"
#include "platform/text/code_page.h"
#include "store/modProductTable.h"
#include "tests/support/surface_test.h"
#include "tests/walks/settings.h"
#include "tools/paptool/download_index.h"
#include "updates/DownloadFolder.h"
#include "updates/modSharedPapRegister.h"

namespace walks {
namespace {

namespace fs = std::filesystem;

using test_support::ReadAll;

constexpr char kUserKey[] = R"(Software\Velkor Software\Orvane\3.2\PAP32)";

}  // namespace

WindowWalk::WindowWalk() {
  // The installation copies the program that makes it; here any file will do.
  const fs::path program = folder.Write("bin/program", "");
  fs::copy(ORVPAP_LANG_FOLDER, folder / "bin/lang", fs::copy_options::recursive);
  demo::MakeInstallation(installation, program);
  registry_ = FreshSettings(installation / demo::kRegistryFile);
  registry_->WriteText(registry::RootKey::kLocalMachine, kSettingsKey, L"PAPUPDATERLANGUAGE",
                       L"english.lng");
  shared_.strProgramFolder = files::ToText(installation);
  shared_.objRegistry = registry_.get();
  answer = [this](auto& peer, const std::string& head) {
    peer.Send(test_support::Response(Served(test_support::PathOf(head))));
  };
}

void WindowWalk::Walk(const std::function<void()>& script) {
  const SharedSettingsScope scope(shared_);
  test_support::ScriptedServer server(answer);
  Play([&] { EXPECT_EQ(Main(server.Address()), 0); },
       [&] {
         Await("the welcome", [] { return AtRest() && Title() == kWelcome; });
         script();
       });
  for (const std::string& head : server.Requests()) {
    const fs::path path = test_support::PathOf(head);
    requests.push_back(path.filename().string());
  }
}

std::string WindowWalk::Served(const std::string& path) const {
  const fs::path name = fs::path(path).filename();
  if (name == DownloadFolder::kIndexFile) return paptool::DownloadIndex(files::ToText(on_server));
  return ReadAll(on_server / name);
}

void WindowWalk::OfferOnly(const std::string& lines) const {
  fs::remove_all(updates);
  folder.Write(updates / "1.PRC",
               "[VERSION]\r\n3.2\r\n[ASSORTMENTCODE]\r\nBUIS\r\n[ASSORTMENTDESCRIPTION]\r\n"
               "Buizen\r\n[SUPPLIERCODE]\r\nBRUGMEER\r\n[SUPPLIERDESCRIPTION]\r\nBrugmeer\r\n"
               "[DATE]\r\n20260105\r\n" +
                   lines);
}

void WindowWalk::OfferLongUpdate() const {
  std::string lines = "[NEW SUPPLIER]\r\n";
  for (int number = 0; number < 20'000; ++number) {
    lines += "S" + std::to_string(number) + ",Supplier,0,0\r\n";
  }
  OfferOnly(lines);
}

bool WindowWalk::AmidImport() { return Title() == kImport && Progress() > 0.2 && Progress() < 0.9; }

void WindowWalk::ExpectCleanEnd() const {
  EXPECT_THAT(Files(), testing::ElementsAre("Orv.pt", "paplog.txt", "program", "registry.reg",
                                            "welkom.txt"));
  EXPECT_EQ(Setting("PTLocation"), "(none)") << "the choices are not stored";
  ExpectSound();
}

void WindowWalk::ExpectStep(const std::string& title, const std::string& buttons) {
  EXPECT_EQ(Ask<std::string>(Title), title);
  EXPECT_EQ(Ask<std::string>(Buttons), buttons);
}

void WindowWalk::GoTo(const std::string& title) {
  while (Ask<std::string>(Title) != title) Press(kNext);
}

void WindowWalk::GoToSelect() {
  GoTo(kTarget);
  Switch(kBackup);
  GoTo(kDownload);
  Switch(kDoNotCheck);
  GoTo(kSelect);
}

void WindowWalk::CheckOnly(const std::vector<std::size_t>& rows) {
  const std::vector<std::string> shown = RowsNow();
  for (std::size_t row = 0; row < shown.size(); ++row) {
    const bool wanted = std::find(rows.begin(), rows.end(), row) != rows.end();
    if (wanted != shown[row].starts_with("x")) walks::Check(row, wanted);
  }
}

std::string WindowWalk::Setting(const std::string& name) const {
  return UserSetting(*registry_, kUserKey, name).value_or("(none)");
}

std::vector<std::string> WindowWalk::Register() const {
  std::vector<std::string> names;
  GetProcessedCollection(files::ToText(table));
  if (!ProcessedPaps()) return names;
  for (const auto& pap : *ProcessedPaps()) names.push_back(text::WideToUtf8(pap->FilePath));
  ProductConnection.reset();
  return names;
}

std::vector<std::string> WindowWalk::Files() const {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(installation)) {
    if (entry.is_regular_file()) names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

jet::OpenOptions WindowWalk::WithPassword() {
  jet::OpenOptions options;
  options.password = text::WideToUtf16(kProductTablePassword);
  return options;
}

void WindowWalk::ExpectSound() const {
  EXPECT_THAT(jet::CheckFile(table, WithPassword()).problems, testing::IsEmpty());
  const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
  test_support::KeepForOtherReaders(table, std::string(test.name()) + ".pt");
}

}  // namespace walks
