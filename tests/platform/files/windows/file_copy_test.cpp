// Copying where sharing decides, and what the target keeps: files that somebody has open, read-only
// files, rights and marks.
#include "platform/files/file_copy.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <aclapi.h>
#include <sddl.h>

#include <chrono>
#include <memory>
#include <thread>

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

// As scanners and indexes do with files that have just been written.
TEST(WindowsFileCopyTest, SomebodyWhoOnlyLooksIsWaitedFor) {
  const TemporaryFolder folder;
  folder.Write("source", "new");
  for (const DWORD sharing : {DWORD{0}, DWORD{FILE_SHARE_READ}}) {
    const auto target = folder.Write("target", "old");
    auto somebody = std::make_unique<Opened>(target, GENERIC_READ, sharing);
    std::thread looking([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(300));
      somebody.reset();
    });
    EXPECT_EQ(
        ErrorNumberOf([&] { CopyFileAtomically(folder.Text("source"), folder.Text("target")); }),
        0);
    looking.join();
    EXPECT_EQ(ReadAll(target), "new");
  }
}

TEST(WindowsFileCopyTest, WhatSomebodyWritesMeanwhileIsKept) {
  const TemporaryFolder folder;
  folder.Write("source", "new");
  const auto target = folder.Write("target", "old");
  auto somebody = std::make_unique<Opened>(target, GENERIC_READ | GENERIC_WRITE, 0);
  std::thread writing([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    DWORD put = 0;
    WriteFile(somebody->get(), "saved", 5, &put, nullptr);
    somebody.reset();
  });
  EXPECT_EQ(
      ErrorNumberOf([&] { CopyFileAtomically(folder.Text("source"), folder.Text("target")); }),
      kPermissionDenied);
  writing.join();
  EXPECT_EQ(ReadAll(target), "saved");
}

// The rights of a file as text: "D:", "P" when they do not come from the folder, the entries.
std::wstring AccessOf(const std::filesystem::path& file) {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  LPWSTR text = nullptr;
  EXPECT_EQ(GetNamedSecurityInfoW(file.wstring().data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION,
                                  nullptr, nullptr, nullptr, nullptr, &descriptor),
            DWORD{ERROR_SUCCESS});
  EXPECT_NE(ConvertSecurityDescriptorToStringSecurityDescriptorW(
                descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text, nullptr),
            0);
  std::wstring access = text == nullptr ? L"" : text;
  LocalFree(text);
  LocalFree(descriptor);
  return access;
}

TEST(WindowsFileCopyTest, TheTargetKeepsItsRightsAndMarks) {
  const TemporaryFolder folder;
  folder.Write("source", "new");
  const auto target = folder.Write("target", "old");
  // Everybody may do everything, beside what comes from the folder.
  EXPLICIT_ACCESS_W everybody{};
  everybody.grfAccessPermissions = FILE_ALL_ACCESS;
  everybody.grfAccessMode = SET_ACCESS;
  wchar_t name[] = L"EVERYONE";
  BuildTrusteeWithNameW(&everybody.Trustee, name);
  ACL* list = nullptr;
  ASSERT_EQ(SetEntriesInAclW(1, &everybody, nullptr, &list), DWORD{ERROR_SUCCESS});
  ASSERT_EQ(SetNamedSecurityInfoW(target.wstring().data(), SE_FILE_OBJECT,
                                  DACL_SECURITY_INFORMATION | UNPROTECTED_DACL_SECURITY_INFORMATION,
                                  nullptr, nullptr, list, nullptr),
            DWORD{ERROR_SUCCESS});
  LocalFree(list);
  ASSERT_NE(SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_HIDDEN), 0);
  const std::wstring before = AccessOf(target);
  ASSERT_NE(before, AccessOf(folder / "source"));
  CopyFileAtomically(folder.Text("source"), folder.Text("target"));
  EXPECT_EQ(ReadAll(target), "new");
  EXPECT_EQ(AccessOf(target), before);
  EXPECT_NE(GetFileAttributesW(target.c_str()) & FILE_ATTRIBUTE_HIDDEN, DWORD{0});
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
