// Walks index trees for a file check.
#include "platform/jet/check_indexes.h"

#include <algorithm>
#include <optional>
#include <string>

#include "platform/jet/check_maps.h"
#include "platform/jet/index_page.h"

namespace jet::check {
namespace {

namespace format = index_page_format;

// One tree, from its root down, leaf by leaf in order.
class TreeCheck {
 public:
  TreeCheck(State& state, const CheckedTable& table, const PhysicalIndex& index, bool unique,
            std::string where, ExpectedEntries& expected)
      : state_(state),
        table_(table),
        index_(index),
        unique_(unique),
        where_(std::move(where)),
        owner_(state.owners.Name(where_)),
        expected_(expected) {}

  void Run() {
    Visit(index_.root, 0);
    CheckLinks();
    CheckMap();
    Summarize();
    if (table_.is_user) state_.index_entries += entries_;
  }

 private:
  template <typename... Parts>
  void Problem(const Parts&... parts) {
    state_.problems.Add(where_, ": ", parts...);
  }

  // Reads a subtree; returns its highest entry.
  std::optional<IndexEntry> Visit(PageNumber number, std::size_t depth) {
    std::optional<IndexEntry> last;
    const bool whole = state_.Guard(where_, [&] {
      if (depth > format::kMaxDepth)
        throw Error(ErrorKind::kDamaged, "an index that is too deep", number);
      if (number < state_.owners.page_count() && state_.owners.OwnerOf(number) == owner_)
        throw Error(ErrorKind::kDamaged, "an index page that is reached twice", number);
      if (!state_.Claim(number, owner_)) {
        incomplete_ = true;
        return;
      }
      pages_.push_back(number);
      const Page copy = state_.pager.Read(number);
      const IndexPage page(copy.view());
      if (page.owner() != table_.definition.page)
        throw Error(ErrorKind::kDamaged, "an index page of another table", number);
      if (copy.view().U32(format::kZeroAt) != 0)
        Problem("page ", number, ": bytes 8 to 11 are not 0");
      if (depth == 0 && (page.previous() != 0 || page.next() != 0))
        Problem("page ", number, ": a root with neighbours");
      last = page.is_leaf() ? ReadLeaf(page, depth) : ReadNode(page, depth);
    });
    if (!whole) incomplete_ = true;
    return last;
  }

  std::optional<IndexEntry> ReadLeaf(const IndexPage& page, std::size_t depth) {
    if (leaf_depth_.value_or(depth) != depth)
      Problem("page ", page.number(), ": leaves at different depths");
    leaf_depth_ = depth;
    leaves_.push_back({page.number(), page.previous(), page.next()});
    if (page.count() == 0 && depth > 0)
      state_.notes.Add(where_, ": page ", page.number(), ": an empty leaf");
    for (std::size_t i = 0; i < page.count(); ++i) Take(page.Entry(i), page.number());
    if (page.count() == 0) return std::nullopt;
    return last_;
  }

  // The next entry in the order of the leaves.
  void Take(IndexEntry entry, PageNumber page) {
    ++entries_;
    ExpectedEntries::Item* item = expected_.Find(entry.row);
    if (last_) {
      if (!(*last_ < entry)) Problem("page ", page, ": entries out of order");
      const bool has_null = item != nullptr && item->has_null;
      if (unique_ && !has_null && last_->key == entry.key)
        Problem(last_->row, " and ", entry.row, " have the same key in a unique index");
    }
    if (item == nullptr) {
      ++without_row_;
      example_ = entry.row;
    } else if (item->found) {
      Problem(entry.row, " has two entries");
    } else {
      item->found = true;
      const bool comparable = item->has_key && entry.key.size() <= format::kMaxKeySize;
      if (comparable && !std::ranges::equal(expected_.KeyOf(*item), entry.key)) {
        ++other_keys_;
        example_ = entry.row;
      }
      if (!comparable && !item->optional) ++keys_not_compared_;
    }
    last_ = std::move(entry);
  }

  std::optional<IndexEntry> ReadNode(const IndexPage& page, std::size_t depth) {
    std::optional<IndexEntry> last;
    for (std::size_t i = 0; i < page.count(); ++i) {
      IndexEntry bound = page.Entry(i);
      const std::optional<IndexEntry> highest = Visit(page.Child(i), depth + 1);
      if (last && !(*last < bound)) Problem("page ", page.number(), ": node entries out of order");
      if (highest && bound < *highest)
        Problem("page ", page.number(), ": an entry below its child's last one");
      else if (highest && *highest < bound)
        state_.notes.Add(where_, ": page ", page.number(), ": an entry above its child's last one");
      last = std::move(bound);
    }
    if (page.tail() != 0) {
      std::optional<IndexEntry> highest = Visit(page.tail(), depth + 1);
      if (highest && last && !(*last < *highest))
        Problem("page ", page.number(), ": a last child below the entries");
      if (highest) last = std::move(highest);
    } else if (page.count() == 0) {
      Problem("page ", page.number(), ": a node without children");
    }
    return last;
  }

