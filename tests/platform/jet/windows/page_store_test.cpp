// What only Windows does to a database file: a lock file is held by whoever keeps it open.
#include "platform/jet/page_store.h"

#include <gtest/gtest.h>

#include <fstream>

#include "tests/platform/jet/definitions.h"
#include "tests/support/temporary_folder.h"

namespace jet::test {
namespace {

TEST(WindowsPageStoreTest, AHeldLockFileMeansInUse) {
  const test_support::TemporaryFolder folder;
  const auto path = folder.Write("a.mdb", std::string(3 * kPageSize, 'x'));
  {
    const std::ofstream holder(folder / "a.ldb");
    EXPECT_EQ(KindOf([&] { OpenPageStore(path, OpenMode::kReadWrite); }), ErrorKind::kInUse);
  }
  EXPECT_NE(OpenPageStore(path, OpenMode::kReadWrite), nullptr);
  EXPECT_TRUE(std::filesystem::exists(folder / "a.ldb"));
}

// Others may copy the file while it is open, but not write to it.
TEST(WindowsPageStoreTest, NobodyElseCanWrite) {
  const test_support::TemporaryFolder folder;
  const auto path = folder.Write("a.mdb", std::string(3 * kPageSize, 'x'));
  const auto owner = OpenPageStore(path, OpenMode::kReadWrite);
  EXPECT_FALSE(std::ofstream(path, std::ios::app));
  std::error_code error;
  EXPECT_FALSE(std::filesystem::remove(path, error));
}

}  // namespace
}  // namespace jet::test
