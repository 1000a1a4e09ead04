// The file in memory and the independent reader of index_test_tree.h.
#include "tests/platform/jet/index_test_tree.h"

namespace jet::test {
namespace {

using Pages = std::vector<PageBytes>;

std::uint32_t Little(const PageBytes& page, std::size_t at, std::size_t size) {
  std::uint32_t value = 0;
  for (std::size_t i = size; i-- > 0;)
    value = value << 8 | std::to_integer<std::uint32_t>(page[at + i]);
  return value;
}

std::uint32_t Big(const Bytes& bytes, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i)
    value = value << 8 | std::to_integer<std::uint32_t>(bytes.at(at + i));
  return value;
}

class TreeReader {
 public:
  TreeReader(const Pages& pages, PageNumber table) : pages_(pages), table_(table) {}

  TreeContent Read(PageNumber root) {
    Visit(root, 0);
    const PageBytes& top = pages_.at(root);
    if (Little(top, 12, 4) != 0 || Little(top, 16, 4) != 0) Fault(root, "a root with neighbours");
    for (std::size_t i = 0; i < leaves_.size(); ++i) {
      const PageBytes& leaf = pages_.at(leaves_[i]);
      if (Little(leaf, 12, 4) != (i == 0 ? 0 : leaves_[i - 1])) Fault(leaves_[i], "previous link");
      if (Little(leaf, 16, 4) != (i + 1 == leaves_.size() ? 0 : leaves_[i + 1]))
        Fault(leaves_[i], "next link");
    }
    for (std::size_t i = 1; i < content_.entries.size(); ++i) {
      if (!(content_.entries[i - 1] < content_.entries[i])) Fault(root, "entries out of order");
    }
    return std::move(content_);
  }

 private:
  void Fault(PageNumber page, const char* what) {
    content_.faults.push_back("page " + std::to_string(page) + ": " + what);
  }

  // Returns the highest entry below the page.
  std::optional<IndexEntry> Visit(PageNumber number, std::size_t depth) {
    if (number >= pages_.size() || !content_.pages.insert(number).second || depth > 16) {
      Fault(number, "reached twice, or outside the file");
      return std::nullopt;
    }
    const PageBytes& page = pages_[number];
    const std::uint32_t type = Little(page, 0, 2);
    if (type != 0x0103 && type != 0x0104) {
      Fault(number, "not an index page");
      return std::nullopt;
    }
    const bool leaf = type == 0x0104;
    if (Little(page, 4, 4) != table_) Fault(number, "owner");
    if (Little(page, 8, 4) != 0) Fault(number, "bytes 8 to 11");

    std::vector<Bytes> entries;
    const std::size_t prefix = Little(page, 24, 2);
    std::size_t start = 0;
    for (std::size_t bit = 0; bit < 8 * 453; ++bit) {
      if ((page[27 + bit / 8] >> (bit % 8) & std::byte{1}) == std::byte{0}) continue;
      Bytes entry;
      for (std::size_t i = 0; i < prefix && !entries.empty(); ++i)
        entry.push_back(entries[0].at(i));
      for (std::size_t i = start; i < bit; ++i) entry.push_back(page.at(480 + i));
      entries.push_back(std::move(entry));
      start = bit;
    }
    if (Little(page, 2, 2) != 3616 - start) Fault(number, "free space");
    if (entries.size() < 2 && prefix != 0) Fault(number, "a prefix without entries to share it");

    std::optional<IndexEntry> last;
    if (leaf) {
      if (page[26] != std::byte{0} || Little(page, 20, 4) != 0) Fault(number, "level or tail");
      if (leaves_.empty()) content_.height = depth;
      if (depth != content_.height) Fault(number, "leaves at different depths");
      if (entries.empty() && depth > 0) Fault(number, "an empty leaf");
      leaves_.push_back(number);
      for (const Bytes& entry : entries) {
        const RowId row = RowPointer::FromStored(Big(entry, entry.size() - 4));
        last = IndexEntry{Bytes(entry.begin(), entry.end() - 4), row};
        content_.entries.push_back(*last);
      }
      return last;
    }
    for (const Bytes& entry : entries) {
      const IndexEntry bound{Bytes(entry.begin(), entry.end() - 8),
                             RowPointer::FromStored(Big(entry, entry.size() - 8))};
      const auto highest = Visit(Big(entry, entry.size() - 4), depth + 1);
      if (last && !(*last < bound)) Fault(number, "node entries out of order");
      if (!highest || *highest != bound) Fault(number, "an entry that is not its child's last one");
      last = bound;
    }
    if (Little(page, 20, 4) == 0) {
      Fault(number, "a node without tail");
    } else if (const auto highest = Visit(Little(page, 20, 4), depth + 1)) {
      if (last && !(*last < *highest)) Fault(number, "a tail below the entries");
      last = highest;
    }
    if (std::to_integer<std::size_t>(page[26]) != content_.height - depth) Fault(number, "level");
    return last;
  }

  const Pages& pages_;
  PageNumber table_;
  std::vector<PageNumber> leaves_;
  TreeContent content_;
};

}  // namespace

TestIndex::TestIndex() {
  PageTransaction transaction(file_.pager());
  root_ = IndexTree::Create(file_.pager(), file_.allocator(), kTable, StorageFile::kOwned);
  transaction.Commit();
}

TestIndex::TestIndex(const TestIndex& other) : root_(other.root_) {
  const Pages pages = const_cast<TestIndex&>(other).disk().Snapshot();
  disk().Resize(static_cast<PageNumber>(pages.size()));
  for (std::size_t i = 0; i < pages.size(); ++i) disk().Page(static_cast<PageNumber>(i)) = pages[i];
  Reopen();
}

IndexTree TestIndex::tree() {
  return {file_.pager(), file_.allocator(), kTable, root_, StorageFile::kOwned};
}

bool TestIndex::Insert(const IndexEntry& entry) {
  PageTransaction transaction(file_.pager());
  const bool unique = tree().Insert(entry);
  transaction.Commit();
  return unique;
}

bool TestIndex::Remove(const IndexEntry& entry) {
  PageTransaction transaction(file_.pager());
  const bool removed = tree().Remove(entry);
  transaction.Commit();
  return removed;
}

std::set<PageNumber> TestIndex::MapPages() {
  const auto pages = file_.Map(StorageFile::kOwned).Pages();
  return {pages.begin(), pages.end()};
}

std::vector<IndexEntry> TestIndex::Walk() {
  std::vector<IndexEntry> entries;
  for (auto cursor = tree().First(); !cursor.at_end(); cursor.Next())
    entries.push_back(cursor.entry());
  return entries;
}

TreeContent ReadTree(TestIndex& index) {
  const Pages pages = index.disk().Snapshot();
  return TreeReader(pages, TestIndex::kTable).Read(index.root());
}

}  // namespace jet::test
