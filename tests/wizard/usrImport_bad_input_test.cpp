// The import page where something is in the way: the log, the backup, the product table, a name.
#include <gmock/gmock.h>

#include <optional>

#include "platform/files/file_lock.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "tests/support/file_protection.h"
#include "tests/wizard/import_page_test.h"

namespace {

using test_support::ReadAll;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class usrImportBadInputTest : public ImportPageTest {
 protected:
  // Keeps everybody else out of the product table from the moment at which the list has this many
  // lines until it has more.
  void LockProductTableAt(std::size_t vLines) {
    pump.meanwhile = [this, vLines] {
      const std::size_t lines = page.lvResults.Items().size();
      if (lines == vLines && !m_somebody) {
        m_somebody.emplace(files::ToPath(product_table), files::MissingFile::kHoldNothing);
      } else if (lines > vLines) {
        m_somebody.reset();
      }
    };
  }

 private:
  std::optional<files::FileLock> m_somebody;
};

TEST_F(usrImportBadInputTest, ALogThatCannotBeWrittenIsToldOnceAndMissed) {
  std::filesystem::create_directory(log);
  const clsOrvPap& update = Add(L"update.PRC");
  EXPECT_TRUE(Start());
  EXPECT_EQ(Listed(), Applied(update));
  EXPECT_THAT(Boxes(), ElementsAre(HasSubstr("Procedure = StartLog\r\nError = 7")));
  EXPECT_THAT(Register(), SizeIs(1));
}

TEST_F(usrImportBadInputTest, ABackupThatCannotBeMadeStopsNothing) {
  std::filesystem::create_directory(backup);
  Add(L"update.PRC");
  EXPECT_TRUE(Start(true));
  EXPECT_EQ(Listed().front(), BackupLine());
  EXPECT_THAT(Boxes(), ElementsAre("#1071 " + backup.string()));
  EXPECT_THAT(Register(), SizeIs(1));

  std::filesystem::remove(backup);
  folder.Write(backup.filename(), "an earlier backup");
  const files::FileLock somebody(backup, files::MissingFile::kHoldNothing);
  EXPECT_TRUE(Start(true));
#ifndef _WIN32
  EXPECT_EQ(ReadAll(backup), "an earlier backup");
#endif
}

TEST_F(usrImportBadInputTest, AProductTableThatIsMissingOrInUseIsRefused) {
  Add(L"update.PRC");
  const std::string text = "#56 " + text::WideToUtf8(product_table);
  {
    const files::FileLock somebody(files::ToPath(product_table), files::MissingFile::kHoldNothing);
    EXPECT_FALSE(Start(true));
    EXPECT_THAT(Listed(), ElementsAre("! " + text + "|"));
    EXPECT_THAT(Boxes(), ElementsAre(HasSubstr("Error = 3045: "), text));
  }
  std::filesystem::remove(files::ToPath(product_table));
  EXPECT_FALSE(Start(true));
  EXPECT_THAT(Listed(), ElementsAre("! " + text + "|"));
  EXPECT_THAT(Boxes(), ElementsAre(HasSubstr("Error = 3024: "), text));
  EXPECT_FALSE(std::filesystem::exists(backup));
  EXPECT_THAT(Logged(), SizeIs(3));
}

// Such a file can be opened: the first record is refused, and so is the register.
TEST_F(usrImportBadInputTest, AProductTableForReadingOnlyStaysAsItIs) {
  Add(L"update.PRC");
  const auto path = files::ToPath(product_table);
  const std::string before = ReadAll(path);
  std::filesystem::permissions(folder / "program", std::filesystem::perms::all);
  {
    const test_support::WriteProtection protection(path);
    if (!protection.Holds()) GTEST_SKIP() << "this account may write to any file";
    EXPECT_FALSE(Start(true));
  }
  EXPECT_THAT(Listed().back(), testing::StartsWith("! #64|3027: "));
  EXPECT_THAT(Boxes(), ElementsAre(AllOf(HasSubstr("modSharedPap.SetPapProcessed (Function)"),
                                         HasSubstr("Error = 3027: ")),
                                   HasSubstr("#1071 "), HasSubstr("#1072 ")));
  EXPECT_TRUE(ReadAll(path) == before);
}

// Somebody takes the product table between two updates: the update in hand is not applied and not
// recorded, which message boxes tell; the next one is.
TEST_F(usrImportBadInputTest, AProductTableThatIsTakenMeanwhileCostsTheUpdateInHand) {
  const std::string text = "#56 " + text::WideToUtf8(product_table);
  Add(L"first.PRC");
  Add(L"second.PRC");
  const clsOrvPap& third = Add(L"third.PRC");
  LockProductTableAt(1 + 4 + 1);  // at the second update's backup
  EXPECT_TRUE(Start(true)) << "no message was an error";
  EXPECT_FALSE(page.Complete());
  std::vector<std::string> lines = Listed();
  ASSERT_EQ(lines.size(), 1 + 4 + 1 + 1 + 4U);
  EXPECT_EQ(std::vector(lines.end() - 4, lines.end()), Applied(third));
  EXPECT_THAT(Boxes(), ElementsAre(HasSubstr("Error = 3045: "), text,  // applying
                                   HasSubstr("Error = 3045: "), text,  // recording
                                   "#1072 " + text::WideToUtf8(updates[1]->FilePath)));
  EXPECT_THAT(Register(), ElementsAre(HasSubstr("first.PRC|"), HasSubstr("third.PRC|")));
}

// The update is applied whatever its name; what the register cannot hold is told.
TEST_F(usrImportBadInputTest, AnyFileNameIsApplied) {
  const std::vector<std::string> unrecorded = {
      "Procedure = modSharedPap.SetPapProcessed (Function)", "#1072 "};
  const struct {
    const char* name;
    std::wstring file;
    std::vector<std::string> reports;
    std::string logged;  // the end of the log line; outside the code page a question mark
  } cases[] = {
      {"200 characters", std::wstring(196, L'x') + L".PRC", unrecorded, "xxx.PRC"},
      {"accents", L"Pr\u00E9.PRC", {}, "Pr\xE9.PRC"},
      {"another alphabet", L"\u0416\u0416.PRC", unrecorded, "??.PRC"},
  };
  std::size_t recorded = 0;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    updates.clear();
    const clsOrvPap& update = Add(c.file);
    EXPECT_TRUE(Start());
    EXPECT_EQ(Listed(), Applied(update));
    std::vector<std::string> boxes = Boxes();
    ASSERT_EQ(boxes.size(), c.reports.size()) << testing::PrintToString(boxes);
    for (std::size_t i = 0; i < boxes.size(); ++i) EXPECT_THAT(boxes[i], HasSubstr(c.reports[i]));
    EXPECT_THAT(Logged(), testing::Contains(
                              AllOf(testing::StartsWith("#59: "), testing::EndsWith(c.logged))));
    if (c.reports.empty()) ++recorded;
    EXPECT_THAT(Register(), SizeIs(recorded));
  }
}

