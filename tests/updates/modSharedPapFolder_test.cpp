// The update folder: what is found in it, what is deleted from it, and where the product table is.
#include "updates/modSharedPapFolder.h"

#include <gmock/gmock.h>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "platform/files/file_error.h"
#include "platform/files/file_lock.h"
#include "platform/files/paths.h"
#include "platform/text/runtime_error.h"
#include "tests/support/error_number.h"
#include "tests/support/file_protection.h"
#include "tests/support/memory_registry.h"
#include "tests/support/numbered_texts.h"
#include "tests/support/recording_prompt.h"
#include "tests/support/temporary_folder.h"

namespace {

using test_support::ErrorNumberOf;
using test_support::ReadAll;

constexpr wchar_t kNoFolder[] = L"De folder met prijsaanpassingen is niet gevonden!";

class PapFolderTest : public testing::Test {
 protected:
  PapFolderTest() {
    m_shared.objPrompt = &m_prompt;
    m_shared.objLanguage = &m_texts;
    m_shared.objRegistry = &m_registry;
    AvailablePaps.reset();
  }
  ~PapFolderTest() override { AvailablePaps.reset(); }

  void WriteUpdate(const std::filesystem::path& vName, const std::string& vSupplier,
                   const std::string& vVersion = "3.2") const {
    m_folder.Write(vName, "[VERSION]\r\n" + vVersion + "\r\n[SUPPLIERCODE]\r\n" + vSupplier +
                              "\r\n[NEW SUPPLIER]\r\n");
  }
  bool Scan() {
    std::wstring folder = m_folder.Text("");
    return GetPapCollection(folder);
  }
  static std::vector<std::wstring> FoundNames() {
    std::vector<std::wstring> names;
    for (const auto& pap : *AvailablePaps) names.push_back(GetFileName(pap->FilePath));
    return names;
  }

