// Copying where files are locked by flock: locks that stay, links, rights, full disks, kills.
#include "platform/files/file_copy.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <thread>

#include "platform/files/file_error.h"
#include "platform/files/folder.h"
#include "platform/files/temporary_neighbour.h"
#include "tests/support/error_number.h"
#include "tests/support/posix/ordinary_user.h"
#include "tests/support/temporary_folder.h"

namespace files {
namespace {

using test_support::ErrorNumberOf;
using test_support::OrdinaryUser;
using test_support::ReadAll;
using test_support::TemporaryFolder;

TEST(PosixFileCopyTest, ALinkStaysALinkAndRightsStayRights) {
  const TemporaryFolder folder;
  const auto source = folder.Write("source", "new");
  const auto target = folder.Write("file", "old");
  ASSERT_EQ(chmod(source.c_str(), 0640), 0);
  ASSERT_EQ(chmod(target.c_str(), 0664), 0);
  std::filesystem::create_symlink("file", folder / "link");
  CopyFileAtomically(folder.Text("source"), folder.Text("link"));
  CopyFileAtomically(folder.Text("source"), folder.Text("backup"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
  EXPECT_EQ(ReadAll(target), "new");
  using std::filesystem::perms;
  EXPECT_EQ(std::filesystem::status(target).permissions(), perms{0664});
  EXPECT_EQ(std::filesystem::status(folder / "backup").permissions(), perms{0640});
}

TEST(PosixFileCopyTest, WhatAnOrdinaryUserMayNotDo) {
  const TemporaryFolder folder;
  folder.Write("source", "new");
  const auto target = folder.Write("target", "old");
  const auto secret = folder.Write("secret", "secret");
  ASSERT_EQ(chmod(target.c_str(), 0444), 0);
  ASSERT_EQ(chmod(secret.c_str(), 0), 0);
  ASSERT_EQ(chmod(folder.path().c_str(), 0777), 0);
  {
    const OrdinaryUser user;
    const auto copy = [&](const char* from, const char* to) {
      return ErrorNumberOf([&] { CopyFileAtomically(folder.Text(from), folder.Text(to)); });
    };
    EXPECT_EQ(copy("source", "target"), kPermissionDenied);
    EXPECT_EQ(copy("secret", "copy"), kPermissionDenied);
  }
  ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
  if (geteuid() != 0) return;  // to an ordinary user the folder is his own
  const OrdinaryUser user;
  EXPECT_EQ(ErrorNumberOf([&] { CopyFileAtomically(folder.Text("source"), folder.Text("new")); }),
            kPermissionDenied);
  EXPECT_EQ(ErrorNumberOf([&] { RemoveFile(folder.Text("source")); }), kPermissionDenied);
  EXPECT_EQ(ReadAll(target), "old");
}

TEST(PosixFileCopyTest, AFullDiskLeavesTheTargetAndNoNeighbour) {
  const TemporaryFolder folder;
  folder.Write("source", std::string(1'000'000, 'n'));
  const auto target = folder.Write("target", "old");
  rlimit usual{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &usual), 0);
  const auto usual_action = signal(SIGXFSZ, SIG_IGN);
  rlimit small = usual;
  small.rlim_cur = 500'000;
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  const auto error =
      ErrorNumberOf([&] { CopyFileAtomically(folder.Text("source"), folder.Text("target")); });
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &usual), 0);
  signal(SIGXFSZ, usual_action);
  EXPECT_EQ(error, kDiskFull);
  EXPECT_EQ(ReadAll(target), "old");
  EXPECT_EQ(FilesIn(folder.Text("")).size(), 2U);
}

// Copies one file or the other over the target until it is killed.
[[noreturn]] void CopyWithoutEnd(const TemporaryFolder& folder) {
  for (;;) {
    for (const char* const source : {"a", "b"}) {
      CopyFileAtomically(folder.Text(source), folder.Text("target"));
    }
  }
}

TEST(PosixFileCopyTest, AKillAtAnyMomentLeavesAWholeFile) {
  // How many kills fall into the middle of a copy depends on the machine, so they go on until
  // enough have. A copy that had no middle to be killed in would exhaust them.
  constexpr int kFewestInTheMiddle = 30;
  constexpr int kMostKills = 1000;
  const TemporaryFolder folder;
  const std::string a(600'000, 'a');
  const std::string b(800'000, 'b');
  folder.Write("a", a);
  folder.Write("b", b);
  const auto target = folder.Write("target", a);
  std::mt19937 random(1);
  std::uniform_int_distribution<int> microseconds(0, 3'000);
  const auto neighbour = NeighbourOf(target);
  // Only a copy that has begun and not ended has a neighbour with something in it.
  const auto copy_under_way = [&] {
    std::error_code absent;
    const auto size = std::filesystem::file_size(neighbour, absent);
    return !absent && size > 0;
  };
  int in_the_middle = 0;
  for (int i = 0; i < kMostKills && in_the_middle < kFewestInTheMiddle; ++i) {
    CopyFileAtomically(folder.Text("a"), folder.Text("target"));
    ASSERT_EQ(FilesIn(folder.Text("")).size(), 3U) << "what a kill left is used again and goes";
    const pid_t child = fork();
    if (child == 0) CopyWithoutEnd(folder);
    while (!copy_under_way() && waitpid(child, nullptr, WNOHANG) == 0) std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    in_the_middle += copy_under_way() ? 1 : 0;
    const std::string content = ReadAll(target);
    ASSERT_TRUE(content == a || content == b) << "kill " << i << ", size " << content.size();
  }
  EXPECT_EQ(in_the_middle, kFewestInTheMiddle);
}

}  // namespace
}  // namespace files
