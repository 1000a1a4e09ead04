// The update folder: what is found in it, what is deleted from it, and where the product table is.
#include "updates/modSharedPapFolder.h"

#include <gmock/gmock.h>

#include "app/modGeneralFunctions.h"
#include "app/modMain.h"
#include "platform/files/file_error.h"
#include "platform/files/file_lock.h"
#include "platform/files/paths.h"
#include "platform/text/runtime_error.h"
#include "tests/support/error_number.h"
#include "tests/support/file_protection.h"
#include "tests/support/surface_test.h"

namespace {

using test_support::ErrorNumberOf;
using test_support::ReadAll;

constexpr char kNoFolder[] = "De folder met prijsaanpassingen is niet gevonden!";

class PapFolderTest : public test_support::SurfaceTest {
 protected:
  PapFolderTest() { AvailablePaps.reset(); }
  ~PapFolderTest() override { AvailablePaps.reset(); }

  void WriteUpdate(const std::filesystem::path& vName, const std::string& vSupplier,
                   const std::string& vVersion = "3.2") const {
    folder.Write(vName, "[VERSION]\r\n" + vVersion + "\r\n[SUPPLIERCODE]\r\n" + vSupplier +
                            "\r\n[NEW SUPPLIER]\r\n");
  }
  bool Scan() {
    std::wstring path = folder.Text("");
    return GetPapCollection(path);
  }
  static std::vector<std::wstring> FoundNames() {
    std::vector<std::wstring> names;
    for (const auto& pap : *AvailablePaps) names.push_back(GetFileName(pap->FilePath));
    return names;
  }
};

TEST_F(PapFolderTest, FilesOfOurVersionAreFound) {
  const std::wstring long_name = std::wstring(150, L'x') + L".PRC";
  const std::vector<std::wstring> names = {L"a.prc", L"B.PRC", L"O'Neill.prc",
                                           L"Pr\u00E9 \u0416.Prc", long_name};
  for (const std::wstring& name : names) WriteUpdate(files::ToPath(name), "S");
  WriteUpdate("old.prc", "S", "3.1");
  WriteUpdate("nearly.prc", "S", "3.20");
  for (const char* name : {"backup.prc.bak", "prc", "x.prcx"}) WriteUpdate(name, "S");
  folder.Write("empty.prc", "");
  std::filesystem::create_directory(folder / "folder.prc");
  EXPECT_TRUE(Scan());
  EXPECT_THAT(FoundNames(), testing::UnorderedElementsAreArray(names));

  for (const std::wstring& name : names) WriteUpdate(files::ToPath(name), "S", "3.3");
  EXPECT_FALSE(Scan());
  EXPECT_FALSE(AvailablePaps.has_value());
  EXPECT_THAT(Boxes(), testing::IsEmpty());
}

TEST_F(PapFolderTest, AMissingFolderIsToldAndChangesNothing) {
  WriteUpdate("a.prc", "S");
  ASSERT_TRUE(Scan());
  for (std::wstring path : {std::wstring(), folder.Text("missing"), folder.Text("a.prc")}) {
    EXPECT_FALSE(GetPapCollection(path));
    EXPECT_FALSE(DelPapFiles(path));
    EXPECT_THAT(Boxes(), testing::ElementsAre(kNoFolder, kNoFolder));
    EXPECT_EQ(AvailablePaps->size(), 1U);
  }
}

TEST_F(PapFolderTest, AFileThatCannotBeReadEndsTheScan) {
  WriteUpdate("a.prc", "S");
  const auto path = folder.Write("b.prc", "[DATE]\r\n-9990101\r\n");  // outside the calendar
  WriteUpdate("c.prc", "S");
  EXPECT_EQ(ErrorNumberOf([&] { Scan(); }), text::kInvalidProcedureCall);
  EXPECT_FALSE(AvailablePaps.has_value());
  {
    const test_support::ReadProtection protection(path);
    EXPECT_EQ(ErrorNumberOf([&] { Scan(); }), files::kPermissionDenied);
  }
  EXPECT_THAT(Boxes(), testing::IsEmpty()) << "the page reports it";
}

TEST_F(PapFolderTest, AllUpdatesAreDeletedAndNothingElse) {
  for (const char* name : {"a.prc", "b.PRC", "c.prc", "keep.txt"}) WriteUpdate(name, "S");
  std::filesystem::permissions(folder / "b.PRC", std::filesystem::perms::owner_read);
  EXPECT_TRUE(DelPapFiles(folder.Text("")));
  EXPECT_FALSE(Scan());
  EXPECT_TRUE(files::FileExists(folder.Text("keep.txt")));
  EXPECT_TRUE(DelPapFiles(folder.Text(""))) << "nothing to delete is no failure";
  EXPECT_THAT(Boxes(), testing::IsEmpty());
}

TEST_F(PapFolderTest, CopyAndDeleteReportNothing) {
  folder.Write("a", "new");
  const auto target = folder.Write("b", "old");
  {
    const files::FileLock somebody(target, files::MissingFile::kHoldNothing);
    EXPECT_FALSE(CopyPapFile(folder.Text("a"), folder.Text("b")));
  }
  EXPECT_EQ(ReadAll(target), "old");
  EXPECT_FALSE(CopyPapFile(folder.Text("missing"), folder.Text("b")));
  EXPECT_FALSE(CopyPapFile(folder.Text("a"), folder.Text("no/where")));
  EXPECT_TRUE(CopyPapFile(folder.Text("a"), folder.Text("b")));
  EXPECT_EQ(ReadAll(target), "new");
  EXPECT_TRUE(DeletePapFile(folder.Text("b")));
  EXPECT_FALSE(std::filesystem::exists(target));
  EXPECT_TRUE(DeletePapFile(folder.Text("b")));
  EXPECT_THAT(Boxes(), testing::IsEmpty());
}

TEST_F(PapFolderTest, TheUsersSettingThenTheMachinesThenTheProgramsFolder) {
  settings.strProgramFolder = L"folder\\";
  EXPECT_EQ(GetProductTablePath(), L"folder\\Orv.pt");
  MachineSetting(L"ProductTable") = L"machine.pt";
  auto& of_the_user =
      registry.values[{registry::RootKey::kCurrentUser, kSettingsKey, L"ProductTable"}];
  of_the_user = registry::OtherKind{};
  EXPECT_EQ(GetProductTablePath(), L"machine.pt");
  of_the_user = L"user.pt";
  EXPECT_EQ(GetProductTablePath(), L"user.pt");
}

}  // namespace