  void CheckLinks() {
    if (incomplete_) return;
    for (std::size_t i = 0; i < leaves_.size(); ++i) {
      const PageNumber before = i == 0 ? 0 : leaves_[i - 1].page;
      const PageNumber after = i + 1 == leaves_.size() ? 0 : leaves_[i + 1].page;
      if (leaves_[i].previous != before || leaves_[i].next != after)
        Problem("page ", leaves_[i].page, " links to pages ", leaves_[i].previous, " and ",
                leaves_[i].next, " instead of ", before, " and ", after);
    }
  }

  void CheckMap() {
    const std::vector<PageNumber> mapped = ReadMap(state_, index_.pages_map, where_);
    for (const PageNumber page : mapped) state_.Claim(page, owner_);
    std::ranges::sort(pages_);
    if (mapped != pages_ && !incomplete_)
      Problem("its usage map has ", mapped.size(), " pages, the tree ", pages_.size(),
              ", not all the same");
  }

  void Summarize() {
    std::size_t missing = 0;
    for (const ExpectedEntries::Item& item : expected_.items()) {
      if (item.found || item.optional) continue;
      ++missing;
      example_ = item.row;
    }
    if (incomplete_) missing = 0;
    if (missing + without_row_ + other_keys_ > 0)
      Problem(missing, " rows without entry, ", without_row_, " entries without row, ", other_keys_,
              " with another key than their row, for example ", example_);
    if (keys_not_compared_ > 0)
      state_.notes.Add(where_, ": ", keys_not_compared_, " keys that cannot be computed here");
  }

  struct Leaf {
    PageNumber page;
    PageNumber previous;
    PageNumber next;
  };

  State& state_;
  const CheckedTable& table_;
  const PhysicalIndex& index_;
  bool unique_;
  std::string where_;
  PageOwners::Owner owner_;
  ExpectedEntries& expected_;
  std::vector<PageNumber> pages_;  // of the tree
  std::vector<Leaf> leaves_;
  std::optional<std::size_t> leaf_depth_;
  std::optional<IndexEntry> last_;
  std::size_t entries_ = 0;
  std::size_t without_row_ = 0;
  std::size_t other_keys_ = 0;
  std::size_t keys_not_compared_ = 0;
  RowId example_;
  bool incomplete_ = false;  // a part could not be read
};

}  // namespace

void ExpectedEntries::Append(Item item) {
  item.key_end = keys_.size();
  items_.push_back(item);
}

void ExpectedEntries::Add(RowId row, std::span<const std::byte> key, bool has_null) {
  keys_.insert(keys_.end(), key.begin(), key.end());
  Append({.row = row, .has_key = true, .has_null = has_null});
}

void ExpectedEntries::AddWithoutKey(RowId row, bool has_null) {
  Append({.row = row, .has_null = has_null});
}

void ExpectedEntries::AddOptional(RowId row) { Append({.row = row, .optional = true}); }

ExpectedEntries::Item* ExpectedEntries::Find(RowId row) {
  const auto at = std::ranges::lower_bound(items_, row, {}, &Item::row);
  return at != items_.end() && at->row == row ? &*at : nullptr;
}

std::span<const std::byte> ExpectedEntries::KeyOf(const Item& item) const {
  const auto place = static_cast<std::size_t>(&item - items_.data());
  const std::size_t start = place == 0 ? 0 : items_[place - 1].key_end;
  return std::span(keys_).subspan(start, item.key_end - start);
}

void CheckIndex(State& state, const CheckedTable& table, std::size_t physical,
                ExpectedEntries& expected) {
  const PhysicalIndex& index = table.definition.physical_indexes[physical];
  bool unique = index.is_unique();
  std::string where = table.name + " index";
  for (const LogicalIndex& logical : table.definition.logical_indexes) {
    if (logical.physical != physical) continue;
    unique |= logical.kind == IndexKind::kPrimaryKey;
    where += " " + ToUtf8(logical.name);
  }
  TreeCheck(state, table, index, unique, std::move(where), expected).Run();
}

}  // namespace jet::check
