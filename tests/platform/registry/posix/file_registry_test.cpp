// Settings files as a registry: where they are, who may change them, and several writers at once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/files/file_error.h"
#include "platform/files/file_lock.h"
#include "platform/files/folder.h"
#include "platform/registry/posix/store_location.h"
#include "platform/registry/posix/system_registry.h"
#include "tests/support/error_number.h"
#include "tests/support/posix/ordinary_user.h"
#include "tests/support/temporary_folder.h"

namespace registry {
namespace {

using test_support::ErrorNumberOf;
using test_support::OrdinaryUser;
using test_support::ReadAll;
using test_support::TemporaryFolder;

constexpr char kVersion[] = "Windows Registry Editor Version 5.00\n\n";

class FileRegistryTest : public testing::Test {
 protected:
  std::optional<Value> Read(RootKey root, const wchar_t* key, const wchar_t* name) const {
    return registry_.Read(root, key, name);
  }
  void WriteUser(const wchar_t* name, const wchar_t* text) {
    registry_.WriteText(RootKey::kCurrentUser, L"Software\\X", name, text);
  }
  std::optional<Value> ReadUser(const wchar_t* name) const {
    return Read(RootKey::kCurrentUser, L"Software\\X\\", name);
  }

  TemporaryFolder folder_;
  StoreLocation location_{folder_ / "home" / "registry.reg", folder_ / "etc" / "registry.reg"};
  FileRegistry registry_{[this] { return location_; }};
};

TEST(StoreLocationTest, TheProgramsFolderThenTheConfigurationFolders) {
  const TemporaryFolder folder;
  const struct {
    const char* config_home;
    const char* home;
    const char* user;
  } cases[] = {
      {"/c", "/h", "/c/orvpap/registry.reg"},
      {nullptr, "/h", "/h/.config/orvpap/registry.reg"},
      {"relative", "/h", "/h/.config/orvpap/registry.reg"},
      {"", nullptr, ""},
  };
  for (const auto& c : cases) {
    const StoreLocation location = LocateStores(folder.path(), c.config_home, c.home);
    EXPECT_EQ(location.user, c.user);
    EXPECT_EQ(location.machine, "/etc/orvpap/registry.reg");
  }
  const auto portable = folder.Write("registry.reg", "");
  const StoreLocation location = LocateStores(folder.path(), "/c", "/h");
  EXPECT_EQ(location.user, portable);
  EXPECT_EQ(location.machine, portable);
}

TEST_F(FileRegistryTest, WritesGoToTheFileOfTheirRoot) {
  EXPECT_EQ(ReadUser(L"a"), std::nullopt);
  WriteUser(L"a", L"mine");
  registry_.WriteText(RootKey::kLocalMachine, L"Software\\X", L"a", L"all");
  EXPECT_EQ(ReadUser(L"A"), Value(L"mine"));
  EXPECT_EQ(Read(RootKey::kLocalMachine, L"Software\\X", L"a"), Value(L"all"));
  EXPECT_EQ(Read(RootKey::kUsers, L"Software\\X", L"a"), std::nullopt);
  std::filesystem::remove_all(folder_ / "home");
  EXPECT_EQ(ReadUser(L"a"), std::nullopt);
  EXPECT_EQ(Read(RootKey::kLocalMachine, L"Software\\X", L"a"), Value(L"all"));
  EXPECT_EQ(files::FilesIn(folder_.Text("etc")).size(), 1U) << "something was left behind";
}

TEST_F(FileRegistryTest, TheViewOf32BitProgramsGoesFirstAndTheUsersFileBeforeTheMachines) {
  folder_.Write("etc/registry.reg",
                std::string(kVersion) +
                    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\X]\n\"a\"=\"64\"\n\"b\"=\"64\"\n"
                    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\WOW6432Node\\X]\n\"a\"=\"32\"\n\"c\"=\"32\"\n");
  folder_.Write("home/registry.reg",
                std::string(kVersion) + "[HKEY_LOCAL_MACHINE\\Software\\X]\n\"c\"=\"user\"\n");
  EXPECT_EQ(Read(RootKey::kLocalMachine, L"Software\\X\\", L"a"), Value(L"32"));
  EXPECT_EQ(Read(RootKey::kLocalMachine, L"Software\\X\\", L"b"), Value(L"64"));
  EXPECT_EQ(Read(RootKey::kLocalMachine, L"Software\\X\\", L"c"), Value(L"user"));
}

