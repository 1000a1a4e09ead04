// Trees of index pages: order against a plain sort, growth and shrinking, damage.
#include "platform/jet/index_tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>

#include "tests/platform/jet/index_test_tree.h"
#include "tests/platform/jet/test_random.h"

namespace jet {
namespace {

using test::ReadTree;
using test::TestIndex;
using testing::IsEmpty;

// A key of `size` bytes whose first four carry the number, so that keys sort as numbers do.
IndexEntry Numbered(std::uint32_t number, std::size_t size) {
  IndexEntry entry{Bytes(size, std::byte{0x33}), {number % 1000 + 1, 0}};
  for (std::size_t i = 0; i < 4; ++i) entry.key[i] = std::byte(number >> (24 - 8 * i) & 0xff);
  return entry;
}

// The tree holds exactly these entries, and breaks no rule of the format.
void ExpectSound(TestIndex& index, const std::set<IndexEntry>& expected) {
  const test::TreeContent content = ReadTree(index);
  EXPECT_THAT(content.faults, IsEmpty());
  EXPECT_TRUE(std::ranges::equal(content.entries, expected));
  EXPECT_EQ(index.MapPages(), content.pages);
  for (const PageNumber page : content.pages) EXPECT_FALSE(index.file().allocator().IsFree(page));
  EXPECT_TRUE(std::ranges::equal(index.Walk(), expected));
}

struct Workload {
  const char* name;
  unsigned count;
  std::size_t key_size;
  enum { kAscending, kDescending, kRandom, kFewKeys } order;
  std::size_t least_height;
};

std::vector<IndexEntry> Entries(const Workload& workload) {
  test::Random random(workload.count);
  std::vector<IndexEntry> entries;
  for (std::uint32_t i = 0; i < workload.count; ++i) {
    if (workload.order == Workload::kFewKeys) {
      IndexEntry entry = Numbered(i % 7, workload.key_size);
      entry.row = {i / 200 + 1, static_cast<std::uint8_t>(i % 200)};
      entries.push_back(entry);
    } else {
      entries.push_back(Numbered(i * 3, workload.key_size));
    }
  }
  if (workload.order == Workload::kDescending) std::ranges::reverse(entries);
  if (workload.order == Workload::kRandom || workload.order == Workload::kFewKeys)
    std::ranges::shuffle(entries, random);
  return entries;
}

class IndexTreeWorkloadTest : public testing::TestWithParam<Workload> {};

// Grows the tree in one order, looks everything up, takes all out in another order.
TEST_P(IndexTreeWorkloadTest, MatchesASortedSet) {
  const Workload& workload = GetParam();
  TestIndex index;
  std::set<IndexEntry> model;
  std::vector<IndexEntry> entries = Entries(workload);
  std::set<Bytes> keys;
  for (const IndexEntry& entry : entries) {
    ASSERT_EQ(index.Insert(entry), keys.insert(entry.key).second);
    model.insert(entry);
  }
  ExpectSound(index, model);
  EXPECT_GE(ReadTree(index).height, workload.least_height);
  EXPECT_EQ(index.Insert(entries.front()), workload.order != Workload::kFewKeys);

  index.Reopen();
  IndexTree tree = index.tree();
  for (const IndexEntry& entry : entries) {
    ASSERT_TRUE(tree.ContainsKey(entry.key));
    Bytes beyond = entry.key;
    beyond.push_back(std::byte{0});
    ASSERT_FALSE(tree.ContainsKey(beyond));
    const auto next = std::ranges::lower_bound(model, IndexEntry{beyond, {}});
    const auto cursor = tree.LowerBound(beyond);
    ASSERT_EQ(cursor.at_end(), next == model.end());
    ASSERT_TRUE(cursor.at_end() || cursor.row() == next->row);
  }

  test::Random random(3);
  std::ranges::shuffle(entries, random);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    ASSERT_TRUE(index.Remove(entries[i]));
    ASSERT_FALSE(index.Remove(entries[i]));
    model.erase(entries[i]);
    if (i % (entries.size() / 5) == 0) ExpectSound(index, model);
  }
  ExpectSound(index, model);
  EXPECT_EQ(index.MapPages(), std::set<PageNumber>{index.root()});

