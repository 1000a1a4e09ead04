// Page transactions: what readers see, what reaches the disk, in which order, and what failures
// leave.
#include "platform/jet/pager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

TEST_P(PagerTest, ADroppedTransactionLeavesNothing) {
  {
    PageTransaction transaction(*pager);
    Set(3, 33);
    pager->EditNew(kPages).SetU8(0, 99);
    pager->EditNew(5).SetU8(0, 55);
    pager->Defer(CleanUp::kFreePages, [] { FAIL() << "cleaned up after nothing"; });
  }
  EXPECT_EQ(Get(3), 3);
  EXPECT_EQ(Get(5), 5);
  EXPECT_EQ(pager->page_count(), kPages);
  EXPECT_EQ(disk->writes, 0U);
  EXPECT_EQ(pager->rollback_count(), 1U);
  PageTransaction transaction(*pager);
  Set(4, 44);
  transaction.Commit();
  EXPECT_THAT(disk->write_log, ElementsAre(4));
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

// Whatever write fails, and whether or not the disk recovers for the old bytes to be put back.
TEST_P(PagerTest, AFailedWritePutsEverythingBack) {
  const auto disk_before = disk->Snapshot();
  const auto change = [this] {
    PageTransaction transaction(*pager);
    pager->Defer(CleanUp::kFreePages, [this] { Set(1, 101); });
    Set(1, 11);
    Set(2, 22);
    pager->EditNew(4).SetU8(0, 44);
    pager->EditNew(kPages).SetU8(0, 99);
    transaction.Commit();
  };
  for (std::size_t failing = 0; failing < 5; ++failing) {
    SCOPED_TRACE(failing);
    disk->FailAtWrite(failing, failing % 2 == 0 ? ErrorKind::kDiskFull : ErrorKind::kIo);
    try {
      change();
      FAIL() << "nothing failed";
    } catch (const Error& error) {
      EXPECT_EQ(error.kind(), disk->failure);
    }
    EXPECT_TRUE(disk->Snapshot() == disk_before);
    EXPECT_EQ(Get(1), 1);
    EXPECT_EQ(Get(4), 4);
    EXPECT_EQ(pager->page_count(), kPages);
  }
  disk->Heal();
  change();
  EXPECT_EQ(disk->writes, 5U);
  EXPECT_EQ(Get(1), 101);
}

TEST_P(PagerTest, WhenOldBytesCannotBePutBackMemoryTellsWhatTheDiskHas) {
  {
    PageTransaction transaction(*pager);
    Set(1, 11);
    Set(2, 22);
    disk->FailAtWrite(1);
    disk->keeps_failing = true;
    EXPECT_THROW(transaction.Commit(), Error);
  }
  disk->Heal();
  EXPECT_EQ(Get(1), 11);
  EXPECT_EQ(Get(2), 2);
}

TEST_P(PagerTest, AFailedCleanUpWritesNothing) {
  PageTransaction transaction(*pager);
  Set(1, 11);
  pager->Defer(CleanUp::kUnreferenced, [this] { Set(kPages, 0); });
  EXPECT_THROW(transaction.Commit(), Error);
  EXPECT_EQ(disk->writes, 0U);
  EXPECT_EQ(Get(1), 1);
}

TEST_P(PagerTest, ASmallCacheChangesNothingThatIsSeen) {
  Open(2);
  const Page kept = pager->Read(0);
  {
    PageTransaction transaction(*pager);
    for (PageNumber page = 0; page < kPages; ++page) Set(page, static_cast<int>(page) + 50);
    for (PageNumber page = 0; page < kPages; ++page) EXPECT_EQ(Get(page), page + 50);
    transaction.Commit();
  }
  for (int round = 0; round < 3; ++round) {
    for (PageNumber page = 0; page < kPages; ++page) EXPECT_EQ(Get(page), page + 50);
  }
  EXPECT_EQ(kept.view().U8(0), 0);
}

TEST_P(PagerTest, GrowsOverPagesThatOthersMeantToUse) {
  PageTransaction transaction(*pager);
  pager->EditNew(kPages + 3).SetU8(0, 7);
  EXPECT_THROW(pager->EditNew(kPages + 100000), Error);
  transaction.Commit();
  EXPECT_EQ(disk->pages.size(), kPages + 4);
  EXPECT_EQ(Get(kPages + 3), 7);
  EXPECT_EQ(Get(kPages + 1), 0);
}

TEST_P(PagerTest, RefusesWhatCannotBe) {
  EXPECT_THROW(pager->Read(kPages), Error);
  EXPECT_THROW(pager->Edit(1), std::logic_error);
  disk->read_only = true;
  Open();
  try {
    PageTransaction transaction(*pager);
    FAIL() << "a transaction on a file that is open for reading only";
  } catch (const Error& error) {
    EXPECT_EQ(error.kind(), ErrorKind::kReadOnly);
  }
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
