// Copying where sharing decides: files that somebody has open, read-only files.
#include "platform/files/file_copy.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "platform/files/file_error.h"
#include "platform/files/folder.h"
#include "platform/files/paths.h"
#include "tests/support/error_number.h"
#include "tests/support/temporary_folder.h"

namespace files {
namespace {

using test_support::ErrorNumberOf;
using test_support::ReadAll;
using test_support::TemporaryFolder;

// A file that somebody has open while this lives.
class Opened {
 public:
  Opened(const std::filesystem::path& path, DWORD access, DWORD sharing)
      : handle_(CreateFileW(path.c_str(), access, sharing, nullptr, OPEN_EXISTING,
                            FILE_ATTRIBUTE_NORMAL, nullptr)) {}
  ~Opened() { CloseHandle(handle_); }
  Opened(const Opened&) = delete;
  Opened& operator=(const Opened&) = delete;
  HANDLE get() const { return handle_; }

 private:
  HANDLE handle_;
};

TEST(WindowsFileCopyTest, ASourceThatAnOwnerHasOpenIsCopied) {
  const TemporaryFolder folder;
  // As the database engine holds its file: readers are let in, and a byte far behind its end is
  // locked.
  const Opened owner(folder.Write("source", "x"), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ);
  OVERLAPPED far_byte{};
  far_byte.OffsetHigh = 0x40000000;
  ASSERT_NE(LockFileEx(owner.get(), LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &far_byte), 0);
  CopyFileAtomically(folder.Text("source"), folder.Text("backup"));
  EXPECT_EQ(ReadAll(folder / "backup"), "x");
}

TEST(WindowsFileCopyTest, ATargetThatSomebodyHasOpenStays) {
  constexpr DWORD kAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const struct {
    const char* who;
    DWORD access;
    DWORD sharing;
  } cases[] = {{"an owner", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ},
               {"a database that several users share", GENERIC_READ | GENERIC_WRITE,
                FILE_SHARE_READ | FILE_SHARE_WRITE},
               {"a reader", GENERIC_READ, kAll}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.who);
    const TemporaryFolder folder;
    folder.Write("source", "new");
    const auto target = folder.Write("target", "old");
    {
      const Opened somebody(target, c.access, c.sharing);
      EXPECT_EQ(
          ErrorNumberOf([&] { CopyFileAtomically(folder.Text("source"), folder.Text("target")); }),
          kPermissionDenied);
    }
    EXPECT_EQ(ReadAll(target), "old");
    EXPECT_EQ(FilesIn(folder.Text("")).size(), 2U);
  }
}

TEST(WindowsFileCopyTest, AReadOnlyTargetStays) {
  const TemporaryFolder folder;
  folder.Write("source", "new");
  const auto target = folder.Write("target", "old");
  ASSERT_NE(SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_READONLY), 0);
  EXPECT_EQ(
      ErrorNumberOf([&] { CopyFileAtomically(folder.Text("source"), folder.Text("target")); }),
      kPermissionDenied);
  EXPECT_EQ(ReadAll(target), "old");
  RemoveFile(folder.Text("target"));
}

TEST(WindowsFileCopyTest, AFileInUseIsNotDeleted) {
  const TemporaryFolder folder;
  const auto path = folder.Write("file", "x");
  const Opened somebody(path, GENERIC_READ, FILE_SHARE_READ);
  EXPECT_EQ(ErrorNumberOf([&] { RemoveFile(folder.Text("file")); }), kPermissionDenied);
}

}  // namespace
}  // namespace files
