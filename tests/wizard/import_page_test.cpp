// The import page on a product table, with update files written as texts; keeps what it tells.
#include "tests/wizard/import_page_test.h"

#include <sstream>
#include <utility>

#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "updates/modSharedPap.h"

using text::WideToUtf8;

ImportPageTest::ImportPageTest() {
  settings.objClock = &clock;
  settings.objEventPump = &pump;
  settings.objClipboard = &clipboard;
  settings.strProgramFolder = folder.Text("program");
  std::filesystem::create_directory(folder / "program");
  page.SetStepText = [this](const std::wstring& vCaption) {
    heard.push_back("step " + WideToUtf8(vCaption));
  };
  page.AanzettenVolgende = [this](bool vAan) { heard.emplace_back(vAan ? "next" : "no next"); };
  page.AanzettenVorige = [this](bool vAan) { heard.emplace_back(vAan ? "back" : "no back"); };
}

clsOrvPap& ImportPageTest::Add(const std::wstring& vFileName, const std::string& vLines) {
  auto path = folder.Write(
      files::ToPath(L"PAP32/" + vFileName),
      "[VERSION]\r\n3.2\r\n[ASSORTMENTCODE]\r\nBEAMS\r\n[ASSORTMENTDESCRIPTION]\r\nBeams\r\n"
      "[SUPPLIERCODE]\r\nS1\r\n[SUPPLIERDESCRIPTION]\r\nFirst\r\n[PRCDATE]\r\n20260105\r\n"
      "[NEW SUPPLIER]\r\nS1,First,1,2\r\n\r\n"
      "[NEW ASSORTMENT]\r\nBEAMS,Beams,1,1,True,True,0,\r\n\r\n"
      "[NEW ASSSUPPL]\r\nBEAMS,S1,1\r\n\r\n" +
          vLines);
  updates.push_back(std::make_shared<clsOrvPap>());
  ReadPapHeader(files::ToText(path.make_preferred()), *updates.back());
  return *updates.back();
}

bool ImportPageTest::Start(bool vMakeBackup) {
  CloseConnection();
  heard.clear();
  const bool result = page.StartImport(product_table, updates, vMakeBackup);
  for (const auto& update : updates) {
    EXPECT_EQ(update.use_count(), 1);
    EXPECT_FALSE(update->ShowListMessage || update->ProgressInit || update->ProgressCurrent);
  }
  return result;
}

std::vector<std::string> ImportPageTest::Listed() const {
  std::vector<std::string> lines;
  for (const controls::ListItem& item : page.lvResults.Items()) {
    EXPECT_EQ(item.sub_items.size(), 1U);
    EXPECT_FALSE(item.selected);
    lines.push_back((item.colour == controls::kRed ? "! " : "") + WideToUtf8(item.text) + "|" +
                    WideToUtf8(item.sub_items.at(0)));
  }
  return lines;
}

std::vector<std::string> ImportPageTest::Applied(const clsOrvPap& vOrvPap) {
  return {"#59|" + WideToUtf8(vOrvPap.FilePath), "#60|BEAMS - Beams", "#61|S1 - First", "#59|#62"};
}

std::vector<std::string> ImportPageTest::Logged() const {
  std::istringstream bytes(test_support::ReadAll(log));
  std::vector<std::string> lines;
  for (std::string line; std::getline(bytes, line);) {
    EXPECT_TRUE(line.ends_with('\r')) << line;
    if (line.ends_with('\r')) line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

std::vector<std::string> ImportPageTest::Register() {
  auto rows =
      Rows(L"SELECT * FROM PriceUpdates ORDER BY FileName", {L"FileName", L"DateProcessed"});
  CloseConnection();
  return rows;
}

std::string ImportPageTest::BackupLine() const {
  return "#57|" + WideToUtf8(files::ToText(backup));
}