  test_support::TemporaryFolder m_folder;
  test_support::RecordingPrompt m_prompt;
  test_support::NumberedTexts m_texts;
  test_support::MemoryRegistry m_registry;
  SharedSettings m_shared;
  SharedSettingsScope m_scope{m_shared};
};

TEST_F(PapFolderTest, FilesOfOurVersionAreFound) {
  const std::wstring long_name = std::wstring(150, L'x') + L".PRC";
  const std::vector<std::wstring> names = {L"a.prc", L"B.PRC", L"O'Neill.prc",
                                           L"Pr\u00E9 \u0416.Prc", long_name};
  for (const std::wstring& name : names) WriteUpdate(files::ToPath(name), "S");
  WriteUpdate("old.prc", "S", "3.1");
  WriteUpdate("nearly.prc", "S", "3.20");
  WriteUpdate("backup.prc.bak", "S");
  m_folder.Write("empty.prc", "");
  std::filesystem::create_directory(m_folder / "folder.prc");
  EXPECT_TRUE(Scan());
  EXPECT_THAT(FoundNames(), testing::UnorderedElementsAreArray(names));
  const clsOrvPap& first = *AvailablePaps->front();
  EXPECT_EQ(first.SupplierCode, L"S");
  EXPECT_EQ(first.FileSize, std::filesystem::file_size(files::ToPath(first.FilePath)));
  EXPECT_TRUE(m_prompt.messages.empty());
}

TEST_F(PapFolderTest, NothingFoundIsNoCollection) {
  WriteUpdate("a.prc", "S");
  ASSERT_TRUE(Scan());
  WriteUpdate("a.prc", "S", "3.3");
  EXPECT_FALSE(Scan());
  EXPECT_FALSE(AvailablePaps.has_value());
  EXPECT_TRUE(m_prompt.messages.empty());
}

TEST_F(PapFolderTest, AMissingFolderIsToldAndChangesNothing) {
  WriteUpdate("a.prc", "S");
  ASSERT_TRUE(Scan());
  for (std::wstring folder : {std::wstring(), m_folder.Text("missing"), m_folder.Text("a.prc")}) {
    m_prompt.messages.clear();
    EXPECT_FALSE(GetPapCollection(folder));
    ASSERT_EQ(m_prompt.messages.size(), 1U);
    EXPECT_EQ(m_prompt.messages[0].text, kNoFolder);
    EXPECT_EQ(AvailablePaps->size(), 1U);
  }
  m_prompt.messages.clear();
  EXPECT_FALSE(DelPapFiles(m_folder.Text("missing")));
  ASSERT_EQ(m_prompt.messages.size(), 1U);
  EXPECT_EQ(m_prompt.messages[0].text, kNoFolder);
}

TEST_F(PapFolderTest, AFileThatCannotBeReadEndsTheScan) {
  WriteUpdate("a.prc", "S");
  ASSERT_TRUE(Scan());
  m_folder.Write("b.prc", "[DATE]\r\n-9990101\r\n");  // outside the calendar
  WriteUpdate("c.prc", "S");
  EXPECT_EQ(ErrorNumberOf([&] { Scan(); }), text::kInvalidProcedureCall);
  EXPECT_EQ(FoundNames(), std::vector<std::wstring>{L"a.prc"});
  EXPECT_TRUE(m_prompt.messages.empty()) << "the page reports it";
}

TEST_F(PapFolderTest, AFileThatNobodyMayReadEndsTheScan) {
  WriteUpdate("a.prc", "S");
  const auto path = m_folder.Write("b.prc", "");
  const test_support::ReadProtection protection(path);
  EXPECT_EQ(ErrorNumberOf([&] { Scan(); }), files::kPermissionDenied);
  EXPECT_FALSE(AvailablePaps.has_value());
}

TEST_F(PapFolderTest, FiveThousandFilesAreScannedAndDeleted) {
  constexpr std::size_t kFiles = 5000;
  for (std::size_t i = 0; i < kFiles; ++i) {
    WriteUpdate(std::to_string(10000 + i) + ".prc", std::to_string(10000 + i));
  }
  m_folder.Write("keep.txt", "");
  ASSERT_TRUE(Scan());
  ASSERT_EQ(AvailablePaps->size(), kFiles);
  for (std::size_t i = 0; i < kFiles; ++i) {
    ASSERT_EQ((*AvailablePaps)[i]->SupplierCode, std::to_wstring(10000 + i));
  }
  std::filesystem::permissions(m_folder / "12345.prc", std::filesystem::perms::owner_read);
  EXPECT_TRUE(DelPapFiles(m_folder.Text("")));
  EXPECT_FALSE(Scan());
  EXPECT_TRUE(files::FileExists(m_folder.Text("keep.txt")));
  EXPECT_TRUE(DelPapFiles(m_folder.Text(""))) << "nothing to delete is no failure";
  EXPECT_TRUE(m_prompt.messages.empty());
}

TEST_F(PapFolderTest, CopyAndDeleteReportNothing) {
  m_folder.Write("a", "new");
  const auto target = m_folder.Write("b", "old");
  {
    const files::FileLock somebody(target, files::MissingFile::kHoldNothing);
    EXPECT_FALSE(CopyPapFile(m_folder.Text("a"), m_folder.Text("b")));
  }
  EXPECT_EQ(ReadAll(target), "old");
  EXPECT_FALSE(CopyPapFile(m_folder.Text("missing"), m_folder.Text("b")));
  EXPECT_FALSE(CopyPapFile(m_folder.Text("a"), m_folder.Text("no/where")));
  EXPECT_TRUE(CopyPapFile(m_folder.Text("a"), m_folder.Text("b")));
  EXPECT_EQ(ReadAll(target), "new");
  EXPECT_TRUE(DeletePapFile(m_folder.Text("b")));
  EXPECT_FALSE(std::filesystem::exists(target));
  EXPECT_TRUE(DeletePapFile(m_folder.Text("b")));
  EXPECT_TRUE(m_prompt.messages.empty());
}

TEST_F(PapFolderTest, TheUsersSettingThenTheMachinesThenTheProgramsFolder) {
  using registry::RootKey;
  constexpr wchar_t kKey[] = L"Software\\Velkor Software\\Orvane\\3.2\\Settings\\";
  m_shared.strProgramFolder = L"folder";
  EXPECT_EQ(GetProductTablePath(), std::wstring(L"folder") + files::Separator() + L"Orv.pt");
  m_shared.strProgramFolder = L"folder\\";
  EXPECT_EQ(GetProductTablePath(), L"folder\\Orv.pt");
  m_registry.values[{RootKey::kLocalMachine, kKey, L"ProductTable"}] = L"machine.pt";
  EXPECT_EQ(GetProductTablePath(), L"machine.pt");
  m_registry.values[{RootKey::kCurrentUser, kKey, L"ProductTable"}] = registry::OtherKind{};
  EXPECT_EQ(GetProductTablePath(), L"machine.pt");
  m_registry.values[{RootKey::kCurrentUser, kKey, L"ProductTable"}] = L"user.pt";
  EXPECT_EQ(GetProductTablePath(), L"user.pt");
  EXPECT_TRUE(m_prompt.messages.empty());
}

}  // namespace
