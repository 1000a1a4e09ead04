// The import page: what it lists, logs, backs up and records, and in which order.
#include "wizard/usrImport.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "demo/product_table.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "store/modProductTable.h"
#include "tests/wizard/import_page_test.h"
#include "updates/modSharedPapRegister.h"

namespace {

using test_support::ReadAll;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kSeparator[] = "=========================";

class usrImportTest : public ImportPageTest {};

// What is not shown is logged all the same, each message once and in its place.
TEST_F(usrImportTest, EveryMessageIsLogged) {
  const clsOrvPap& update = Add(L"update.PRC", kRefusedPrice);
  folder.Write("program/paplog.txt", "of an earlier run");
  Start(true);
  EXPECT_THAT(Logged(),
              ElementsAre(kSeparator, "#55: " + text::WideToUtf8(product_table),
                          "#57: " + text::WideToUtf8(files::ToText(backup)),
                          "#59: " + text::WideToUtf8(update.FilePath), "#60: BEAMS - Beams",
                          "#61: S1 - First", "#63: 1", "#96: S1 - First", "#65: 1",
                          "#82: BEAMS - Beams", "#60: 1", "#89: BEAMS - S1", "#69: 0", "#70: 0",
                          "#71: 0", "#76: 1", "#64: #101 X", "#78: ", "#59: #62", kSeparator));
}

TEST_F(usrImportTest, NothingChosenIsALineAndAReportOfTheMissingLog) {
  EXPECT_FALSE(Start());
  EXPECT_THAT(Listed(), ElementsAre("! #52|"));
  EXPECT_THAT(heard, ElementsAre("step #51 #10"));
  EXPECT_THAT(Boxes(), ElementsAre(AllOf(HasSubstr("Procedure = tmpOrvPap_ShowListMessage (Sub)"),
                                         HasSubstr("Error = 91: "))));
  EXPECT_FALSE(std::filesystem::exists(log));

  // The same after a run that had a log.
  Add(L"update.PRC");
  EXPECT_TRUE(Start());
  updates.clear();
  const std::string logged = ReadAll(log);
  EXPECT_FALSE(Start());
  EXPECT_THAT(Boxes(), SizeIs(1));
  EXPECT_EQ(ReadAll(log), logged);
}

TEST_F(usrImportTest, ANewRunForgetsTheListAndTheErrorsOfTheLast) {
  Add(L"refused.PRC", kRefusedPrice);
  EXPECT_FALSE(Start());
  updates.clear();
  const clsOrvPap& update = Add(L"update.PRC");
  EXPECT_TRUE(Start());
  EXPECT_EQ(Listed(), Applied(update));
  EXPECT_EQ(page.ProgressBarTotal.Max(), 1);
  EXPECT_EQ(page.ProgressBarTotal.Value(), 1);
}

TEST_F(usrImportTest, EachMessageIsShownAtOnce) {
  std::size_t seen = 0;
  pump.meanwhile = [&] {
    EXPECT_LE(page.lvResults.Items().size(), seen + 1) << "a message was not shown at once";
    seen = page.lvResults.Items().size();
  };
  Add(L"update.PRC", "[NEW SERIE]\r\n");
  EXPECT_TRUE(Start());
  EXPECT_EQ(seen, 4U);
}

TEST_F(usrImportTest, AnotherDatabaseIsRefusedBeforeAnythingIsTouched) {
  Add(L"update.PRC");
  SetIdentity(L"VerMajor", std::int32_t{4});
  const std::string before = ReadAll(files::ToPath(product_table));
  const std::string text = "#54 " + text::WideToUtf8(product_table);
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
  pump.meanwhile = [&] { steps.emplace_back(page.pBar.Max(), page.pBar.Value()); };
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
  page.SetVisible(false);
  page.cmdCopyToClipboard.Press();
  EXPECT_EQ(clipboard.text, L"") << "from a page that is hidden";
  page.SetVisible(true);
  page.cmdCopyToClipboard.Press();
  page.cmdCopyToClipboard.Press();
  EXPECT_EQ(clipboard.text, lines);
  clipboard.failure = text::RuntimeError(521, L"Can't open Clipboard");
  page.cmdCopyToClipboard.Press();
  EXPECT_THAT(Boxes(), ElementsAre(AllOf(HasSubstr("usrImport.cmdCopyToClipboard_Click (Sub)"),
                                         HasSubstr("Error = 521: Can't open Clipboard"))));
}

// The window is closed in the middle of an import: nothing is held any longer, nothing is reported.
TEST_F(usrImportTest, AnImportThatIsCutOffReleasesEverything) {
  Add(L"update.PRC", kRefusedPrice);
  pump.meanwhile = [this] {
    if (Listed().size() == 3) throw ProcessEnding();
  };
  EXPECT_THROW(Start(), ProcessEnding);
  EXPECT_FALSE(ProductConnection);
  EXPECT_EQ(updates[0].use_count(), 1);
  EXPECT_FALSE(updates[0]->ShowListMessage);
  EXPECT_EQ(Logged().back(), kSeparator);
  EXPECT_THAT(Boxes(), IsEmpty());
  EXPECT_THAT(heard, ElementsAre("step #51 #10"));
  pump.meanwhile = nullptr;
  EXPECT_FALSE(Start());
  EXPECT_THAT(Listed(), SizeIs(5)) << "all of it, the second time";
}

}  // namespace
