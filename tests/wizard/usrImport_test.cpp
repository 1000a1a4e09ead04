// The import page: what it lists, logs, backs up and records, in which order, and what becomes of
// that where something is in the way.
#include "wizard/usrImport.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <sstream>
#include <utility>

#include "platform/files/file_lock.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "store/modProductTable.h"
#include "tests/support/recording_clipboard.h"
#include "tests/support/surface_test.h"
#include "updates/modSharedPap.h"
#include "updates/modSharedPapRegister.h"

namespace {

using test_support::ReadAll;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using text::WideToUtf8;

constexpr char kSeparator[] = "=========================";

// A price for an article that there is not: the last line of an update that is refused there.
constexpr char kRefusedPrice[] = "[UPDATE PRICEDATA]\r\nX,1,1,1,1,1,,,\r\n";

// The page on a product table, with update files written as texts; keeps what it tells.
class usrImportTest : public test_support::ProductTableTest {
 protected:
  usrImportTest() {
    settings.objClipboard = &clipboard;
    settings.strProgramFolder = folder.Text("program");
    std::filesystem::create_directory(folder / "program");
    page.SetStepText = [this](const std::wstring& vCaption) {
      heard.push_back("step " + WideToUtf8(vCaption));
    };
    page.AanzettenVolgende = [this](bool vAan) { heard.emplace_back(vAan ? "next" : "no next"); };
    page.AanzettenVorige = [this](bool vAan) { heard.emplace_back(vAan ? "back" : "no back"); };
  }

