// Path texts and questions about files.
#include "platform/files/paths.h"

#include <gtest/gtest.h>

#include "platform/files/file_error.h"
#include "tests/support/error_number.h"
#include "tests/support/temporary_folder.h"

namespace files {
namespace {

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
  EXPECT_EQ(test_support::ErrorNumberOf([&] { FileSize(folder.Text("missing")); }), kFileNotFound);
}

}  // namespace
}  // namespace files
