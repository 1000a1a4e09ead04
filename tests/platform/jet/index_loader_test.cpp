// Trees built at once from entries in order: as sound as grown ones, full, and good to change.
#include "platform/jet/index_loader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/platform/jet/index_test_tree.h"
#include "tests/platform/jet/test_random.h"

namespace jet::test {
namespace {

using ::testing::IsEmpty;

// Entries in order, with keys of this size; `equal_keys` follow one another with the same key.
std::vector<IndexEntry> Ordered(std::uint32_t count, std::size_t key_size,
                                std::uint32_t equal_keys) {
  std::vector<IndexEntry> entries;
  for (std::uint32_t i = 0; i < count; ++i) {
    IndexEntry entry{Bytes(key_size, std::byte{0x33}), {i / 200 + 1, std::uint8_t(i % 200)}};
    const std::uint32_t number = i / equal_keys;
    for (std::size_t at = 0; at < std::min<std::size_t>(4, key_size); ++at)
      entry.key[at] = std::byte(number >> (24 - 8 * at) & 0xff);
    // Keys of one index differ in length, too.
    if (key_size > 8 && number % 3 == 0) entry.key.resize(key_size - number % 5);
    entries.push_back(std::move(entry));
  }
  return entries;
}

TEST(IndexLoaderTest, BuildsWhatATreeMustBe) {
  struct Case {
    std::uint32_t count;
    std::size_t key_size;
    std::uint32_t equal_keys;
    std::size_t least_height;
  };
  // Of the longest keys a page holds seven.
  const Case cases[] = {{0, 9, 1, 0},       {1, 9, 1, 0},      {6, 505, 1, 0},   {9, 510, 1, 1},
                        {600, 9, 1, 1},     {5000, 9, 1, 1},   {700, 505, 1, 3}, {4000, 60, 1, 2},
                        {5000, 4, 5000, 1}, {5000, 12, 700, 1}};
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.count << " entries, keys of " << c.key_size);
    TestIndex index;
    const std::vector<IndexEntry> entries = Ordered(c.count, c.key_size, c.equal_keys);
    {
      StorageFile& file = index.file();
      PageTransaction transaction(file.pager());
      IndexLoader loader(file.pager(), file.allocator(), TestIndex::kTable, index.root(),
                         StorageFile::kOwned);
      for (const IndexEntry& entry : entries) loader.Add(entry);
      loader.Finish();
      transaction.Commit();
    }
    index.Reopen();
    const TreeContent built = ReadTree(index);
    EXPECT_THAT(built.faults, IsEmpty());
    EXPECT_EQ(built.entries, entries);
    EXPECT_EQ(index.MapPages(), built.pages);
    EXPECT_GE(built.height, c.least_height);

    TestIndex grown;
    for (const IndexEntry& entry : entries) grown.Insert(entry);
    EXPECT_LE(built.pages.size(), grown.MapPages().size());

    // It takes entries everywhere, and lets all of them go.
    std::vector<IndexEntry> more = entries;
    for (IndexEntry& entry : more) entry.row.page += 100000;
    for (std::size_t i = 0; i < more.size(); i += 7) index.Insert(more[i]);
    EXPECT_THAT(ReadTree(index).faults, IsEmpty());
    for (std::size_t i = 0; i < more.size(); i += 7) EXPECT_TRUE(index.Remove(more[i]));
    std::vector<IndexEntry> left = entries;
    Random random(3);
    std::ranges::shuffle(left, random);
    for (const IndexEntry& entry : left) ASSERT_TRUE(index.Remove(entry));
    EXPECT_THAT(ReadTree(index).entries, IsEmpty());
    EXPECT_EQ(index.MapPages().size(), 1u);
  }
}

TEST(IndexLoaderTest, RefusesKeysThatNoEntryHas) {
  TestIndex index;
  StorageFile& file = index.file();
  const PageTransaction transaction(file.pager());
  IndexLoader loader(file.pager(), file.allocator(), TestIndex::kTable, index.root(),
                     StorageFile::kOwned);
  EXPECT_THROW(loader.Add({Bytes(511), {1, 0}}), Error);
  EXPECT_THROW(loader.Add({{}, {1, 0}}), Error);
}

}  // namespace
}  // namespace jet::test
