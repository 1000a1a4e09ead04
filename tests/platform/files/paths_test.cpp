// Path texts and questions about files.
#include "platform/files/paths.h"

#include <gtest/gtest.h>

#include "platform/files/file_error.h"
#include "platform/files/program_folder.h"
#include "tests/support/temporary_folder.h"

namespace files {
namespace {

TEST(PathsTest, NonAsciiNamesReachTheDisk) {
  const test_support::TemporaryFolder folder;
  const std::wstring name = folder.Text(ToPath(L"Pr\u00E9 \u20AC.PRC"));
  EXPECT_FALSE(FileExists(name));
  folder.Write(ToPath(L"Pr\u00E9 \u20AC.PRC"), "12345");
  EXPECT_TRUE(FileExists(name));
  EXPECT_EQ(FileSize(name), 5U);
  EXPECT_EQ(ToText(ToPath(name)), name);
}

TEST(PathsTest, OneFileHasManyNames) {
  const test_support::TemporaryFolder folder;
  folder.Write("a", "same bytes");
  folder.Write("b", "same bytes");
  std::filesystem::create_hard_link(folder / "a", folder / "c");
  EXPECT_TRUE(IsSameFile(folder.Text("a"), folder.Text("c")));
  EXPECT_TRUE(IsSameFile(folder.Text("a"), folder.Text("./a")));
  EXPECT_FALSE(IsSameFile(folder.Text("a"), folder.Text("b")));
  EXPECT_FALSE(IsSameFile(folder.Text("missing"), folder.Text("missing")));
  EXPECT_FALSE(IsSameFile(L"", folder.Text("a")));
}

TEST(PathsTest, AFolderOrADeviceIsNoFile) {
  const test_support::TemporaryFolder folder;
#ifdef _WIN32
  EXPECT_FALSE(FileExists(L"NUL"));
#else
  EXPECT_FALSE(FileExists(L"/dev/zero"));
#endif
  EXPECT_TRUE(FolderExists(folder.Text("")));
  EXPECT_FALSE(FileExists(folder.Text("")));
  EXPECT_FALSE(FolderExists(folder.Text("missing")));
  EXPECT_FALSE(FolderExists(L""));
  try {
    FileSize(folder.Text("missing"));
    ADD_FAILURE();
  } catch (const text::RuntimeError& error) {
    EXPECT_EQ(error.number(), kFileNotFound);
  }
}

TEST(ProgramFolderTest, HoldsThisProgram) {
#ifdef _WIN32
  EXPECT_TRUE(std::filesystem::exists(ProgramFolder() / "files_tests.exe"));
#else
  EXPECT_TRUE(std::filesystem::exists(ProgramFolder() / "files_tests"));
#endif
}

}  // namespace
}  // namespace files
