// Files by their names: which names are those of a file in a folder, what a folder holds and in
// which order, what can be deleted from it, and questions about paths.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/files/file_error.h"
#include "platform/files/file_name.h"
#include "platform/files/folder.h"
#include "platform/files/paths.h"
#include "tests/support/error_number.h"
#include "tests/support/temporary_folder.h"

namespace files {
namespace {

using test_support::ErrorNumberOf;
using test_support::TemporaryFolder;
using namespace std::string_view_literals;  // NOLINT(google-build-using-namespace): literals

TEST(FileNameTest, PlainNamesAndThoseThatLeadElsewhere) {
  for (const std::wstring_view name :
       {L"20260105_A_B.PRC"sv, L"x"sv, L".hidden"sv, L"a..b"sv, L"..a"sv, L"a b"sv, L" a"sv,
        L"Pr\u00E9\u0416.PRC"sv, L"console.txt"sv, L"COM"sv, L"COM10"sv, L"LPTX"sv,
        L"nul_A_B.PRC"sv})
    EXPECT_TRUE(IsPlainFileName(name)) << std::wstring(name);
  for (const std::wstring_view name :
       {L""sv,         L"."sv,           L".."sv,        L"../a"sv,    L"..\\a"sv,
        L"/etc/a"sv,   L"\\\\host\\a"sv, L"a/b"sv,       L"C:a"sv,     L"C:\\a"sv,
        L"a:stream"sv, L"con"sv,         L"NUL"sv,       L"nul.PRC"sv, L"Aux .txt"sv,
        L"com1"sv,     L"LPT9.x.y"sv,    L"COM\u00B9"sv, L"CONIN$"sv,  L"a."sv,
        L"a "sv,       L"a*"sv,          L"a?"sv,        L"a|b"sv,     L"a\tb"sv,
        L"a\rb"sv,     L"a\0b"sv,        L"a\x7F"sv,     L"a\x85"sv})
    EXPECT_FALSE(IsPlainFileName(name)) << std::wstring(name);
  EXPECT_FALSE(IsPlainFileName(std::wstring(256, L'x')));
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
  std::vector<std::wstring> listed;
#ifndef _WIN32
  std::filesystem::create_symlink("nowhere", folder / "broken.prc");
#endif
  for (const std::wstring& path : FilesIn(folder.Text(""))) {
    EXPECT_TRUE(IsAbsolute(path));
    EXPECT_TRUE(FileExists(path));
    listed.push_back(ToText(ToPath(path).filename()));
  }
#ifdef _WIN32
  EXPECT_THAT(listed, testing::UnorderedElementsAreArray(names));
#else
  EXPECT_EQ(listed, names);
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
  EXPECT_EQ(ErrorNumberOf([&] { FileSize(folder.Text("missing")); }), kFileNotFound);
  EXPECT_EQ(ErrorNumberOf([&] { RemoveFile(folder.Text("missing")); }), kFileNotFound);
  EXPECT_EQ(ErrorNumberOf([&] { RemoveFile(folder.Text("no/where")); }), kPathNotFound);
  EXPECT_EQ(ErrorNumberOf([&] { RemoveFile(folder.Text("")); }), kFileNotFound);

  std::filesystem::permissions(file, std::filesystem::perms::owner_read);
  RemoveFile(ToText(file));
  EXPECT_FALSE(std::filesystem::exists(file)) << "a read-only one, by force";
}

TEST(PathsTest, OneFileHasManyNamesAndAFolderOrADeviceIsNone) {
  const TemporaryFolder folder;
  folder.Write("a", "same bytes");
  folder.Write("b", "same bytes");
  std::filesystem::create_hard_link(folder / "a", folder / "c");
  EXPECT_TRUE(IsSameFile(folder.Text("a"), folder.Text("c")));
  EXPECT_TRUE(IsSameFile(folder.Text("a"), folder.Text("./a")));
  EXPECT_FALSE(IsSameFile(folder.Text("a"), folder.Text("b")));
  EXPECT_FALSE(IsSameFile(folder.Text("missing"), folder.Text("missing")));
  EXPECT_FALSE(IsSameFile(L"", folder.Text("a")));
  EXPECT_FALSE(FileExists(Separator() == L'\\' ? L"NUL" : L"/dev/zero"));
  EXPECT_FALSE(FileExists(folder.Text("")));
  EXPECT_TRUE(FolderExists(folder.Text("")));
  EXPECT_FALSE(FolderExists(folder.Text("missing")));
  EXPECT_FALSE(FolderExists(L""));
}

}  // namespace
}  // namespace files
