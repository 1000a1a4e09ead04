// Filling a new index: see the header.
#include "platform/jet/index_loader.h"

#include <algorithm>
#include <utility>

#include "platform/jet/error.h"

namespace jet {
namespace format = index_page_format;
namespace {

// An entry that omitted all of its bytes would have no end of its own.
std::size_t SharedSize(std::span<const std::byte> one, std::span<const std::byte> other) {
  const std::size_t limit = std::min(one.size(), other.size()) - 1;
  const auto end = one.begin() + static_cast<std::ptrdiff_t>(limit);
  return static_cast<std::size_t>(std::mismatch(one.begin(), end, other.begin()).first -
                                  one.begin());
}

// The entry of a node for a child whose last entry is the one of these bytes.
Bytes ForChild(std::span<const std::byte> leaf_entry, PageNumber child) {
  Bytes entry(leaf_entry.begin(), leaf_entry.end());
  for (int shift = 24; shift >= 0; shift -= 8)
    entry.push_back(static_cast<std::byte>(child >> shift & 0xff));
  return entry;
}

PageNumber ChildOf(std::span<const std::byte> node_entry) {
  PageNumber child = 0;
  for (const std::byte byte : node_entry.last(format::kChildSize))
    child = child << 8 | std::to_integer<PageNumber>(byte);
  return child;
}

}  // namespace

IndexLoader::IndexLoader(Pager& pager, PageAllocator& allocator, PageNumber table, PageNumber root,
                         RowPointer pages_map)
    : pager_(pager),
      allocator_(allocator),
      table_(table),
      root_(root),
      pages_map_(pages_map),
      levels_(1) {}

void IndexLoader::Add(const IndexEntry& entry) {
  if (entry.key.empty() || entry.key.size() > format::kMaxKeySize)
    throw Error(ErrorKind::kNotSupported, "an index key of a length that no entry has");
  AddTo(0, LeafEntryBytes(entry));
}

void IndexLoader::AddTo(std::size_t at, Bytes entry) {
  if (at == levels_.size()) levels_.emplace_back();
  const auto shared = [&] {
    const Level& level = levels_[at];
    return level.entries.empty() ? entry.size() - 1
                                 : std::min(level.prefix, SharedSize(level.entries[0], entry));
  };
  std::size_t prefix = shared();
  const Level& filled = levels_[at];
  if (filled.bytes + entry.size() - prefix * filled.entries.size() > format::kEntriesSize) {
    Flush(at);
    prefix = shared();
  }
  Level& level = levels_[at];
  level.prefix = prefix;
  level.bytes += entry.size();
  level.entries.push_back(std::move(entry));
}

void IndexLoader::Flush(std::size_t at) {
  const PageNumber page = levels_[at].page == 0 ? TakePage() : levels_[at].page;
  const PageNumber next = TakePage();
  Bytes last = levels_[at].entries.back();
  PageNumber tail = 0;
  if (at > 0) {
    // What goes up with the node's name leaves its child behind, as the tail.
    tail = ChildOf(last);
    last.erase(last.end() - format::kChildSize, last.end());
    levels_[at].entries.pop_back();
  }
  Write(at, page, next, tail);
  levels_[at] = Level();
  levels_[at].page = next;
  levels_[at].previous = page;
  AddTo(at + 1, ForChild(last, page));
}

void IndexLoader::Finish() {
  PageNumber tail = 0;
  for (std::size_t at = 0; at < levels_.size(); ++at) {
    const bool is_top = at + 1 == levels_.size();
    const PageNumber page = is_top ? root_ : levels_[at].page;
    Write(at, page, 0, tail);
    tail = page;
  }
}

void IndexLoader::Write(std::size_t at, PageNumber number, PageNumber next, PageNumber tail) {
  const Level& level = levels_[at];
  ByteEditor page = pager_.Edit(number);
  InitializeIndexPage(page, at == 0, table_, static_cast<std::uint8_t>(at));
  StoreEntries(page, level.entries, level.prefix);
  page.SetU32(format::kPreviousAt, level.previous);
  page.SetU32(format::kNextAt, next);
  page.SetU32(format::kTailAt, tail);
}

PageNumber IndexLoader::TakePage() {
  const PageNumber number = allocator_.Take();
  UsageMap(pager_, allocator_, pages_map_, MapKind::kOwned).Add(number);
  return number;
}

}  // namespace jet
