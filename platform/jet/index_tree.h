// A B-tree of keys on index pages: search, walk, insert and remove.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "platform/jet/index_page.h"
#include "platform/jet/pager.h"
#include "platform/jet/row_pointer.h"
#include "platform/jet/usage_map.h"
#include "platform/jet/value.h"

namespace jet {

// One physical index. A light handle; the pager and allocator must outlive it.
// Changes need a transaction. Chains and depths are bounded; damage is kDamaged with the page.
//
// What always holds, also in a file whose writer was killed between two page writes:
//  1. Following the next links from the first leaf meets every entry once, in order.
//  2. An entry stands in the leaf that its key leads to, or in one further along the next links. A
//     split writes the new right page, then the shortened left one, then the node above them; until
//     that node knows the right page, searches reach it from the left one. The first change that
//     comes that way completes the split.
//  3. Leaves that lost their last entry may still stand in the chain.
// Previous links and links between nodes are kept, but nothing depends on them.
class IndexTree {
 public:
  // `table` is the table's definition page, which every page of the tree names as its owner.
  IndexTree(Pager& pager, PageAllocator& allocator, PageNumber table, PageNumber root,
            RowPointer pages_map);

  // Walks entries in order. Sees the tree as it is at each step as long as nothing changes it; a
  // walk over a tree that changed meanwhile must be begun anew. The pager must outlive it.
  class Cursor {
   public:
    Cursor(Cursor&&) noexcept;
    Cursor& operator=(Cursor&&) noexcept;
    ~Cursor();

    bool at_end() const;
    // REQUIRES !at_end(). Good until Next().
    const IndexEntry& entry() const;
    RowId row() const;  // of the entry, without the cost of its key
    void Next();

   private:
    friend class IndexTree;
    struct State;
    explicit Cursor(std::unique_ptr<State> state);
    std::unique_ptr<State> state_;
  };

  Cursor First() const;
  // The first entry whose key is not below `key` (as unsigned bytes).
  Cursor LowerBound(std::span<const std::byte> key) const;

  // Whether an entry with exactly this key exists.
  bool ContainsKey(std::span<const std::byte> key) const;

  // Adds the entry; adding the very same entry (key and row) again changes nothing.
  // Returns whether no other entry had an equal key. kNotSupported for a key without bytes or of
  // more bytes than LimitKey leaves.
  bool Insert(const IndexEntry& entry);
  // Removes the entry. Returns whether it was there.
  bool Remove(const IndexEntry& entry);

  // Writes an empty leaf as a new tree; returns its root. The page is set in `pages_map`.
  static PageNumber Create(Pager& pager, PageAllocator& allocator, PageNumber table,
                           RowPointer pages_map);

 private:
  struct Step {
    PageNumber node = 0;
    std::size_t slot = 0;
    bool beyond_last = false;  // the node has no tail, and the entry is above its last one
  };

  // The way from the root to the leaf where an entry belongs.
  struct Path {
    std::array<Step, index_page_format::kMaxDepth> steps;
    std::size_t height = 0;  // nodes above the leaf
    PageNumber leaf = 0;

    // The node `above` levels over the leaf, 1 to height.
    const Step& Above(std::size_t above) const { return steps[height - above]; }
    PageNumber PageAt(std::size_t level) const { return level == 0 ? leaf : Above(level).node; }
  };

  // A page of this tree, good until the next call of the pager.
  IndexPage View(PageNumber number) const;
  IndexPage ViewLeaf(PageNumber number) const;
  bool IsOwnNode(PageNumber number) const;

  Path Descend(std::span<const std::byte> key, RowId row) const;
  Path Descend(const IndexEntry& entry) const { return Descend(entry.key, entry.row); }
  PageNumber NextKnownLeaf(const Path& path) const;
  std::optional<PageNumber> PredecessorOf(PageNumber leaf);
  bool HasEqualNeighbour(const IndexPage& leaf, std::size_t position, bool present,
                         std::span<const std::byte> key);

  Path DescendForChange(const IndexEntry& entry);
  void AdoptNext(const Path& path, const IndexEntry& entry);
  void UnboundTails(const Path& path);

  void Split(const IndexEntry& entry, std::size_t level);
  void SplitRoot(const IndexPage& old, std::size_t cut, std::size_t level);
  void AddChild(const IndexEntry& entry, std::size_t level, const IndexEntry& separator,
                PageNumber left, PageNumber right);

  void RemoveLeaf(const Path& path);
  void RemoveChild(const Path& path, std::size_t level);
  void CorrectBound(Path path, std::size_t level, const IndexEntry& last);
  void UnlinkLeaf(PageNumber leaf, PageNumber before);
  void UnlinkNode(PageNumber node);
  void CollapseRoot();

  PageNumber TakePage();
  void ReleasePage(PageNumber number);

  Pager& pager_;
  PageAllocator& allocator_;
  PageNumber table_;
  PageNumber root_;
  RowPointer pages_map_;
};

}  // namespace jet