  // Adds an update of supplier S1 for the assortment BEAMS to those that Start applies. The file
  // brings both along and ends with these lines.
  clsOrvPap& Add(const std::wstring& vFileName, const std::string& vLines = "") {
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

  // Runs the import of the updates added; the page must not know them afterwards.
  bool Start(bool vMakeBackup = false) {
    CloseConnection();
    heard.clear();
    const bool result = page.StartImport(product_table, updates, vMakeBackup);
    for (const auto& update : updates) {
      EXPECT_EQ(update.use_count(), 1);
      EXPECT_FALSE(update->ShowListMessage || update->ProgressInit || update->ProgressCurrent);
    }
    return result;
  }

  // The list, a line an item, "message|detail"; a red one begins with "! ".
  std::vector<std::string> Listed() const {
    std::vector<std::string> lines;
    for (const controls::ListItem& item : page.lvResults.Items()) {
      EXPECT_EQ(item.sub_items.size(), 1U);
      EXPECT_FALSE(item.selected);
      lines.push_back((item.colour == controls::kRed ? "! " : "") + WideToUtf8(item.text) + "|" +
                      WideToUtf8(item.sub_items.at(0)));
    }
    return lines;
  }
  // What the list shows of an update that is applied: these lines.
  static std::vector<std::string> Applied(const clsOrvPap& vOrvPap) {
    return {"#59|" + WideToUtf8(vOrvPap.FilePath), "#60|BEAMS - Beams", "#61|S1 - First",
            "#59|#62"};
  }
  // The lines of the log.
  std::vector<std::string> Logged() const {
    std::istringstream bytes(test_support::ReadAll(log));
    std::vector<std::string> lines;
    for (std::string line; std::getline(bytes, line);) {
      EXPECT_TRUE(line.ends_with('\r')) << line;
      if (line.ends_with('\r')) line.pop_back();
      lines.push_back(line);
    }
    return lines;
  }
  // File names and times of the register.
  std::vector<std::string> Register() {
    auto rows =
        Rows(L"SELECT * FROM PriceUpdates ORDER BY FileName", {L"FileName", L"DateProcessed"});
    CloseConnection();
    return rows;
  }
  // Text 57 of a backup made by Add's updates.
  std::string BackupLine() const { return "#57|" + WideToUtf8(files::ToText(backup)); }

  const std::filesystem::path backup = folder / "BEAMS_S1_20260105.pt";
  const std::filesystem::path log = folder / "program/paplog.txt";

  test_support::RecordingClipboard clipboard;
  usrImport page;
  std::vector<std::string> heard;  // the page's events, in their order
  std::vector<std::shared_ptr<clsOrvPap>> updates;
};

// An update that was applied before fails now and is withdrawn; those around it are applied.
TEST_F(usrImportTest, ThreeUpdatesTheSecondOfWhichIsRefused) {
  const clsOrvPap& first = Add(L"first.PRC");
  clsOrvPap& second = Add(L"second.PRC", kRefusedPrice);
  clsOrvPap& third = Add(L"third.PRC");
  second.PrcDate += 1;
  third.PrcDate += 2;
  ASSERT_TRUE(SetPapProcessed(product_table, second, true));
  const std::string before = ReadAll(files::ToPath(product_table));
  EXPECT_FALSE(Start(true));
  EXPECT_THAT(heard, ElementsAre("step #51 #10", "next", "back"));
  const std::string backup_of_second = WideToUtf8(folder.Text("BEAMS_S1_20260106.pt"));
  std::vector<std::string> expected = {BackupLine()};
  const auto expect = [&expected](const std::vector<std::string>& vLines) {
    expected.insert(expected.end(), vLines.begin(), vLines.end());
  };
  expect(Applied(first));
  expect({"#57|" + backup_of_second});
  expect(Applied(second));
  expected.insert(expected.end() - 1, "! #64|#101 X");
  expect({"#57|" + WideToUtf8(folder.Text("BEAMS_S1_20260107.pt"))});
  expect(Applied(third));
  EXPECT_EQ(Listed(), expected);
  EXPECT_THAT(Boxes(), IsEmpty());
  EXPECT_THAT(Register(),
              ElementsAre("first.PRC|2023-03-15 12:00:00", "third.PRC|2023-03-15 12:00:00"));
  EXPECT_TRUE(ReadAll(backup) == before);
  EXPECT_TRUE(OpenProductTable(folder.Text("BEAMS_S1_20260107.pt")));
}

// What is not shown is logged all the same, each message once and in its place.
TEST_F(usrImportTest, EveryMessageIsLogged) {
  const clsOrvPap& update = Add(L"update.PRC", kRefusedPrice);
  folder.Write("program/paplog.txt", "of an earlier run");
  Start(true);
  EXPECT_THAT(Logged(),
              ElementsAre(kSeparator, "#55: " + WideToUtf8(product_table),
                          "#57: " + WideToUtf8(files::ToText(backup)),
                          "#59: " + WideToUtf8(update.FilePath), "#60: BEAMS - Beams",
                          "#61: S1 - First", "#63: 1", "#96: S1 - First", "#65: 1",
                          "#82: BEAMS - Beams", "#60: 1", "#89: BEAMS - S1", "#69: 0", "#70: 0",
                          "#71: 0", "#76: 1", "#64: #101 X", "#78: ", "#59: #62", kSeparator));
}

TEST_F(usrImportTest, AnotherDatabaseIsRefusedBeforeAnythingIsTouched) {
  Add(L"update.PRC");
  SetIdentity(L"VerMajor", std::int32_t{4});
  const std::string before = ReadAll(files::ToPath(product_table));
  const std::string text = "#54 " + WideToUtf8(product_table);
  EXPECT_FALSE(Start(true));
  EXPECT_THAT(Listed(), ElementsAre("! " + text + "|"));
  EXPECT_THAT(Boxes(), ElementsAre(text));
  EXPECT_THAT(heard, ElementsAre("step #51 #10"));
  EXPECT_THAT(Logged(), ElementsAre(kSeparator, text + ": ", kSeparator));
  EXPECT_FALSE(ProductConnection);
  EXPECT_TRUE(ReadAll(files::ToPath(product_table)) == before);
  EXPECT_FALSE(std::filesystem::exists(backup));
}

TEST_F(usrImportTest, TheBarGoesThroughTheRecordsOfAStep) {
  using Shown = std::pair<std::int32_t, std::int32_t>;  // maximum and value
  std::vector<Shown> steps;                             // what a window could show, one by one
  std::size_t seen = 0;
  pump.meanwhile = [&] {
    steps.emplace_back(page.pBar.Max(), page.pBar.Value());
    EXPECT_LE(page.lvResults.Items().size(), seen + 1) << "a message was not shown at once";
    seen = page.lvResults.Items().size();
  };
  Add(L"update.PRC", "[NEW SERIE]\r\nA,a,1,True,\r\nB,b,1,True,\r\nC,c,1,True,\r\n");
  EXPECT_TRUE(Start());
  // The next step's first message still finds the bar full; without records it is a bar of 1.
  const Shown of_three[] = {{1, 1}, {3, 1}, {3, 1}, {3, 2}, {3, 3}, {3, 3}, {1, 1}};
  EXPECT_NE(std::search(steps.begin(), steps.end(), std::begin(of_three), std::end(of_three)),
            steps.end())
      << testing::PrintToString(steps);
  EXPECT_EQ(std::count_if(steps.begin(), steps.end(), [](const Shown& s) { return s.first == 3; }),
            5);
  EXPECT_EQ(steps.back(), Shown(1, 1));
}

TEST_F(usrImportTest, TheClipboardGetsALineAnItem) {
  page.cmdCopyToClipboard.Press();
  EXPECT_EQ(clipboard.text, L"");
  const clsOrvPap& update = Add(L"update.PRC");
  Start();
  EXPECT_EQ(page.cmdCopyToClipboard.ToolTip(), L"#58");
  const std::wstring lines =
      L"#59\t" + update.FilePath + L"\r\n#60\tBEAMS - Beams\r\n#61\tS1 - First\r\n#59\t#62\r\n";
  page.cmdCopyToClipboard.Press();
  page.cmdCopyToClipboard.Press();
  EXPECT_EQ(clipboard.text, lines);
  clipboard.failure = text::RuntimeError(521, L"Can't open Clipboard");
  page.cmdCopyToClipboard.Press();
  EXPECT_THAT(Boxes(), ElementsAre(AllOf(HasSubstr("usrImport.cmdCopyToClipboard_Click (Sub)"),
                                         HasSubstr("Error = 521: Can't open Clipboard"))));
}

TEST_F(usrImportTest, NothingChosenIsALineAndAReportOfTheMissingLog) {
  Add(L"refused.PRC", kRefusedPrice);
  EXPECT_FALSE(Start());
  const std::string logged = ReadAll(log);
  updates.clear();
  EXPECT_FALSE(Start());
  EXPECT_THAT(Listed(), ElementsAre("! #52|"));
  EXPECT_THAT(heard, ElementsAre("step #51 #10"));
  EXPECT_THAT(Boxes(), ElementsAre(AllOf(HasSubstr("Procedure = tmpOrvPap_ShowListMessage (Sub)"),
                                         HasSubstr("Error = 91: "))));
  EXPECT_EQ(ReadAll(log), logged);

  const clsOrvPap& update = Add(L"update.PRC");
  EXPECT_TRUE(Start()) << "the errors of earlier runs are forgotten";
  EXPECT_EQ(Listed(), Applied(update));
}

TEST_F(usrImportTest, ALogThatCannotBeWrittenIsToldOnceAndMissed) {
  std::filesystem::create_directory(log);
  const clsOrvPap& update = Add(L"update.PRC");
  EXPECT_TRUE(Start());
  EXPECT_EQ(Listed(), Applied(update));
  EXPECT_THAT(Boxes(), ElementsAre(HasSubstr("Procedure = StartLog\r\nError = 7")));
  EXPECT_THAT(Register(), SizeIs(1));
  EXPECT_FALSE(page.Complete());
}

// Somebody takes the product table between two updates: the update in hand is not applied and not
// recorded, which message boxes tell; the next one is.
TEST_F(usrImportTest, AProductTableThatIsTakenMeanwhileCostsTheUpdateInHand) {
  const std::string text = "#56 " + WideToUtf8(product_table);
  Add(L"first.PRC");
  Add(L"second.PRC");
  const clsOrvPap& third = Add(L"third.PRC");
  std::optional<files::FileLock> somebody;
  pump.meanwhile = [&] {
    const std::size_t lines = page.lvResults.Items().size();
    constexpr std::size_t kSecondBackup = 1 + 4 + 1;
    if (lines == kSecondBackup && !somebody) {
      somebody.emplace(files::ToPath(product_table), files::MissingFile::kHoldNothing);
    } else if (lines > kSecondBackup) {
      somebody.reset();
    }
  };
  EXPECT_TRUE(Start(true)) << "no message was an error";
  EXPECT_FALSE(page.Complete());
  std::vector<std::string> lines = Listed();
  ASSERT_EQ(lines.size(), 1 + 4 + 1 + 1 + 4U);
  EXPECT_EQ(std::vector(lines.end() - 4, lines.end()), Applied(third));
  std::vector<std::string> boxes = Boxes();
  // The third one's backup fails where nobody can read a file that somebody else has taken.
  std::erase_if(boxes, [](const std::string& box) { return box.starts_with("#1071 "); });
  EXPECT_THAT(boxes, ElementsAre(HasSubstr("Error = 3045: "), text,  // applying
                                 HasSubstr("Error = 3045: "), text,  // recording
                                 "#1072 " + WideToUtf8(updates[1]->FilePath)));
  EXPECT_THAT(Register(), ElementsAre(HasSubstr("first.PRC|"), HasSubstr("third.PRC|")));
}

// The update is applied; what failed is told at the end, since no line of the list is red.
TEST_F(usrImportTest, AnUpdateThatTheRegisterCannotTakeIsTold) {
  const clsOrvPap& update = Add(std::wstring(196, L'x') + L".PRC");  // longer than the column
  EXPECT_TRUE(Start());
  EXPECT_FALSE(page.Complete());
  EXPECT_EQ(Listed(), Applied(update));
  EXPECT_THAT(Boxes(), ElementsAre(HasSubstr("Error = "), "#1072 " + WideToUtf8(update.FilePath)));
  EXPECT_THAT(Register(), IsEmpty());
}

// An update that somebody sent must not overwrite what lies elsewhere: codes that no file name can
// hold make no backup, and the import goes on.
TEST_F(usrImportTest, ABackupStaysBesideTheProductTable) {
  clsOrvPap& update = Add(L"update.PRC");
  const auto elsewhere = folder.Write("elsewhere/zz_S1_20260105.pt", "somebody else's");
  const auto data = folder / files::ToPath(L"O'Neill & \u0416 %s");
  const auto table = data / files::ToPath(L"\u0416'.pt");
  std::filesystem::create_directory(data);
  std::filesystem::copy_file(files::ToPath(product_table), table);
  for (const std::wstring& way :
       {std::wstring(L"../elsewhere/zz"), std::wstring(L"..\\elsewhere\\zz"),
        folder.Text("elsewhere/zz"), std::wstring(L"zz:stream"), std::wstring(400, L'z')}) {
    SCOPED_TRACE(WideToUtf8(way));
    update.AssortmentCode = way;
    EXPECT_FALSE(page.StartImport(files::ToText(table), updates, true)) << "no such assortment";
    EXPECT_THAT(Listed().front(), testing::EndsWith("_S1_20260105.pt"));
    EXPECT_THAT(Boxes(), ElementsAre(testing::StartsWith("#1071 ")));
    const std::filesystem::directory_iterator beside(data);
    EXPECT_EQ(std::distance(begin(beside), end(beside)), 1) << "the product table alone";
  }
  EXPECT_EQ(ReadAll(elsewhere), "somebody else's");

  update.AssortmentCode = L"BEAMS";
  const std::string before = ReadAll(table);
  EXPECT_TRUE(page.StartImport(files::ToText(table), updates, true)) << "whatever its own path";
  EXPECT_TRUE(ReadAll(data / backup.filename()) == before);
}

TEST_F(usrImportTest, AProductTableWithoutAFolderIsBackedUpBesideItself) {
  Add(L"update.PRC");
  const std::string before = ReadAll(files::ToPath(product_table));
  const auto started_in = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  const bool done = page.StartImport(L"Orv.pt", updates, true);
  std::filesystem::current_path(started_in);
  EXPECT_TRUE(done);
  EXPECT_EQ(Listed().front(), BackupLine());
  EXPECT_EQ(ReadAll(backup), before);
}

// The log is begun over: by whatever name, it must not be a file of this run.
TEST_F(usrImportTest, ALogOverAFileOfTheRunIsRefused) {
  const clsOrvPap& update = Add(L"update.PRC");
  const auto table = files::ToPath(product_table);
  for (const auto& file : {table, files::ToPath(update.FilePath)}) {
    const std::string before = ReadAll(file);
    std::filesystem::create_hard_link(file, log);
    EXPECT_FALSE(Start(true));
    EXPECT_THAT(Boxes(), ElementsAre(AllOf(HasSubstr("usrImport.StartImport (Function)"),
                                           HasSubstr("Error = 70: "))));
    EXPECT_EQ(ReadAll(file), before);
    EXPECT_FALSE(std::filesystem::exists(backup));
    std::filesystem::remove(log);
  }
}

// The list and the log show the beginning of a code that goes on for millions of characters.
TEST_F(usrImportTest, ALongCodeIsClipped) {
  Add(L"update.PRC", "[UPDATE PRICEDATA]\r\n" + std::string(5'000'000, 'Y') + ",1,1,1,1,1,,,\r\n");
  EXPECT_FALSE(Start());
  const std::vector<std::string> lines = Listed();
  ASSERT_THAT(lines, SizeIs(5));
  EXPECT_THAT(lines[3], AllOf(testing::StartsWith("! #64|#101 YYY"), testing::EndsWith("Y...")));
  EXPECT_LT(lines[3].size(), 1100U);
  EXPECT_LT(std::filesystem::file_size(log), 10'000U);
}

}  // namespace
