// Trees of index pages: order against a plain sort, growth and shrinking, damage.
#include "platform/jet/index_tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "platform/jet/check_indexes.h"
#include "tests/platform/jet/storage_file.h"
#include "tests/platform/jet/test_random.h"

namespace jet {
namespace {

using test::StorageFile;
using testing::IsEmpty;

// A file that holds nothing but one index, each change a transaction of its own.
class TestIndex {
 public:
  TestIndex() {
    PageTransaction transaction(file_.pager());
    root_ = IndexTree::Create(file_.pager(), file_.allocator(), kTable, StorageFile::kOwned);
    transaction.Commit();
  }
  // A copy of the file as it is.
  TestIndex(const TestIndex& other) : root_(other.root_) {
    file_.Load(const_cast<TestIndex&>(other).disk().Snapshot());
  }
  TestIndex& operator=(const TestIndex&) = delete;

  IndexTree tree() {
    return {file_.pager(), file_.allocator(), kTable, root_, StorageFile::kOwned};
  }
  bool Insert(const IndexEntry& entry) {
    return Change([&] { return tree().Insert(entry); });
  }
  bool Remove(const IndexEntry& entry) {
    return Change([&] { return tree().Remove(entry); });
  }
  // All entries as the cursor gives them.
  std::vector<IndexEntry> Walk() {
    std::vector<IndexEntry> entries;
    for (auto cursor = tree().First(); !cursor.at_end(); cursor.Next())
      entries.push_back(cursor.entry());
    return entries;
  }

  // Drops everything in memory, as a new process would.
  void Reopen() { file_.Reopen(); }
  test::MemoryDisk& disk() { return file_.disk(); }
  StorageFile& file() { return file_; }
  PageNumber root() const { return root_; }
  std::vector<PageNumber> MapPages() { return file_.Map(StorageFile::kOwned).Pages(); }
  unsigned Height() { return HeightOf(root_); }

  // What the file check finds wrong with a tree of these entries, whatever it only notes included.
  std::vector<std::string> Faults(const std::set<IndexEntry>& entries) {
    std::vector<IndexEntry> by_row(entries.begin(), entries.end());
    std::ranges::sort(by_row, {}, &IndexEntry::row);
    check::ExpectedEntries expected;
    for (const IndexEntry& entry : by_row) expected.Add(entry.row, entry.key, false);
    check::CheckedTable table;
    table.definition.page = kTable;
    PhysicalIndex& index = table.definition.physical_indexes.emplace_back();
    index.pages_map = StorageFile::kOwned;
    index.root = root_;
    return file_.Faults(true, [&](check::State& state) {
      state.Claim(kTable, state.owners.Name("the frame"));
      CheckIndex(state, table, 0, expected);
    });
  }

 private:
  static constexpr PageNumber kTable = StorageFile::kTable;

  // The levels of nodes from here down. Each node has to give its own, and its last child as the
  // tail: the file check, which takes other writers' nodes as well, asks for neither.
  unsigned HeightOf(PageNumber number) {
    const ByteView page(disk().Page(number), number);
    const IndexPage node(page);
    if (node.is_leaf()) return 0;
    EXPECT_NE(node.tail(), 0U);
    const unsigned height = page.U8(index_page_format::kLevelAt);
    for (std::size_t slot = 0; slot < node.child_count(); ++slot)
      EXPECT_EQ(HeightOf(node.Child(slot)) + 1, height);
    return height;
  }

  template <typename Action>
  bool Change(Action action) {
    PageTransaction transaction(file_.pager());
    const bool result = action();
    transaction.Commit();
    return result;
  }

