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

TEST(PathsTest, AFolderIsNoFile) {
  const test_support::TemporaryFolder folder;
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
