// A copied file is whole, or it is the old one, and nobody gets in between.
#include "platform/files/file_copy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "platform/files/file_error.h"
#include "platform/files/file_lock.h"
#include "platform/files/folder.h"
#include "platform/files/paths.h"
#include "platform/files/temporary_neighbour.h"
#include "tests/support/error_number.h"
#include "tests/support/temporary_folder.h"

namespace files {
namespace {

using test_support::ErrorNumberOf;
using test_support::ReadAll;
using test_support::TemporaryFolder;
using namespace std::chrono_literals;

class FileCopyTest : public testing::Test {
 protected:
  std::int32_t Copy(const std::filesystem::path& from, const std::filesystem::path& to) {
    return ErrorNumberOf([&] { CopyFileAtomically(folder_.Text(from), folder_.Text(to)); });
  }
  std::size_t FileCount() const { return FilesIn(folder_.Text("")).size(); }

  TemporaryFolder folder_;
};

TEST_F(FileCopyTest, CopiesEveryByteOverNothingAndOverAnother) {
  for (const std::size_t size : {0UL, 1UL, 256UL * 1024, 1'000'001UL}) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
    folder_.Write("source", bytes);
    folder_.Write("old", "an old one, longer or shorter");
    std::filesystem::remove(folder_ / "new");
    for (const char* const target : {"new", "old"}) {
      EXPECT_EQ(Copy("source", target), 0);
      EXPECT_EQ(ReadAll(folder_ / target), bytes);
    }
    EXPECT_EQ(FileCount(), 3U) << "something was left behind";
  }
}

TEST_F(FileCopyTest, FailuresLeaveTheTargetAsItWas) {
  folder_.Write("source", "new");
  folder_.Write("target", "old");
  std::filesystem::create_directory(folder_ / "folder");
  EXPECT_EQ(Copy("missing", "target"), kFileNotFound);
  EXPECT_EQ(Copy("no/where", "target"), kPathNotFound);
  EXPECT_EQ(Copy("folder", "target"), kPermissionDenied);
  EXPECT_EQ(Copy("source", "no/where"), kPathNotFound);
  EXPECT_EQ(Copy("source", "folder"), kPermissionDenied);
  EXPECT_EQ(Copy("target", "target"), kPermissionDenied);
  {
    const FileLock somebody(folder_ / "target", MissingFile::kHoldNothing);
    EXPECT_EQ(Copy("source", "target"), kPermissionDenied);
  }
  EXPECT_EQ(ReadAll(folder_ / "target"), "old");
  EXPECT_EQ(FileCount(), 2U) << "something was left behind";
  EXPECT_EQ(Copy("source", "target"), 0) << "the lock has ended";
}

// A copy that was killed leaves its neighbour; the next one uses it, unless somebody is at it.
TEST_F(FileCopyTest, AStaleNeighbourIsUsedAgain) {
  folder_.Write("source", "new");
  const auto neighbour = NeighbourOf(folder_ / "target");
  folder_.Write(neighbour.filename(), "half of a very old file");
  EXPECT_EQ(Copy("source", "target"), 0);
  EXPECT_EQ(ReadAll(folder_ / "target"), "new");
  EXPECT_FALSE(std::filesystem::exists(neighbour));
  {
    const TemporaryNeighbour somebody(folder_ / "target");
    EXPECT_EQ(Copy("source", "target"), kPermissionDenied);
  }
  EXPECT_EQ(FileCount(), 2U);
  EXPECT_NE(NeighbourOf("a.pt"), NeighbourOf("b.pt"));
}

TEST_F(FileCopyTest, ALockWaitsAsLongAsItsPatienceLasts) {
  const auto path = folder_.Write("file", "");
  FileLock first(path, MissingFile::kHoldNothing);
  EXPECT_EQ(ErrorNumberOf([&] { FileLock(path, MissingFile::kHoldNothing, 30ms); }),
            kPermissionDenied);
  std::thread other([&] {
    std::this_thread::sleep_for(50ms);
    first.Release();
  });
  EXPECT_EQ(ErrorNumberOf([&] { FileLock(path, MissingFile::kHoldNothing, 20s); }), 0);
  other.join();
  EXPECT_EQ(ErrorNumberOf([&] { FileLock(folder_ / "missing", MissingFile::kHoldNothing); }), 0);
  EXPECT_FALSE(std::filesystem::exists(folder_ / "missing"));
  EXPECT_EQ(ErrorNumberOf([&] { FileLock(folder_ / "made", MissingFile::kCreateEmpty); }), 0);
  EXPECT_TRUE(std::filesystem::exists(folder_ / "made"));
}

}  // namespace
}  // namespace files
