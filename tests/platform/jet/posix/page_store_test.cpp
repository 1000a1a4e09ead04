// What only POSIX systems do to a database file: advisory locks, special files, files replaced.
#include "platform/jet/page_store.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "tests/platform/jet/definitions.h"
#include "tests/support/temporary_folder.h"

namespace jet::test {
namespace {

using test_support::TemporaryFolder;

std::string Pages(std::size_t count) { return std::string(count * kPageSize, 'x'); }

std::optional<ErrorKind> OpenError(const std::filesystem::path& path) {
  return KindOf([&] { OpenPageStore(path, OpenMode::kReadWrite); });
}

// A user of the database in shared mode holds a byte far behind the end of its lock file.
TEST(PosixPageStoreTest, AHeldLockFileMeansInUse) {
  const TemporaryFolder folder;
  const auto path = folder.Write("a.mdb", Pages(3));
  const auto lock_path = folder.Write("a.ldb", std::string(64, 'n'));
  const int holder = open(lock_path.c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_GE(holder, 0);
  struct flock user {};
  user.l_type = F_WRLCK;
  user.l_whence = SEEK_SET;
  user.l_start = 0x10000001;
  user.l_len = 1;
  ASSERT_EQ(fcntl(holder, F_OFD_SETLK, &user), 0);
  EXPECT_EQ(OpenError(path), ErrorKind::kInUse);
  close(holder);
  EXPECT_NE(OpenPageStore(path, OpenMode::kReadWrite), nullptr);
}

TEST(PosixPageStoreTest, PipesAndDevicesAreNoFiles) {
  const TemporaryFolder folder;
  const auto pipe_path = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe_path.c_str(), 0600), 0);
  EXPECT_EQ(OpenError(pipe_path), ErrorKind::kCannotOpen);
  EXPECT_EQ(OpenError("/dev/null"), ErrorKind::kCannotOpen);
}

TEST(PosixPageStoreTest, AFileReplacedByARenameIsAnother) {
  const TemporaryFolder folder;
  const auto path = folder.Write("a.mdb", Pages(3));
  const auto old_owner = OpenPageStore(path, OpenMode::kReadWrite);
  std::filesystem::rename(folder.Write("new", Pages(5)), path);
  EXPECT_EQ(OpenPageStore(path, OpenMode::kReadWrite)->page_count(), 5U);
}

// A growing file that reaches the limit of its size keeps whole pages only.
TEST(PosixPageStoreTest, AFullDiskIsTold) {
  const TemporaryFolder folder;
  const auto path = folder.Write("a.mdb", Pages(3));
  const auto store = OpenPageStore(path, OpenMode::kReadWrite);
  rlimit old_limit{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old_limit), 0);
  const auto old_action = signal(SIGXFSZ, SIG_IGN);
  rlimit limit = old_limit;
  limit.rlim_cur = 4 * kPageSize + 100;
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  store->Write(3, PageBytes{});
  const auto kind = KindOf([&] { store->Write(4, PageBytes{}); });
  setrlimit(RLIMIT_FSIZE, &old_limit);
  signal(SIGXFSZ, old_action);
  EXPECT_EQ(kind, ErrorKind::kDiskFull);
  EXPECT_EQ(store->page_count(), 4U);
  EXPECT_EQ(std::filesystem::file_size(path), 4 * kPageSize);
}

}  // namespace
}  // namespace jet::test
