// Compaction of files: nothing is left of a copy that failed, and nobody gets between.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/jet/check.h"
#include "platform/jet/compaction.h"
#include "tests/platform/jet/full_database.h"
#include "tests/support/temporary_folder.h"

namespace jet::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A file in a folder of its own; whatever happens, only named files may be there afterwards.
class CompactionFilesTest : public ::testing::Test {
 protected:
  CompactionFilesTest() {
    TestDatabase database({.password = u"secret"});
    FillWithEverything(database);
    database.Save(source_);
    before_ = test_support::ReadAll(source_);
  }

  std::vector<std::string> FilesLeft() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path()))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }

  const test_support::TemporaryFolder folder_;
  const std::filesystem::path source_ = folder_ / "source.pt";
  const std::filesystem::path target_ = folder_ / "target.pt";
  const CompactOptions options_{.password = u"secret"};
  std::string before_;
};

TEST_F(CompactionFilesTest, AnEndedCompactionLeavesNothing) {
  std::size_t calls = 0;
  CompactFile(source_, target_, {.password = u"secret", .progress = [&] { ++calls; }});
  ASSERT_GT(calls, 10u);
  std::filesystem::remove(target_);
  for (std::size_t end = 1; end <= calls; end += 7) {
    SCOPED_TRACE("ended at call " + std::to_string(end));
    for (const bool in_place : {false, true}) {
      std::size_t call = 0;
      const CompactOptions ending{
          .password = u"secret", .progress = [&] {
            EXPECT_FALSE(std::filesystem::exists(target_));
            if (++call < end) return;
            EXPECT_EQ(FailureOf([&] { Database::Open(source_, {.password = u"secret"}); })->kind,
                      ErrorKind::kInUse);
            throw std::runtime_error("enough");
          }};
      if (in_place) {
        EXPECT_THROW(CompactInPlace(source_, ending), std::runtime_error);
      } else {
        EXPECT_THROW(CompactFile(source_, target_, ending), std::runtime_error);
      }
      EXPECT_THAT(FilesLeft(), ElementsAre("source.pt"));
    }
  }
  EXPECT_EQ(test_support::ReadAll(source_), before_);
}

TEST_F(CompactionFilesTest, InPlaceTheFileIsReplacedAndLeftoversGo) {
  folder_.Write("source.pt.~new", "left by a kill");
  std::filesystem::path place = source_;
  std::error_code no_links;
  std::filesystem::create_symlink(source_, folder_ / "link.pt", no_links);
  if (!no_links) place = folder_ / "link.pt";
  using std::filesystem::perms;
  std::filesystem::permissions(source_, perms::owner_read | perms::owner_write);
  const perms rights = std::filesystem::status(source_).permissions();
  CompactInPlace(place, options_);
  EXPECT_EQ(std::filesystem::status(source_).permissions(), rights);
  EXPECT_FALSE(std::filesystem::is_symlink(source_));
  EXPECT_LT(std::filesystem::file_size(source_), before_.size());
  EXPECT_THAT(CheckFile(source_, {.password = u"secret"}).problems, IsEmpty());
  EXPECT_THAT(FilesLeft(), ::testing::Not(Contains("source.pt.~new")));
}

// A kill between the two steps that name a new file leaves it under both names.
TEST_F(CompactionFilesTest, ASecondNameOfAnotherFileIsTakenAwayAndTheFileStays) {
  if constexpr (std::filesystem::path::preferred_separator == '\\')
    GTEST_SKIP() << "files are renamed in one step here";
  std::filesystem::create_hard_link(source_, folder_ / "source.pt.~new");
  std::filesystem::create_hard_link(source_, folder_ / "target.pt.~new");
  CompactFile(source_, target_, options_);
  EXPECT_EQ(test_support::ReadAll(source_), before_);
  EXPECT_THAT(CheckFile(target_, {.password = u"secret"}).problems, IsEmpty());
  CompactInPlace(source_, options_);
  EXPECT_EQ(test_support::ReadAll(source_).size(), test_support::ReadAll(target_).size());
  EXPECT_THAT(FilesLeft(), ElementsAre("source.pt", "target.pt"));
}

}  // namespace
}  // namespace jet::test
