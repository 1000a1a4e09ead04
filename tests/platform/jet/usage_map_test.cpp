// Sets of pages in each form, their conversions, and the map of free pages up to its limits.
#include "platform/jet/usage_map.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "platform/jet/data_page.h"
#include "tests/platform/jet/definitions.h"
#include "tests/platform/jet/storage_file.h"
#include "tests/platform/jet/test_random.h"

namespace jet::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::span<const std::byte> RowOf(Pager& pager, RowPointer at) {
  const ByteView page = pager.View(at.page);
  return data_page::RowBytes(page, data_page::SlotAt(page, at.row));
}

// Both kinds of map against a plain set, over pages near and far, in every form they pass through.
TEST(UsageMapTest, BehavesAsASet) {
  for (const MapKind kind : {MapKind::kOwned, MapKind::kHint}) {
    for (const PageNumber reach : {400U, 1500U, 30000U, 524288U}) {
      SCOPED_TRACE(testing::Message()
                   << (kind == MapKind::kOwned ? "owned" : "hint") << " up to " << reach);
      StorageFile file;
      UsageMap map = file.Map(StorageFile::kOwned, kind);
      std::set<PageNumber> model;
      Random random(reach);
      PageTransaction transaction(file.pager());
      for (int step = 0; step < 600; ++step) {
        const PageNumber page = random() % reach;
        if (random() % 3 == 0 && !model.empty()) {
          const PageNumber gone = step % 2 == 0 ? *model.begin() : page;
          map.Remove(gone);
          model.erase(gone);
        } else {
          map.Add(page);
          model.insert(page);
        }
        const auto above = model.lower_bound(page);
        const auto below = above == model.begin() ? std::nullopt : std::optional(*std::prev(above));
        ASSERT_EQ(map.LastBelow(page), below);
        ASSERT_EQ(map.Contains(page), model.contains(page));
        ASSERT_EQ(map.First(), model.empty() ? std::nullopt : std::optional(*model.begin()));
        ASSERT_EQ(map.Last(), model.empty() ? std::nullopt : std::optional(*model.rbegin()));
      }
      EXPECT_EQ(map.Pages(), std::vector<PageNumber>(model.begin(), model.end()));
      transaction.Commit();
      file.Reopen();
      EXPECT_EQ(file.Map(StorageFile::kOwned, kind).Pages(),
                std::vector<PageNumber>(model.begin(), model.end()));
    }
  }
}

TEST(UsageMapTest, OwnedWindowsLengthenByFourBytesWhileTheirPageHasRoom) {
  StorageFile file;
  UsageMap map = file.Map(StorageFile::kOwned);
  PageTransaction transaction(file.pager());
  map.Add(511);
  EXPECT_EQ(RowOf(file.pager(), map.at()).size(), 69U);
  map.Add(512);
  EXPECT_EQ(RowOf(file.pager(), map.at()).size(), 73U);
  map.Add(544);
  EXPECT_EQ(RowOf(file.pager(), map.at()).size(), 77U);
  // Three rows of 69 bytes and four slots beside it leave 3867 bytes: 30,880 pages, in whole steps.
  map.Add(30879);
  EXPECT_EQ(RowOf(file.pager(), map.at()).size(), 3865U);
  map.Add(30880);
  EXPECT_EQ(RowOf(file.pager(), map.at()).size(), 69U);
  EXPECT_EQ(RowOf(file.pager(), map.at())[0], std::byte{1});
  EXPECT_THAT(map.Pages(), ElementsAre(511, 512, 544, 30879, 30880));
  // The rows of other maps have moved back and forth on the page and are what they were.
  EXPECT_THAT(file.Map(StorageFile::kWithRoom).Pages(), IsEmpty());
}

TEST(PageAllocatorTest, TakesTheLowestFreePageAndReusesReleasedOnesLater) {
  StorageFile file;
  PageTransaction first(file.pager());
  for (PageNumber page = 7; page < 12; ++page) EXPECT_EQ(file.allocator().Take(), page);
  file.pager().Edit(9).SetU8(0, 1);
  first.Commit();
  file.disk().write_log.clear();
  {
    PageTransaction second(file.pager());
    file.allocator().Release(9, std::uint8_t{9});
    file.allocator().Release(8);
    EXPECT_EQ(file.allocator().Take(), 12U);
    EXPECT_FALSE(file.allocator().IsFree(8));
    second.Commit();
  }
  // The taken page's bit, the page, the mark of the released one, and last the released bits.
  EXPECT_THAT(file.disk().write_log, ElementsAre(1, 12, 9, 1));
  EXPECT_TRUE(file.allocator().IsFree(8));
  EXPECT_EQ(file.disk().Page(9)[0], std::byte{9});
  {
    PageTransaction third(file.pager());
    EXPECT_EQ(file.allocator().Take(), 8U);
    EXPECT_EQ(file.allocator().Take(), 9U);
    EXPECT_EQ(file.pager().View(9).U8(0), 0);
    EXPECT_EQ(file.allocator().Take(), 13U);
  }
  PageTransaction fourth(file.pager());
  EXPECT_EQ(file.allocator().Take(), 8U) << "the dropped transaction's pages are free again";
}

