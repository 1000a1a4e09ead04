// Paths on servers, short paths and links.
#include "platform/files/paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "platform/files/file_copy.h"
#include "platform/files/folder.h"
#include "tests/support/temporary_folder.h"

namespace files {
namespace {

using test_support::ReadAll;
using test_support::TemporaryFolder;

// A folder of this machine by the path that other machines have for it; empty where there is none.
// Made under Wine, with nothing in it.
std::wstring FolderOnServer(const TemporaryFolder& folder) {
  std::wstring path = folder.Text("");
  if (const wchar_t* const wine = _wgetenv(L"WINEPREFIX")) {
    // Servers are folders there.
    std::filesystem::create_directories(
        ToPath(L"Z:" + std::wstring(wine) + L"\\dosdevices\\unc\\localhost\\orvpap-test"));
    path = L"\\\\localhost\\orvpap-test\\" + std::to_wstring(GetCurrentProcessId());
    std::filesystem::create_directory(ToPath(path));
  } else {
    path[1] = L'$';
    path = L"\\\\localhost\\" + path;
  }
  return FolderExists(path) ? path : std::wstring();
}

TEST(WindowsPathsTest, ServersAndDrivesMakePathsAbsolute) {
  const std::wstring here = ToText(std::filesystem::current_path());
  const struct {
    const wchar_t* path;
    bool absolute;
    std::wstring made_absolute;
  } cases[] = {{L"\\\\server\\share\\Orv.pt", true, L"\\\\server\\share\\Orv.pt"},
               {L"//server/share/map/../Orv.pt", true, L"\\\\server\\share\\Orv.pt"},
               {L"\\\\?\\C:\\Orv.pt", true, L"\\\\?\\C:\\Orv.pt"},
               {L"C:\\map\\.\\Orv.pt", true, L"C:\\map\\Orv.pt"},
               {L"c:/Orv.pt", true, L"c:\\Orv.pt"},
               {L"\\Orv.pt", false, here.substr(0, 2) + L"\\Orv.pt"},
               {L"map\\Orv.pt", false, here + L"\\map\\Orv.pt"},
               {L"Orv.pt", false, here + L"\\Orv.pt"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.path);
    EXPECT_EQ(IsAbsolute(c.path), c.absolute);
    EXPECT_EQ(AbsolutePath(c.path), c.made_absolute);
  }
  EXPECT_FALSE(IsAbsolute(L"C:Orv.pt"));
  EXPECT_FALSE(IsAbsolute(L""));
}

TEST(WindowsPathsTest, FilesOnServersAreFoundAndCopied) {
  const TemporaryFolder temporary;
  const std::wstring folder = FolderOnServer(temporary);
  if (folder.empty()) GTEST_SKIP() << "no folder of this machine is shared";
  temporary.Write("new", "new");
  const std::wstring target = folder + L"\\target";
  for (int copy = 1; copy <= 2; ++copy) {  // over nothing, and over a file
    CopyFileAtomically(temporary.Text("new"), target);
    EXPECT_EQ(ReadAll(ToPath(target)), "new");
  }
  EXPECT_THAT(FilesIn(folder), testing::Contains(target));
  EXPECT_NE(ShortPath(folder), L"") << "it exists, whether it has a short name or not";
  RemoveFile(target);
  if (_wgetenv(L"WINEPREFIX") != nullptr) RemoveDirectoryW(folder.c_str());
}

TEST(WindowsPathsTest, AFolderWithoutShortPathKeepsItsOwnAndCanBeWrittenTo) {
  const TemporaryFolder folder;
  EXPECT_EQ(ShortPath(folder.Text("missing")), L"");
  // Longer than any short path that is wanted.
  std::filesystem::path deep = L"\\\\?\\" + folder.Text("");
  for (int i = 0; i < 3; ++i) {
    deep /= std::wstring(100, L'x');
    ASSERT_NE(CreateDirectoryW(deep.c_str(), nullptr), 0);
  }
  EXPECT_NE(ShortPath(deep.wstring()), L"");
  const std::wstring file = (deep / L"new").wstring().substr(4);
  folder.Write("source", "x");
  CopyFileAtomically(folder.Text("source"), file);
  EXPECT_NE(DeleteFileW((L"\\\\?\\" + file).c_str()), 0);
  for (; deep.filename().wstring().size() == 100; deep = deep.parent_path()) {
    RemoveDirectoryW(deep.c_str());
  }
}

TEST(WindowsPathsTest, ALinkIsFollowedToItsFile) {
  const TemporaryFolder folder;
  const auto file = folder.Write("file", "old");
  const auto link = folder / "link";
  if (CreateSymbolicLinkW(link.c_str(), file.c_str(),
                          SYMBOLIC_LINK_FLAG_ALLOW_UNPRIVILEGED_CREATE) == 0 ||
      !std::filesystem::exists(link)) {
    GTEST_SKIP() << "no links can be made here";
  }
  EXPECT_EQ(FollowLink(file), file);
  folder.Write("new", "new");
  CopyFileAtomically(folder.Text("new"), ToText(link));
  EXPECT_EQ(ReadAll(file), "new");
}

}  // namespace
}  // namespace files