TEST_F(FileRegistryTest, ADamagedStoreIsReportedAndStays) {
  const auto path = folder_.Write("home/registry.reg", std::string(kVersion) + "[HKEY_CURRENT");
  const std::string before = ReadAll(path);
  for (const bool write : {false, true}) {
    try {
      if (write) WriteUser(L"a", L"x");
      static_cast<void>(ReadUser(L"a"));
      ADD_FAILURE();
    } catch (const text::RuntimeError& error) {
      EXPECT_EQ(error.number(), kInvalidFileFormat);
      EXPECT_THAT(std::string(error.what()),
                  testing::AllOf(testing::StartsWith("Invalid file format: "),
                                 testing::HasSubstr(path.string()), testing::HasSubstr("line 3")));
    }
    EXPECT_EQ(ReadAll(path), before);
    EXPECT_EQ(files::FilesIn(folder_.Text("home")).size(), 1U);
  }
}

TEST_F(FileRegistryTest, WhatAnOrdinaryUserMayNotDo) {
  const std::string before =
      std::string(kVersion) + "[HKEY_CURRENT_USER\\Software\\X]\n\"a\"=\"1\"\n";
  const auto path = folder_.Write("home/registry.reg", before);
  ASSERT_EQ(chmod(path.c_str(), 0444), 0);
  {
    const OrdinaryUser user;
    EXPECT_EQ(ReadUser(L"a"), Value(L"1"));
    EXPECT_EQ(ErrorNumberOf([&] { WriteUser(L"a", L"2"); }), files::kPermissionDenied);
  }
  EXPECT_EQ(ReadAll(path), before);
  ASSERT_EQ(chmod(path.c_str(), 0), 0);
  const OrdinaryUser user;
  EXPECT_EQ(ErrorNumberOf([&] { static_cast<void>(ReadUser(L"a")); }), files::kPermissionDenied);
}

TEST_F(FileRegistryTest, ALinkToTheFileStaysALink) {
  folder_.Write("elsewhere.reg", kVersion);
  std::filesystem::create_directory(folder_ / "home");
  std::filesystem::create_symlink("../elsewhere.reg", location_.user);
  WriteUser(L"a", L"x");
  EXPECT_TRUE(std::filesystem::is_symlink(location_.user));
  EXPECT_EQ(ReadUser(L"a"), Value(L"x"));
}

// Every process changes a value of its own many times; none may lose what another has written.
TEST_F(FileRegistryTest, SeveralWritersLoseNothing) {
  constexpr int kWriters = 4;
  constexpr int kValues = 10;
  std::vector<pid_t> children;
  for (int writer = 0; writer < kWriters; ++writer) {
    const pid_t child = fork();
    if (child == 0) {
      const auto failure = ErrorNumberOf([&] {
        for (int i = 0; i < kValues; ++i) {
          WriteUser((std::to_wstring(writer) + L"-" + std::to_wstring(i)).c_str(), L"x");
        }
      });
      _exit(failure == 0 ? 0 : 1);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  for (int writer = 0; writer < kWriters; ++writer) {
    for (int i = 0; i < kValues; ++i) {
      const std::wstring name = std::to_wstring(writer) + L"-" + std::to_wstring(i);
      EXPECT_EQ(ReadUser(name.c_str()), Value(L"x")) << writer << "-" << i;
    }
  }
}

}  // namespace
}  // namespace registry