TEST(PageAllocatorTest, RefusesWhatIsNeverFree) {
  StorageFile file;
  {
    PageTransaction transaction(file.pager());
    const PageNumber page = file.allocator().Take();
    for (const PageNumber never : {PageNumber{0}, PageNumber{1}, PageNumber{5}, page + 1, kNoPage})
      EXPECT_EQ(KindOf([&] { file.allocator().Release(never); }), ErrorKind::kDamaged) << never;
    file.allocator().Release(page);
    file.allocator().Release(page);
    EXPECT_EQ(KindOf([&] { transaction.Commit(); }), ErrorKind::kDamaged) << "freed twice";
  }
  {
    PageTransaction transaction(file.pager());
    file.Map({1, 1}).Add(7);
    EXPECT_EQ(file.allocator().Take(), 8U) << "7 is released and not yet free";
  }
  // A map full of rubbish that offers the catalog's own definition.
  file.disk().Page(1)[kPageSize - 64] = std::byte{0xff};
  file.Reopen();
  PageTransaction transaction(file.pager());
  EXPECT_EQ(KindOf([&] { file.allocator().Take(); }), ErrorKind::kDamaged);
}

// A file of 500 pages whose map ends at 512, on a page with little room beside it.
void MakeCrowdedMap(StorageFile& file, std::size_t room) {
  PageBytes& page = file.disk().Page(1);
  std::fill(page.end() - 64, page.end(), std::byte{0});
  page[kPageSize - 2] = std::byte{0xf0};
  page[kPageSize - 1] = std::byte{0xff};
  ByteEditor editor(page, 1);
  data_page::AddRow(editor, Bytes(data_page::FreeBytes(editor.view()) - 2 - room));
  file.disk().Resize(500);
  file.Reopen();
}

TEST(PageAllocatorTest, TheMapGrowsInStepsThenGoesToPagesOfItsOwn) {
  StorageFile file;
  MakeCrowdedMap(file, 13);  // room for two steps: four bytes stay free
  std::set<PageNumber> taken;
  for (PageNumber i = 0; i < 200; ++i) {
    PageTransaction transaction(file.pager());
    taken.insert(file.allocator().Take());
    transaction.Commit();
  }
  EXPECT_EQ(taken.size(), 200U);
  EXPECT_EQ(*taken.begin(), 500U);
  EXPECT_EQ(*taken.rbegin(), 700U);
  EXPECT_FALSE(taken.contains(576)) << "the first page behind the window is the map page";
  const auto row = RowOf(file.pager(), {1, 0});
  EXPECT_EQ(row.size(), 69U);
  EXPECT_EQ(row[0], std::byte{1});
  EXPECT_EQ(ByteView(row).U32(1), 576U);
  EXPECT_TRUE(file.allocator().IsFree(701));
  EXPECT_TRUE(file.allocator().IsFree(40000));
  {
    PageTransaction transaction(file.pager());
    file.allocator().Release(50);
    transaction.Commit();
  }
  PageTransaction transaction(file.pager());
  EXPECT_EQ(file.allocator().Take(), 50U);
}

TEST(PageAllocatorTest, EntersTheNextRangeAndEndsAtTheLargestFile) {
  static constexpr PageNumber kRange = 32736;
  StorageFile file;
  // Reference form: page 10 is the map page of the first range, with only its last two pages free.
  PageBytes& page = file.disk().Page(1);
  ByteEditor editor(page, 1);
  const std::size_t row = kPageSize - 69;
  std::ranges::fill(editor.Slice(row, 69), std::byte{0});
  editor.SetU8(row, 1);
  editor.SetU32(row + 1, 10);
  file.disk().Resize(kRange - 2);
  ByteEditor map_page(file.disk().Page(10), 10);
  map_page.SetU32(0, 0x0105);
  map_page.SetU8(kPageSize - 1, 0xc0);
  file.Reopen();
  {
    PageTransaction transaction(file.pager());
    EXPECT_EQ(file.allocator().Take(), kRange - 2);
    EXPECT_EQ(file.allocator().Take(), kRange - 1);
    EXPECT_EQ(file.allocator().Take(), kRange + 1) << "the range's first page is its map page";
    transaction.Commit();
  }
  EXPECT_EQ(ByteView(RowOf(file.pager(), {1, 0})).U32(5), kRange);
  EXPECT_FALSE(file.allocator().IsFree(kRange));

  file.disk().Resize(0x80000);
  for (std::size_t i = 0; i < 17; ++i) editor.SetU32(row + 1 + 4 * i, 10);
  map_page.SetU8(kPageSize - 1, 0);
  file.Reopen();
  PageTransaction transaction(file.pager());
  EXPECT_EQ(KindOf([&] { file.allocator().Take(); }), ErrorKind::kDiskFull);
}

// Killed between any two writes of a conversion, the map of free pages can still be used.
TEST(PageAllocatorTest, AKilledConversionLeavesAMap) {
  for (std::size_t killed_at = 0; killed_at < 6; ++killed_at) {
    SCOPED_TRACE(killed_at);
    StorageFile file;
    MakeCrowdedMap(file, 0);
    {
      PageTransaction transaction(file.pager());
      for (int i = 0; i < 11; ++i) file.allocator().Take();
      transaction.Commit();
    }
    file.disk().CutOffAtWrite(killed_at);
    {
      PageTransaction transaction(file.pager());
      EXPECT_EQ(file.allocator().Take(), 511U);
      EXPECT_EQ(file.allocator().Take(), 513U);
      transaction.Commit();
    }
    EXPECT_EQ(file.disk().writes, 5U) << "one for page 511, so that 512 can be written";
    file.disk().Heal();
    file.Reopen();
    PageTransaction transaction(file.pager());
    const PageNumber taken = file.allocator().Take();
    const bool is_converted = RowOf(file.pager(), {1, 0})[0] == std::byte{1};
    EXPECT_EQ(is_converted, killed_at > 2);
    EXPECT_EQ(taken, is_converted ? 514U : 511U);
    transaction.Commit();
  }
}

}  // namespace
}  // namespace jet::test
