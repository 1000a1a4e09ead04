// Page transactions: what readers see, what reaches the disk, in which order, and what failures
// leave.
#include "platform/jet/pager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/jet/definitions.h"
#include "tests/platform/jet/memory_page_store.h"

namespace jet::test {
namespace {

using testing::ElementsAre;

constexpr std::uint32_t kPageKey = 0x1b2c3d4e;

// Pages whose first byte tells them apart.
class PagerTest : public testing::TestWithParam<std::uint32_t> {
 protected:
  static constexpr PageNumber kPages = 10;

  PagerTest() {
    disk->Resize(kPages);
    Open();
    PageTransaction transaction(*pager);
    for (PageNumber page = 0; page < kPages; ++page) Set(page, static_cast<int>(page));
    transaction.Commit();
    disk->Heal();
  }

  void Open(std::size_t cache_pages = Pager::kDefaultCachePages) {
    pager =
        std::make_unique<Pager>(std::make_unique<MemoryPageStore>(disk), GetParam(), cache_pages);
  }
  void Set(PageNumber page, int value) {
    pager->Edit(page).SetU8(0, static_cast<std::uint8_t>(value));
  }
  int Get(PageNumber page) const { return pager->Read(page).view().U8(0); }

  std::shared_ptr<MemoryDisk> disk = std::make_shared<MemoryDisk>();
  std::unique_ptr<Pager> pager;
};

INSTANTIATE_TEST_SUITE_P(PlainAndEncoded, PagerTest, testing::Values(0, kPageKey));

TEST_P(PagerTest, ReadersSeeChangesAtOnceAndKeepWhatTheyRead) {
  const Page before = pager->Read(3);
  PageTransaction transaction(*pager);
  ByteEditor editor = pager->Edit(3);
  editor.SetU8(0, 33);
  const Page meanwhile = pager->Read(3);
  editor.SetU8(0, 44);
  EXPECT_EQ(before.view().U8(0), 3);
  EXPECT_EQ(meanwhile.view().U8(0), 33);
  EXPECT_EQ(Get(3), 44);
  EXPECT_EQ(pager->View(3).U8(0), 44);
  transaction.Commit();
  EXPECT_EQ(Get(3), 44);
  EXPECT_EQ(meanwhile.view().U8(0), 33);
  Open();
  EXPECT_EQ(Get(3), 44);
}

TEST_P(PagerTest, NestedTransactionsCommitWithTheOutermost) {
  {
    PageTransaction outer(*pager);
    Set(1, 11);
    {
      PageTransaction inner(*pager);
      Set(2, 22);
      inner.Commit();
    }
    EXPECT_EQ(disk->writes, 0U);
    outer.Commit();
  }
  EXPECT_THAT(disk->write_log, ElementsAre(1, 2));
  {
    PageTransaction outer(*pager);
    Set(1, 111);
    { PageTransaction given_up(*pager); }
    EXPECT_THROW(outer.Commit(), Error);
  }
  EXPECT_EQ(Get(1), 11);
}

TEST_P(PagerTest, WritesByGroupThenByFirstTouchThenCleanUps) {
  PageTransaction transaction(*pager);
  pager->Defer(CleanUp::kFreePages, [this] { Set(1, 101); });
  pager->Defer(CleanUp::kUnreferenced, [this] {
    Set(7, 107);
    Set(2, 102);
    pager->Defer(CleanUp::kUnreferenced, [this] { Set(6, 106); });
  });
  Set(9, 19);
  Set(2, 12);
  Set(9, 29);
  pager->Edit(8, WriteOrder::kAdditions).SetU8(0, 18);
  pager->EditNew(kPages);
  pager->Edit(1, WriteOrder::kTakenPages).SetU8(0, 11);
  transaction.Commit();
  EXPECT_THAT(disk->write_log, ElementsAre(1, kPages, 8, 9, 2, 7, 2, 6, 1));
  EXPECT_EQ(Get(1), 101);
  EXPECT_EQ(Get(2), 102);
  EXPECT_EQ(Get(9), 29);
}

TEST_P(PagerTest, APageIsWrittenAfterThoseItWaitsFor) {
  PageTransaction transaction(*pager);
  pager->EditNew(kPages);
  pager->EditNew(kPages + 1);
  for (const PageNumber page : {1, 2, 3}) Set(page, 0);
  pager->WriteAfter(1, 2);
  pager->WriteAfter(2, 3);
  pager->WriteAfter(kPages, kPages + 1);
  EXPECT_TRUE(pager->WaitsForOthers(1));
  EXPECT_FALSE(pager->WaitsForOthers(3));
  transaction.Commit();
  // The first page behind the end has to be there before the second can be written.
  EXPECT_THAT(disk->write_log, ElementsAre(kPages, kPages + 1, kPages, 3, 2, 1));
  EXPECT_FALSE(pager->WaitsForOthers(1));
}

TEST_P(PagerTest, RefusesWhatCannotBe) {
  EXPECT_THROW(pager->Read(kPages), Error);
  EXPECT_THROW(pager->Edit(1), std::logic_error);
  disk->read_only = true;
  Open();
  EXPECT_EQ(KindOf([this] { PageTransaction transaction(*pager); }), ErrorKind::kReadOnly);
}

TEST(EncodedPagerTest, OnlyPageZeroIsPlainOnDisk) {
  const auto disk = std::make_shared<MemoryDisk>();
  disk->Resize(2);
  Pager pager(std::make_unique<MemoryPageStore>(disk), kPageKey);
  PageTransaction transaction(pager);
  for (const PageNumber page : {0, 1}) pager.EditNew(page).SetU32(0, 0x64636261);
  transaction.Commit();
  EXPECT_EQ(disk->Page(0)[0], std::byte{'a'});
  // The stream of the key bytes 4F 3D 2C 1B (the page key XOR 1), made by another implementation.
  const std::vector<std::byte> encoded(disk->Page(1).begin(), disk->Page(1).begin() + 4);
  EXPECT_THAT(encoded,
              ElementsAre(std::byte{0xa3}, std::byte{0xd8}, std::byte{0x71}, std::byte{0x2a}));
}

}  // namespace
}  // namespace jet::test
