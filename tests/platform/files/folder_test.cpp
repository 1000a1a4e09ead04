// What a folder holds, in which order, and what can be deleted from it.
#include "platform/files/folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/files/file_error.h"
#include "platform/files/paths.h"
#include "tests/support/error_number.h"
#include "tests/support/temporary_folder.h"

namespace files {
namespace {

using test_support::ErrorNumberOf;
using test_support::TemporaryFolder;

std::vector<std::wstring> NamesIn(const TemporaryFolder& folder) {
  std::vector<std::wstring> names;
  for (const std::wstring& path : FilesIn(folder.Text(""))) {
    EXPECT_TRUE(ToPath(path).is_absolute());
    EXPECT_TRUE(FileExists(path));
    names.push_back(ToText(ToPath(path).filename()));
  }
  return names;
}

TEST(FilesInTest, ListsFilesOnlyInTheOrderOfTheSystem) {
  const TemporaryFolder folder;
  EXPECT_TRUE(FilesIn(folder.Text("")).empty());
  const std::wstring long_name = std::wstring(196, L'x') + L".prc";
  std::vector<std::wstring> names = {L"a.PRC", L"B.prc", L"c.txt", L"O'Neill.prc",
                                     L"Pr\u00E9 \u20AC \u0416.prc"};
  // The longest paths that every Windows program can open end some 40 characters behind this.
  if (folder.Text(ToPath(long_name)).size() < 259) names.push_back(long_name);
  for (const std::wstring& name : names) folder.Write(ToPath(name), "x");
  std::filesystem::create_directory(folder / "folder.prc");
#ifdef _WIN32
  EXPECT_THAT(NamesIn(folder), testing::UnorderedElementsAreArray(names));
#else
  std::filesystem::create_symlink("nowhere", folder / "broken.prc");
  EXPECT_EQ(NamesIn(folder), names);
#endif
}

#ifndef _WIN32
// A name from a system with another encoding can still be opened and deleted.
TEST(FilesInTest, NamesThatAreNoUtf8AreFoundAgain) {
  const TemporaryFolder folder;
  folder.Write("Pr\xE9 \xC3\xA9\xFF.prc", "12345");
  const auto paths = FilesIn(folder.Text(""));
  ASSERT_EQ(paths.size(), 1U);
  EXPECT_EQ(FileSize(paths[0]), 5U);
  RemoveFile(paths[0]);
  EXPECT_TRUE(FilesIn(folder.Text("")).empty());
}
#endif

TEST(FolderTest, ErrorsHaveTheirClassicNumbers) {
  const TemporaryFolder folder;
  const auto file = folder.Write("file", "");
  for (const std::wstring& path : {folder.Text("missing"), ToText(file), std::wstring()}) {
    EXPECT_EQ(ErrorNumberOf([&] { FilesIn(path); }), kPathNotFound);
  }
  EXPECT_EQ(ErrorNumberOf([&] { RemoveFile(folder.Text("missing")); }), kFileNotFound);
  EXPECT_EQ(ErrorNumberOf([&] { RemoveFile(folder.Text("no/where")); }), kPathNotFound);
  EXPECT_EQ(ErrorNumberOf([&] { RemoveFile(folder.Text("")); }), kFileNotFound);

  std::filesystem::permissions(file, std::filesystem::perms::owner_read);
  RemoveFile(ToText(file));
  EXPECT_FALSE(std::filesystem::exists(file)) << "a read-only one, by force";
}

}  // namespace
}  // namespace files