// An update that somebody sent must not overwrite what lies elsewhere: codes that no file name can
// hold make no backup, and the import goes on.
TEST_F(usrImportBadInputTest, ABackupStaysBesideTheProductTable) {
  clsOrvPap& update = Add(L"update.PRC");
  const auto elsewhere = folder.Write("elsewhere/zz_S1_20260105.pt", "somebody else's");
  const auto data = folder / files::ToPath(L"O'Neill & \u0416 %s");
  const auto table = data / files::ToPath(L"\u0416'.pt");
  std::filesystem::create_directories(data / "sub");
  std::filesystem::copy_file(files::ToPath(product_table), table);
  for (const std::wstring& way :
       {std::wstring(L"../elsewhere/zz"), std::wstring(L"..\\elsewhere\\zz"),
        folder.Text("elsewhere/zz"), std::wstring(L"no/where/at:zz"), std::wstring(L"sub/zz"),
        std::wstring(L"zz:stream"), std::wstring(400, L'z')}) {
    SCOPED_TRACE(text::WideToUtf8(way));
    update.AssortmentCode = way;
    EXPECT_FALSE(page.StartImport(files::ToText(table), updates, true)) << "no such assortment";
    EXPECT_THAT(Listed().front(), testing::EndsWith("_S1_20260105.pt"));
    EXPECT_THAT(Boxes(), ElementsAre(testing::StartsWith("#1071 ")));
    std::vector<std::filesystem::path> beside;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(data))
      beside.push_back(entry.path());
    EXPECT_THAT(beside, testing::UnorderedElementsAre(table, data / "sub"));
  }
  EXPECT_EQ(ReadAll(elsewhere), "somebody else's");

  update.AssortmentCode = L"BEAMS";
  const std::string before = ReadAll(table);
  EXPECT_TRUE(page.StartImport(files::ToText(table), updates, true)) << "whatever its own path";
  EXPECT_TRUE(ReadAll(data / backup.filename()) == before);
}

TEST_F(usrImportBadInputTest, AProductTableWithoutAFolderIsBackedUpBesideItself) {
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
TEST_F(usrImportBadInputTest, ALogOverAFileOfTheRunIsRefused) {
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
TEST_F(usrImportBadInputTest, ALongCodeIsClipped) {
  Add(L"update.PRC", "[UPDATE PRICEDATA]\r\n" + std::string(5'000'000, 'X') + ",1,1,1,1,1,,,\r\n");
  EXPECT_FALSE(Start());
  const std::vector<std::string> lines = Listed();
  ASSERT_THAT(lines, SizeIs(5));
  EXPECT_THAT(lines[3], AllOf(testing::StartsWith("! #64|#101 XXX"), testing::EndsWith("X...")));
  EXPECT_LT(lines[3].size(), 1100U);
  EXPECT_LT(std::filesystem::file_size(log), 10'000U);
}

}  // namespace