  StorageFile file_;
  PageNumber root_ = 0;
};

// A key of `size` bytes whose first four carry the number, so that keys sort as numbers do. No two
// such entries have one row.
IndexEntry Numbered(std::uint32_t number, std::size_t size) {
  IndexEntry entry{Bytes(size, std::byte{0x33}), {number + 1, static_cast<std::uint8_t>(size)}};
  for (std::size_t i = 0; i < 4; ++i) entry.key[i] = std::byte(number >> (24 - 8 * i) & 0xff);
  return entry;
}

// The tree holds exactly these entries, and breaks no rule of the format.
void ExpectSound(TestIndex& index, const std::set<IndexEntry>& expected) {
  EXPECT_THAT(index.Faults(expected), IsEmpty());
  EXPECT_TRUE(std::ranges::equal(index.Walk(), expected));
}

struct Workload {
  const char* name;
  unsigned count;
  std::size_t key_size;
  enum { kAscending, kDescending, kRandom, kFewKeys } order;
  unsigned least_height;
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
  EXPECT_GE(index.Height(), workload.least_height);
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
  EXPECT_THAT(index.MapPages(), testing::ElementsAre(index.root()));

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

// Links that run in a circle end in an error: a node that is its own child, leaves that are their
// own neighbours.
TEST(IndexTreeTest, CirclesAreDamage) {
  TestIndex index;
  for (std::uint32_t i = 0; i < 40; ++i) index.Insert(Numbered(i, 500));
  for (const PageNumber page : index.MapPages()) {
    TestIndex broken(index);
    ByteEditor(broken.disk().Page(page), page).SetU32(page == index.root() ? 20 : 16, page);
    const auto use = [&] {
      broken.Walk();
      broken.tree().ContainsKey(Numbered(1000, 500).key);
    };
    EXPECT_THROW(use(), Error);
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

// Everything in the model is found by walking and by searching; the entries of the change cut off
// may be there or not, others may not. The model then holds what is there.
void ExpectFindable(TestIndex& index, std::set<IndexEntry>& model,
                    const std::vector<IndexEntry>& unsure) {
  const std::vector<IndexEntry> walked = index.Walk();
  for (const IndexEntry& entry : unsure) {
    model.erase(entry);
    if (std::ranges::find(walked, entry) != walked.end()) model.insert(entry);
  }
  ASSERT_TRUE(std::ranges::equal(walked, model));
  IndexTree tree = index.tree();
  for (const IndexEntry& entry : model) ASSERT_TRUE(tree.ContainsKey(entry.key));
}

class KilledWriterTest : public testing::TestWithParam<unsigned> {
 protected:
  IndexEntry SomeEntry() {
    std::uint32_t number = random_() % 900;
    // Now and then a run of ascending keys, so that right edges split, too.
    if (random_() % 4 == 0) number = 900 + ++ascending_ % 200;
    if (near_) number = *near_ + random_() % 60;
    return Numbered(number, 300 + random_() % 200);
  }
  // Takes an entry out of the model or puts one in; what was done, as a change of an index.
  std::pair<bool, IndexEntry> Step(std::set<IndexEntry>& model, std::uint32_t removals_in_ten) {
    IndexEntry entry = SomeEntry();
    const bool removes = !model.empty() && random_() % 10 < removals_in_ten;
    if (removes) {
      auto victim = model.lower_bound(entry);
      entry = *(victim == model.end() ? std::prev(victim) : victim);
      model.erase(entry);
    } else {
      model.insert(entry);
    }
    return {removes, entry};
  }

  test::Random random_{GetParam()};
  std::uint32_t ascending_ = 0;
  std::optional<std::uint32_t> near_;  // all entries come from here on
};

// Transactions of one change, or of many additions that split neighbouring pages under one node.
TEST_P(KilledWriterTest, EveryEntryStaysInReachAndChangesGoOn) {
  TestIndex index;
  std::set<IndexEntry> model;
  int states = 0;
  for (int round = 0; round < 180; ++round) {
    SCOPED_TRACE(testing::Message() << "round " << round);
    const std::set<IndexEntry> before = model;
    std::vector<std::pair<bool, IndexEntry>> steps;
    std::vector<IndexEntry> unsure;
    const bool adds_many = random_() % 8 == 0;
    if (adds_many) near_ = random_() % 900;
    for (std::uint32_t left = adds_many ? 2 + random_() % 20 : 1; left > 0; --left) {
      const std::uint32_t removals = adds_many ? 0 : round / 60 % 2 == 0 ? 2 : 9;
      unsure.push_back(steps.emplace_back(Step(model, removals)).second);
    }
    near_.reset();
    const auto change = [&](TestIndex& target) {
      PageTransaction transaction(target.file().pager());
      for (const auto& [removes, entry] : steps) {
        if (removes)
          target.Remove(entry);
        else
          target.Insert(entry);
      }
      transaction.Commit();
    };
    for (const auto& killed : KilledAtEachWrite(index, change)) {
      ++states;
      std::set<IndexEntry> later = before;
      ASSERT_NO_FATAL_FAILURE(ExpectFindable(*killed, later, unsure));
      for (int i = 0; i < 30; ++i) {
        const auto [removes, entry] = Step(later, 5);
        if (removes) {
          ASSERT_TRUE(killed->Remove(entry));
        } else {
          killed->Insert(entry);
        }
      }
      ASSERT_NO_FATAL_FAILURE(ExpectFindable(*killed, later, {}));
      for (const IndexEntry& entry : later) ASSERT_TRUE(killed->Remove(entry));
      ASSERT_THAT(killed->Walk(), IsEmpty());
    }
    change(index);
  }
  ExpectSound(index, model);
  EXPECT_GT(states, 100);
}

INSTANTIATE_TEST_SUITE_P(Seeds, KilledWriterTest, testing::Values(1U, 2U, 3U));

}  // namespace
}  // namespace jet
