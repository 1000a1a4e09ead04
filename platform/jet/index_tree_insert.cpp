// Adding entries to a tree of index pages, and splitting the pages that are full.
#include <algorithm>

#include "platform/jet/index_tree.h"

namespace jet {
namespace format = index_page_format;
namespace {

// Where a full page is cut in two: the position of the first entry that moves to the new page on a
// leaf, of the entry that goes up on a node. `position` is where the entry that found no room
// belongs. Behind the last entry nearly everything stays, so that ascending keys fill their pages.
std::size_t ChooseCut(const IndexPage& page, std::size_t position) {
  const std::size_t count = page.count();
  if (page.is_leaf() && position == count) return count;
  // A node's right half needs a child, be it the tail.
  const std::size_t highest = page.is_leaf() || page.tail() != 0 ? count - 1 : count - 2;
  if (count < 2 || highest < 1)
    throw Error(ErrorKind::kDamaged, "index entries too large to split their page", page.number());
  if (position == count) return highest;
  if (position == 0) return std::clamp<std::size_t>(count / 2, 1, highest);
  std::size_t cut = 1;
  while (cut < highest && page.EndOf(cut - 1) < page.used() / 2) ++cut;
  return cut;
}

// Fills the halves of a split page, `left` and `right`, up to their links to other pages. `left`
// may be the page of which `old` is a copy.
void FillHalves(const IndexPage& old, std::size_t cut, ByteEditor left, ByteEditor right) {
  const bool leaf = old.is_leaf();
  CopyEntries(old, leaf ? cut : cut + 1, old.count(), right);
  right.SetU32(format::kTailAt, old.tail());
  right.SetU32(format::kPreviousAt, left.number());
  right.SetU32(format::kNextAt, old.next());
  CopyEntries(old, 0, cut, left);
  left.SetU32(format::kTailAt, leaf ? 0 : old.Child(cut));
  left.SetU32(format::kNextAt, right.number());
}

// The highest entry that may stand below the left half.
IndexEntry Separator(const IndexPage& old, std::size_t cut) {
  return old.Entry(old.is_leaf() ? cut - 1 : cut);
}

// The node with `right` as a child behind `left`, which stands at `slot`; nothing when it is full.
std::optional<PageBytes> WithChild(const IndexPage& node, ByteView bytes, std::size_t slot,
                                   const IndexEntry& separator, PageNumber left, PageNumber right) {
  PageBytes image;
  std::ranges::copy(bytes.bytes(), image.begin());
  ByteEditor editor(image, node.number());
  const bool at_tail = slot == node.count();
  if (node.Child(slot) != left ||
      (!at_tail && node.Compare(slot, separator.key, separator.row) <= 0))
    throw Error(ErrorKind::kDamaged, "an index node that contradicts its children", node.number());
  if (at_tail) {
    editor.SetU32(format::kTailAt, right);
    if (!InsertEntry(editor, slot, NodeEntryBytes(separator, left))) return std::nullopt;
    return image;
  }
  const IndexEntry bound = node.Entry(slot);
  EraseEntry(editor, slot);
  if (!InsertEntry(editor, slot, NodeEntryBytes(separator, left)) ||
      !InsertEntry(editor, slot + 1, NodeEntryBytes(bound, right)))
    return std::nullopt;
  return image;
}

}  // namespace

bool IndexTree::Insert(const IndexEntry& entry) {
  if (entry.key.empty() || entry.key.size() > format::kMaxKeySize)
    throw Error(ErrorKind::kNotSupported, "an index key of a length that no entry has");
  const Bytes bytes = LeafEntryBytes(entry);
  for (;;) {
    const Path path = DescendForChange(entry);
    const IndexPage leaf = View(path.leaf);
    const std::size_t position = leaf.LowerBound(entry.key, entry.row);
    const bool present =
        position < leaf.count() && leaf.Compare(position, entry.key, entry.row) == 0;
    if (present) return !HasEqualNeighbour(leaf, position, present, entry.key);
    const bool has_room = HasRoomFor(leaf, bytes);
    const bool repeated = has_room && HasEqualNeighbour(leaf, position, present, entry.key);
    UnboundTails(path);
    if (has_room) {
      InsertEntry(pager_.Edit(path.leaf), position, bytes);
      return !repeated;
    }
    Split(entry, 0);
  }
}

// Where the entry is above a node's last one and the node has no tail, makes its last child one:
// nothing bounds a tail, so that it can take the entry.
void IndexTree::UnboundTails(const Path& path) {
  for (std::size_t i = 0; i < path.height; ++i) {
    const Step& step = path.steps[i];
    if (!step.beyond_last) continue;
    const PageNumber last_child = View(step.node).Child(step.slot);
    ByteEditor node = pager_.Edit(step.node);
    EraseEntry(node, step.slot);
    node.SetU32(format::kTailAt, last_child);
  }
}

// Whether an entry next to `position` has the key; the one at it counts unless it is `present`.
bool IndexTree::HasEqualNeighbour(const IndexPage& leaf, std::size_t position, bool present,
                                  std::span<const std::byte> key) {
  const std::size_t behind = position + (present ? 1 : 0);
  if (position > 0 && leaf.HasKey(position - 1, key)) return true;
  if (behind < leaf.count() && leaf.HasKey(behind, key)) return true;
  // The page may not be looked at any more once the pager is asked for others.
  const PageNumber number = leaf.number();
  const PageNumber next = behind == leaf.count() ? leaf.next() : 0;
  if (position == 0 && leaf.previous() != 0) {
    std::optional<PageNumber> before = PredecessorOf(number);
    for (PageNumber steps = 0; before.value_or(0) != 0 && steps < pager_.page_count(); ++steps) {
      const IndexPage page = ViewLeaf(*before);
      if (page.count() > 0) {
        if (page.HasKey(page.count() - 1, key)) return true;
        break;
      }
      before = PredecessorOf(*before);
    }
  }
  PageNumber after = next;
  for (PageNumber steps = 0; after != 0 && steps < pager_.page_count(); ++steps) {
    const IndexPage page = ViewLeaf(after);
    if (page.count() > 0) return page.HasKey(0, key);
    after = page.next();
  }
  return false;
}

// The way to the leaf that takes the entry or holds it, every page on it known to the node above.
IndexTree::Path IndexTree::DescendForChange(const IndexEntry& entry) {
  for (PageNumber steps = 0; steps <= pager_.page_count(); ++steps) {
    Path path = Descend(entry);
    if (path.height > 0 && View(path.leaf).count() == 0 && !PredecessorOf(path.leaf)) {
      RemoveLeaf(path);
      continue;
    }
    const IndexPage leaf = View(path.leaf);
    if (leaf.next() == 0 || leaf.LowerBound(entry.key, entry.row) < leaf.count()) return path;
    bool moves_right = false;
    PageNumber next = leaf.next();
    for (PageNumber leaves = 0; next != 0 && leaves <= pager_.page_count(); ++leaves) {
      const IndexPage page = ViewLeaf(next);
      if (page.count() > 0) {
        moves_right = page.Compare(0, entry.key, entry.row) <= 0;
        break;
      }
      next = page.next();
    }
    if (!moves_right) return path;
    AdoptNext(path, entry);
  }
  throw Error(ErrorKind::kDamaged, "index leaves out of order", root_);
}

// Completes what a killed writer began on the leaf behind the path's: its split, by telling the
// node above, or its removal, by taking it out of the chain.
void IndexTree::AdoptNext(const Path& path, const IndexEntry& entry) {
  const IndexPage leaf = View(path.leaf);
  const PageNumber next = leaf.next();
  if (path.height == 0 || leaf.count() == 0 || next == NextKnownLeaf(path))
    throw Error(ErrorKind::kDamaged, "index leaves out of order", path.leaf);
  if (ViewLeaf(next).count() == 0) {
    UnlinkLeaf(next, path.leaf);
    ReleasePage(next);
    return;
  }
  const IndexPage left = View(path.leaf);
  const IndexEntry last = left.Entry(left.count() - 1);
  AddChild(entry, 0, last, path.leaf, next);
}

// The leaf that the nodes have behind the path's; 0 when it is their last.
PageNumber IndexTree::NextKnownLeaf(const Path& path) const {
  for (std::size_t above = 1; above <= path.height; ++above) {
    const Step& step = path.Above(above);
    const IndexPage node = View(step.node);
    if (step.slot + 1 >= node.child_count()) continue;
    PageNumber child = node.Child(step.slot + 1);
    for (std::size_t level = above - 1; level > 0; --level) {
      const IndexPage below = View(child);
      if (below.is_leaf() || below.child_count() == 0)
        throw Error(ErrorKind::kDamaged, "index leaves at different depths", child);
      child = below.Child(0);
    }
    return child;
  }
  return 0;
}

// The leaf whose next link leads to this one; 0 for the first, nothing when none does. The previous
// link is as a rule right, and corrected when a killed writer left it wrong.
std::optional<PageNumber> IndexTree::PredecessorOf(PageNumber leaf) {
  const PageNumber linked = ViewLeaf(leaf).previous();
  if (linked != 0 && linked < pager_.page_count()) {
    const ByteView view = pager_.View(linked);
    if (view.U16(format::kTypeAt) == format::kLeaf && view.U32(format::kOwnerAt) == table_ &&
        view.U32(format::kNextAt) == leaf)
      return linked;
  }
  PageNumber before = 0;
  PageNumber at = Descend({}, {}).leaf;
  for (PageNumber steps = 0; at != leaf; ++steps) {
    if (at == 0) return std::nullopt;
    if (steps > pager_.page_count())
      throw Error(ErrorKind::kDamaged, "index leaves chained in a circle", at);
    before = at;
    at = ViewLeaf(at).next();
  }
  if (before != linked) pager_.Edit(leaf).SetU32(format::kPreviousAt, before);
  return before;
}

bool IndexTree::IsOwnNode(PageNumber number) const {
  if (number == 0 || number >= pager_.page_count()) return false;
  const ByteView view = pager_.View(number);
  return view.U16(format::kTypeAt) == format::kNode && view.U32(format::kOwnerAt) == table_;
}

// Cuts the page `level` levels above the leaf in two, on the way that `entry` takes.
void IndexTree::Split(const IndexEntry& entry, std::size_t level) {
  const Path path = Descend(entry);
  const PageNumber number = path.PageAt(level);
  const Page copy = pager_.Read(number);
  const IndexPage old(copy.view());
  const std::size_t cut =
      ChooseCut(old, level == 0 ? old.LowerBound(entry.key, entry.row) : path.Above(level).slot);
  if (number == root_) {
    SplitRoot(old, cut, level);
    return;
  }
  if (old.is_leaf() && old.next() != 0) ViewLeaf(old.next());
  const PageNumber right = TakePage();
  InitializeIndexPage(pager_.Edit(right), old.is_leaf(), table_, static_cast<std::uint8_t>(level));
  FillHalves(old, cut, pager_.Edit(number), pager_.Edit(right));
  if (old.is_leaf() ? old.next() != 0 : IsOwnNode(old.next()))
    pager_.Edit(old.next()).SetU32(format::kPreviousAt, right);
  pager_.WriteAfter(number, right);
  AddChild(entry, level, Separator(old, cut), number, right);
}

// The root never moves: both halves go to new pages, and the root becomes the node above them.
void IndexTree::SplitRoot(const IndexPage& old, std::size_t cut, std::size_t level) {
  const PageNumber left = TakePage();
  const PageNumber right = TakePage();
  for (const PageNumber half : {left, right})
    InitializeIndexPage(pager_.Edit(half), old.is_leaf(), table_, static_cast<std::uint8_t>(level));
  FillHalves(old, cut, pager_.Edit(left), pager_.Edit(right));
  ByteEditor root = pager_.Edit(root_);
  InitializeIndexPage(root, false, table_, static_cast<std::uint8_t>(level + 1));
  InsertEntry(root, 0, NodeEntryBytes(Separator(old, cut), left));
  root.SetU32(format::kTailAt, right);
}

// Tells the node above `left`, which stands `level` levels above the leaf on the way that `entry`
// takes, of the new page on its right; splits nodes until one has room.
void IndexTree::AddChild(const IndexEntry& entry, std::size_t level, const IndexEntry& separator,
                         PageNumber left, PageNumber right) {
  for (;;) {
    const Step parent = Descend(entry).Above(level + 1);
    const Page copy = pager_.Read(parent.node);
    const IndexPage node(copy.view());
    const std::optional<PageBytes> image =
        WithChild(node, copy.view(), parent.slot, separator, left, right);
    if (image) {
      std::ranges::copy(*image, pager_.Edit(parent.node).Slice(0, kPageSize).begin());
      pager_.WriteAfter(parent.node, left);
      return;
    }
    Split(entry, level + 1);
  }
}

}  // namespace jet