  const PageNumber pages = index.file().pager().page_count();
  for (const IndexEntry& entry : entries) {
    index.Insert(entry);
    model.insert(entry);
  }
  ExpectSound(index, model);
  EXPECT_LE(index.file().pager().page_count(), 2 * pages);
}

INSTANTIATE_TEST_SUITE_P(
    Orders, IndexTreeWorkloadTest,
    testing::Values(Workload{"ascending", 5000, 9, Workload::kAscending, 1},
                    Workload{"descending", 5000, 9, Workload::kDescending, 1},
                    Workload{"random", 5000, 9, Workload::kRandom, 1},
                    Workload{"few_keys", 5000, 12, Workload::kFewKeys, 1},
                    Workload{"long_ascending", 3000, 510, Workload::kAscending, 3},
                    Workload{"long_descending", 3000, 510, Workload::kDescending, 3},
                    Workload{"long_random", 3000, 510, Workload::kRandom, 3}),
    [](const auto& test) { return test.param.name; });

// Random keys of random sizes, insertions and removals mixed: prefixes come and go, bounds move.
TEST(IndexTreeTest, MixedChangesMatchASortedSet) {
  test::Random random(11);
  TestIndex index;
  std::set<IndexEntry> model;
  for (int step = 0; step < 12000; ++step) {
    const bool growing = step / 2000 % 2 == 0;
    if (!model.empty() && random() % 10 < (growing ? 3 : 7)) {
      auto victim = model.lower_bound(Numbered(random(), 4));
      if (victim == model.end()) --victim;
      ASSERT_TRUE(index.Remove(*victim));
      model.erase(victim);
    } else {
      IndexEntry entry = Numbered(random() % 2 == 0 ? random() : random() % 64, 4);
      entry.key.resize(1 + random() % (random() % 8 == 0 ? 510 : 20), std::byte(random() % 2));
      entry.row = {random() % 5, static_cast<std::uint8_t>(random())};
      const auto same = model.lower_bound({entry.key, {}});
      const bool repeated = same != model.end() && same->key == entry.key && *same != entry;
      const auto next = same == model.end() ? same : std::next(same);
      const bool others = next != model.end() && next->key == entry.key;
      ASSERT_EQ(index.Insert(entry), !repeated && !others) << step;
      model.insert(entry);
    }
    if (step % 1500 == 1499) {
      const auto content = ReadTree(index);
      ASSERT_THAT(content.faults, IsEmpty()) << step;
      ASSERT_TRUE(std::ranges::equal(content.entries, model));
      ASSERT_EQ(index.MapPages(), content.pages);
    }
  }
}

// Ascending keys fill their pages: each split moves the new entry alone.
TEST(IndexTreeTest, AscendingKeysLeavePagesFull) {
  TestIndex index;
  constexpr unsigned kCount = 400;
  for (std::uint32_t i = 0; i < kCount; ++i) index.Insert(Numbered(i, 400));
  // Nine entries a leaf under a prefix of three bytes, eight children a node, and the root.
  EXPECT_EQ(index.MapPages().size(), (kCount + 8) / 9 + 6 + 1);
}

TEST(IndexTreeTest, RefusesKeysThatNoEntryMayHave) {
  TestIndex index;
  EXPECT_THROW(index.Insert({Bytes(511), {1, 1}}), Error);
  EXPECT_THROW(index.Insert({Bytes{}, {1, 1}}), Error);
  EXPECT_TRUE(index.Insert({Bytes(510), {1, 1}}));
}

// Nodes of other writers may lack a tail, and may stay with a bound above their child's last entry.
TEST(IndexTreeTest, TakesNodesAsOtherWritersLeaveThem) {
  TestIndex index;
  std::set<IndexEntry> model;
  for (std::uint32_t i = 0; i < 40; ++i) {
    const IndexEntry entry = Numbered(10 * i, 500);
    index.Insert(entry);
    model.insert(entry);
  }
  // The tail becomes an ordinary child, bounded by its last entry.
  ByteEditor root(index.disk().Page(index.root()), index.root());
  const IndexPage node(root.view());
  ASSERT_FALSE(node.is_leaf());
  InsertEntry(root, node.count(), NodeEntryBytes(*model.rbegin(), node.tail()));
  root.SetU32(20, 0);
  index.Reopen();
  for (const std::uint32_t number : {5U, 395U, 391U, 397U, 1U}) {
    EXPECT_TRUE(index.Insert(Numbered(number, 500)));
    model.insert(Numbered(number, 500));
  }
  ExpectSound(index, model);
}

TEST(IndexTreeTest, DamagedFilesEndInAnErrorOrAnAnswer) {
  TestIndex sound;
  for (std::uint32_t i = 0; i < 300; ++i) sound.Insert(Numbered(i * 7919 % 300, 200));
  ASSERT_GE(ReadTree(sound).height, 2U);
  std::vector<PageNumber> pages(1, sound.root());
  for (const PageNumber page : sound.MapPages()) {
    if (pages.size() < 8) pages.push_back(page);
  }
  test::Random random(5);
  int damaged = 0;
  for (const PageNumber page : pages) {
    for (std::size_t at = 0; at < 480 + 40; ++at) {
      TestIndex index(sound);
      index.disk().Page(page)[at] ^= std::byte(1U << random() % 8);
      for (const auto& action : std::initializer_list<std::function<void()>>{
               [&] { index.Walk(); },
               [&] { index.tree().ContainsKey(Numbered(random() % 300, 200).key); },
               [&] { index.Insert(Numbered(1000 + random() % 300, 300)); },
               [&] { index.Insert(Numbered(random() % 300, 301)); },
               [&] { index.Remove(Numbered(random() % 300, 200)); }}) {
        try {
          action();
        } catch (const Error& error) {
          EXPECT_EQ(error.kind(), ErrorKind::kDamaged) << error.what();
          ++damaged;
        }
      }
    }
  }
  EXPECT_GT(damaged, 1000);
}

// Links that run in a circle end in an error.
TEST(IndexTreeTest, CirclesAreDamage) {
  TestIndex index;
  for (std::uint32_t i = 0; i < 40; ++i) index.Insert(Numbered(i, 500));
  for (const PageNumber page : index.MapPages()) {
    TestIndex broken(index);
    ByteEditor editor(broken.disk().Page(page), page);
    if (page == index.root())
      editor.SetU32(20, page);  // a node that is its own child
    else
      editor.SetU32(16, page);  // a leaf that is its own neighbour
    EXPECT_THROW(
        {
          broken.Walk();
          broken.tree().ContainsKey(Numbered(1000, 500).key);
        },
        Error);
  }
}

// ---- A killed writer ----

// The states of the file after a change was cut off before each of its page writes.
std::vector<std::unique_ptr<TestIndex>> KilledAtEachWrite(
    const TestIndex& before, const std::function<void(TestIndex&)>& change) {
  TestIndex whole(before);
  whole.disk().Heal();
  change(whole);
  std::vector<std::unique_ptr<TestIndex>> killed;
  for (std::size_t writes = 1; writes < whole.disk().writes; ++writes) {
    auto index = std::make_unique<TestIndex>(before);
    index->disk().CutOffAtWrite(writes);
    change(*index);
    index->disk().Heal();
    index->Reopen();
    killed.push_back(std::move(index));
  }
  return killed;
}

// Everything in the model is found by walking and by searching; but for `unsure` nothing else.
void ExpectFindable(TestIndex& index, std::set<IndexEntry> model, const IndexEntry& unsure) {
  std::vector<IndexEntry> walked = index.Walk();
  if (std::ranges::find(walked, unsure) != walked.end())
    model.insert(unsure);
  else
    model.erase(unsure);
  ASSERT_TRUE(std::ranges::equal(walked, model));
  IndexTree tree = index.tree();
  for (const IndexEntry& entry : model) ASSERT_TRUE(tree.ContainsKey(entry.key));
}

class KilledWriterSequenceTest : public testing::TestWithParam<unsigned> {};

TEST_P(KilledWriterSequenceTest, EveryEntryStaysInReachAndChangesGoOn) {
  test::Random random(GetParam());
  TestIndex index;
  std::set<IndexEntry> model;
  const auto some_entry = [&] {
    // Now and then a run of ascending keys, so that right edges split, too.
    static std::uint32_t ascending = 0;
    return Numbered(random() % 4 == 0 ? 900 + ++ascending % 200 : random() % 900,
                    300 + random() % 200);
  };
  int states = 0;
  for (int step = 0; step < 260; ++step) {
    const bool growing = step / 90 % 2 == 0;
    IndexEntry entry = some_entry();
    const bool removes = !model.empty() && random() % 10 < (growing ? 2 : 9);
    if (removes) {
      auto victim = model.lower_bound(entry);
      if (victim == model.end()) --victim;
      entry = *victim;
    }
    const auto change = [&](TestIndex& target) {
      if (removes)
        target.Remove(entry);
      else
        target.Insert(entry);
    };
    for (const auto& killed : KilledAtEachWrite(index, change)) {
      ++states;
      SCOPED_TRACE(testing::Message() << "step " << step << (removes ? " remove" : " insert"));
      ASSERT_NO_FATAL_FAILURE(ExpectFindable(*killed, model, entry));
      std::set<IndexEntry> later;
      for (const IndexEntry& found : killed->Walk()) later.insert(found);
      for (int i = 0; i < 40; ++i) {
        IndexEntry next = some_entry();
        if (random() % 2 == 0 && !later.empty()) {
          auto victim = later.lower_bound(next);
          if (victim == later.end()) --victim;
          next = *victim;
          ASSERT_TRUE(killed->Remove(next));
          later.erase(next);
        } else {
          killed->Insert(next);
          later.insert(next);
        }
      }
      ASSERT_NO_FATAL_FAILURE(ExpectFindable(*killed, later, {}));
      while (!later.empty()) {
        ASSERT_TRUE(killed->Remove(*later.begin()));
        later.erase(later.begin());
      }
      ASSERT_THAT(killed->Walk(), IsEmpty());
    }
    change(index);
    if (removes)
      model.erase(entry);
    else
      model.insert(entry);
  }
  EXPECT_GT(states, 60);
}

// Two leaves far from each other split under one node in one transaction: the node is not written
// before both are, nor a leaf before its new neighbour.
TEST(KilledWriterTest, SplitsOfOneTransactionKeepEveryEntryInReach) {
  for (const bool ascending : {true, false}) {
    TestIndex index;
    std::set<IndexEntry> model;
    for (std::uint32_t i = 0; i < 200; ++i) {
      model.insert(Numbered(10 * i, 500));
      index.Insert(Numbered(10 * i, 500));
    }
    std::vector<std::uint32_t> added{5, 405, 15, 25, 805, 815, 1205, 1505, 1705};
    for (std::uint32_t i = 60; i < 90; ++i) added.push_back(10 * i + 3);
    const auto change = [&](TestIndex& target) {
      PageTransaction transaction(target.file().pager());
      for (std::size_t i = 0; i < added.size(); ++i)
        target.Insert(Numbered(added[ascending ? i : added.size() - 1 - i], 500));
      transaction.Commit();
    };
    const auto states = KilledAtEachWrite(index, change);
    ASSERT_GT(states.size(), 20U);
    for (std::size_t state = 0; state < states.size(); ++state) {
      SCOPED_TRACE(testing::Message() << "killed after " << state + 1 << " writes");
      TestIndex& killed = *states[state];
      std::set<IndexEntry> expected = model;
      for (const std::uint32_t number : added) {
        if (killed.tree().ContainsKey(Numbered(number, 500).key))
          expected.insert(Numbered(number, 500));
      }
      ASSERT_TRUE(std::ranges::equal(killed.Walk(), expected));
      for (const IndexEntry& entry : expected) ASSERT_TRUE(killed.tree().ContainsKey(entry.key));
      for (std::uint32_t i = 0; i < 200; i += 3) {
        killed.Insert(Numbered(10 * i + 7, 500));
        expected.insert(Numbered(10 * i + 7, 500));
      }
      ASSERT_TRUE(std::ranges::equal(killed.Walk(), expected));
    }
  }
}

// A removal cut off so that its empty leaf is out of the chain but still known to the node.
TEST(KilledWriterTest, NothingIsAddedToALeafOutsideTheChain) {
  TestIndex index;
  std::set<IndexEntry> model;
  for (std::uint32_t i = 0; i < 70; ++i) {
    model.insert(Numbered(10 * i, 500));
    index.Insert(Numbered(10 * i, 500));
  }
  const auto cursor = index.tree().LowerBound(Numbered(300, 500).key);
  const auto leaf_of = [&](const IndexEntry& entry) -> PageNumber {
    for (const PageNumber page : index.MapPages()) {
      const IndexPage view(index.file().pager().View(page));
      const std::size_t at = view.LowerBound(entry.key, entry.row);
      if (view.is_leaf() && at < view.count() && view.Entry(at) == entry) return page;
    }
    return 0;
  };
  const PageNumber leaf = leaf_of(cursor.entry());
  ASSERT_NE(leaf, 0U);
  ByteEditor empty(index.disk().Page(leaf), leaf);
  while (IndexPage(empty.view()).count() > 0) {
    model.erase(IndexPage(empty.view()).Entry(0));
    EraseEntry(empty, 0);
  }
  const PageNumber before = empty.view().U32(12);
  const PageNumber after = empty.view().U32(16);
  ByteEditor(index.disk().Page(before), before).SetU32(16, after);
  ByteEditor(index.disk().Page(after), after).SetU32(12, before);
  index.Reopen();
  model.insert(Numbered(301, 500));
  EXPECT_TRUE(index.Insert(Numbered(301, 500)));
  ExpectSound(index, model);
}

INSTANTIATE_TEST_SUITE_P(Seeds, KilledWriterSequenceTest, testing::Values(1U, 2U, 3U, 4U));

}  // namespace
}  // namespace jet
