// Removing entries from a tree of index pages, and the pages that have none left.
#include <algorithm>
#include <vector>

#include "platform/jet/index_tree.h"

namespace jet {
namespace format = index_page_format;

bool IndexTree::Remove(const IndexEntry& entry) {
  for (;;) {
    const Path path = DescendForChange(entry);
    const IndexPage leaf = View(path.leaf);
    const std::size_t position = leaf.LowerBound(entry.key, entry.row);
    const std::size_t count = leaf.count();
    if (position == count || leaf.Compare(position, entry.key, entry.row) != 0) return false;
    const bool was_last = position + 1 == count;
    const IndexEntry last = was_last && position > 0 ? leaf.Entry(position - 1) : IndexEntry{};
    const PageNumber next = leaf.next();
    // The leaf's bound also covers a right neighbour that the node above does not know yet.
    if (was_last && path.height > 0 && next != NextKnownLeaf(path)) {
      AdoptNext(path, entry);
      continue;
    }
    EraseEntry(pager_.Edit(path.leaf), position);
    if (path.height > 0 && count == 1)
      RemoveLeaf(path);
    else if (was_last && count > 1)
      CorrectBound(path, 1, last);
    return true;
  }
}

// Takes an empty leaf out of the tree, and nodes that led to it alone. Written in this order: the
// empty leaf, the node that forgets it, the links past it; so no entry is ever out of reach.
void IndexTree::RemoveLeaf(const Path& path) {
  const std::optional<PageNumber> before = PredecessorOf(path.leaf);
  std::size_t level = 1;
  std::vector<PageNumber> nodes;
  while (level < path.height && View(path.Above(level).node).child_count() == 1)
    nodes.push_back(path.Above(level++).node);
  if (View(path.Above(level).node).child_count() == 1)
    InitializeIndexPage(pager_.Edit(root_), true, table_, 0);
  else
    RemoveChild(path, level);
  if (before) UnlinkLeaf(path.leaf, *before);
  ReleasePage(path.leaf);
  for (const PageNumber node : nodes) {
    UnlinkNode(node);
    ReleasePage(node);
  }
  CollapseRoot();
}

// Takes the path's child out of the node `level` levels above the leaf, which has others.
void IndexTree::RemoveChild(const Path& path, std::size_t level) {
  const Step& step = path.Above(level);
  const IndexPage node = View(step.node);
  const std::size_t count = node.count();
  const bool has_tail = node.tail() != 0;
  if (step.slot + 1 < node.child_count()) {
    EraseEntry(pager_.Edit(step.node), step.slot);
    return;
  }
  // The child before becomes the last: as tail it needs no entry.
  const IndexEntry last = node.Entry(has_tail ? count - 1 : count - 2);
  const PageNumber before = node.Child(count - 1);
  ByteEditor editor = pager_.Edit(step.node);
  EraseEntry(editor, count - 1);
  if (has_tail) editor.SetU32(format::kTailAt, before);
  CorrectBound(path, level + 1, last);
}

// Lowers the entry that bounds the path's page at `level` - 1 to that page's new last entry; splits
// the node when it has no room for the new one. A bound that is too high would do no harm.
void IndexTree::CorrectBound(Path path, std::size_t level, const IndexEntry& last) {
  while (level <= path.height) {
    const Step& step = path.Above(level);
    const Page copy = pager_.Read(step.node);
    const IndexPage node(copy.view());
    if (step.slot == node.count()) {  // a tail: the bound stands further up
      ++level;
      continue;
    }
    if (node.Compare(step.slot, last.key, last.row) <= 0) return;
    PageBytes image;
    std::ranges::copy(copy.view().bytes(), image.begin());
    ByteEditor editor(image, step.node);
    EraseEntry(editor, step.slot);
    if (!InsertEntry(editor, step.slot, NodeEntryBytes(last, node.Child(step.slot)))) {
      Split(last, level);
      path = Descend(last);
      continue;
    }
    std::ranges::copy(image, pager_.Edit(step.node).Slice(0, kPageSize).begin());
    const bool bounds_node = node.tail() == 0 && step.slot + 1 == node.count();
    if (!bounds_node) return;
    ++level;
  }
}

void IndexTree::UnlinkLeaf(PageNumber leaf, PageNumber before) {
  const PageNumber after = ViewLeaf(leaf).next();
  if (after != 0) {
    ViewLeaf(after);
    pager_.Edit(after).SetU32(format::kPreviousAt, before);
  }
  if (before != 0) pager_.Edit(before).SetU32(format::kNextAt, after);
}

void IndexTree::UnlinkNode(PageNumber node) {
  const IndexPage page = View(node);
  const PageNumber before = page.previous();
  const PageNumber after = page.next();
  if (IsOwnNode(before)) pager_.Edit(before).SetU32(format::kNextAt, after);
  if (IsOwnNode(after)) pager_.Edit(after).SetU32(format::kPreviousAt, before);
}

// A root with one child, which has no neighbours, takes over that child's content.
void IndexTree::CollapseRoot() {
  for (;;) {
    const IndexPage root = View(root_);
    if (root.is_leaf() || root.child_count() != 1) return;
    const PageNumber child = root.Child(0);
    const IndexPage only = View(child);
    if (only.previous() != 0 || only.next() != 0) return;
    const Page copy = pager_.Read(child);
    std::ranges::copy(copy.view().bytes(), pager_.Edit(root_).Slice(0, kPageSize).begin());
    ReleasePage(child);
  }
}

}  // namespace jet
