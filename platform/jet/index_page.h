// One index page: its entries under their common prefix, read, searched and changed in place.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/jet/index_page_format.h"
#include "platform/jet/page_view.h"
#include "platform/jet/row_pointer.h"
#include "platform/jet/value.h"

namespace jet {

// A key and the row it stands for. Ordered by key bytes, then by row address.
struct IndexEntry {
  Bytes key;
  RowId row;
  auto operator<=>(const IndexEntry&) const = default;
};

// The bytes of an entry as a page holds it, prefix included.
Bytes LeafEntryBytes(const IndexEntry& entry);
Bytes NodeEntryBytes(const IndexEntry& entry, PageNumber child);

// A leaf or node on loan, checked as a whole when it is made: type, free space, length of every
// entry. What stands in the entries and in the links is the caller's to judge. The page's bytes
// must outlive it and stay unchanged; nothing is copied but where the entries end.
class IndexPage {
 public:
  // kDamaged when the page is no index page or contradicts itself.
  explicit IndexPage(ByteView page);

  bool is_leaf() const { return leaf_; }
  PageNumber owner() const { return page_.U32(index_page_format::kOwnerAt); }
  PageNumber previous() const { return page_.U32(index_page_format::kPreviousAt); }
  PageNumber next() const { return page_.U32(index_page_format::kNextAt); }
  PageNumber tail() const { return page_.U32(index_page_format::kTailAt); }
  PageNumber number() const { return page_.number(); }

  std::size_t count() const { return count_; }
  std::size_t prefix_size() const { return prefix_size_; }
  // Bytes that all entries but the first omit.
  std::span<const std::byte> Prefix() const;
  // Bytes the entries occupy, and where the entry at `position` ends among them.
  std::size_t used() const { return count_ == 0 ? 0 : ends_[count_ - 1]; }
  std::size_t EndOf(std::size_t position) const { return ends_[position]; }
  std::span<const std::uint16_t> ends() const { return std::span(ends_).first(count_); }

  // Of the whole entry, prefix included.
  std::size_t EntrySize(std::size_t position) const;
  Bytes EntryBytes(std::size_t position) const;
  IndexEntry Entry(std::size_t position) const;  // without the child
  RowId Row(std::size_t position) const;

  // A node's children: those of its entries, then the tail if there is one.
  std::size_t child_count() const { return count_ + (tail() != 0 ? 1 : 0); }
  PageNumber Child(std::size_t slot) const;

  // How the entry at `position` stands to another, by key and row.
  std::strong_ordering Compare(std::size_t position, std::span<const std::byte> key,
                               RowId row) const;
  bool HasKey(std::size_t position, std::span<const std::byte> key) const;
  // The position of the first entry that is not below (key, row); count() when all are.
  std::size_t LowerBound(std::span<const std::byte> key, RowId row) const;

 private:
  friend class EntryPacker;

  // The two parts of an entry's bytes: what the prefix gives, what is stored.
  struct Parts {
    std::span<const std::byte> prefix;
    std::span<const std::byte> rest;
    std::size_t size() const { return prefix.size() + rest.size(); }
    std::byte At(std::size_t at) const {
      return at < prefix.size() ? prefix[at] : rest[at - prefix.size()];
    }
  };

  void ReadEnds();
  Parts PartsOf(std::size_t position) const;
  std::size_t KeySize(const Parts& parts) const { return parts.size() - trailer_size_; }
  std::strong_ordering CompareKey(const Parts& parts, std::span<const std::byte> key) const;
  RowId RowOf(const Parts& parts) const;

  ByteView page_;
  bool leaf_;
  std::size_t trailer_size_;  // row address, and the child on nodes
  std::size_t prefix_size_;
  std::size_t count_ = 0;
  std::array<std::uint16_t, 8 * index_page_format::kMaskSize> ends_;
};

// Makes the page an empty leaf or node without neighbours. Every byte of it is set.
void InitializeIndexPage(ByteEditor page, bool leaf, PageNumber owner, std::uint8_t level);

// Whether the page can take one more entry, with a shorter prefix or a longer one if need be.
bool HasRoomFor(const IndexPage& page, std::span<const std::byte> entry);

// Puts an entry in; the caller knows that `position` is its place. When the entry does not share
// the page's prefix that becomes shorter; when this does not fit, all entries are stored anew under
// their longest common prefix. Returns false, with the page unchanged, when that is not enough.
bool InsertEntry(ByteEditor page, std::size_t position, std::span<const std::byte> entry);

// Takes an entry out; the prefix stays unless one entry or none is left.
void EraseEntry(ByteEditor page, std::size_t position);

// Fills the entries of `target` with those of `source` in [from, to), under their longest common
// prefix; links, owner and tail stay. `source` must not be a view of `target`.
void CopyEntries(const IndexPage& source, std::size_t from, std::size_t to, ByteEditor target);

// Fills the entries of an empty page with these, which are whole and in order and all begin with
// the same `prefix_size` bytes; they must fit. Links, owner and tail stay.
void StoreEntries(ByteEditor page, std::span<const Bytes> entries, std::size_t prefix_size);

}  // namespace jet
