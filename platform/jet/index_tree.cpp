// Searching and walking a tree of index pages.
#include "platform/jet/index_tree.h"

#include <utility>

namespace jet {
namespace {

[[noreturn]] void ThrowEndlessChain(PageNumber leaf) {
  throw Error(ErrorKind::kDamaged, "index leaves chained in a circle", leaf);
}

}  // namespace

// Stands on an entry of a leaf, or behind the last entry of all.
struct IndexTree::Cursor::State {
  State(const IndexTree& of, Page leaf, std::size_t at)
      : tree(of), page(std::move(leaf)), view(page.view()), position(at) {}

  // Leaves that end here are left for the next one.
  void SkipEnds() {
    while (position == view.count() && view.next() != 0) {
      if (++leaves_seen > tree.pager_.page_count()) ThrowEndlessChain(page.number());
      const PageNumber next = view.next();
      tree.ViewLeaf(next);
      page = tree.pager_.Read(next);
      view = IndexPage(page.view());
      position = 0;
    }
  }

  IndexTree tree;
  Page page;
  IndexPage view;
  std::size_t position;
  PageNumber leaves_seen = 0;
  std::optional<IndexEntry> entry;  // rebuilt when asked for
};

IndexTree::Cursor::Cursor(std::unique_ptr<State> state) : state_(std::move(state)) {}
IndexTree::Cursor::Cursor(Cursor&&) noexcept = default;
IndexTree::Cursor& IndexTree::Cursor::operator=(Cursor&&) noexcept = default;
IndexTree::Cursor::~Cursor() = default;

bool IndexTree::Cursor::at_end() const { return state_->position == state_->view.count(); }

const IndexEntry& IndexTree::Cursor::entry() const {
  if (!state_->entry) state_->entry = state_->view.Entry(state_->position);
  return *state_->entry;
}

RowId IndexTree::Cursor::row() const { return state_->view.Row(state_->position); }

void IndexTree::Cursor::Next() {
  if (at_end()) return;
  state_->entry.reset();
  ++state_->position;
  state_->SkipEnds();
}

IndexTree::IndexTree(Pager& pager, PageAllocator& allocator, PageNumber table, PageNumber root,
                     RowPointer pages_map)
    : pager_(pager), allocator_(allocator), table_(table), root_(root), pages_map_(pages_map) {}

IndexPage IndexTree::View(PageNumber number) const {
  IndexPage page(pager_.View(number));
  if (page.owner() != table_)
    throw Error(ErrorKind::kDamaged, "an index page of another table", number);
  return page;
}

IndexPage IndexTree::ViewLeaf(PageNumber number) const {
  IndexPage page = View(number);
  if (!page.is_leaf())
    throw Error(ErrorKind::kDamaged, "a node among the leaves of an index", number);
  return page;
}

IndexTree::Path IndexTree::Descend(std::span<const std::byte> key, RowId row) const {
  Path path;
  PageNumber number = root_;
  for (;;) {
    const IndexPage page = View(number);
    if (page.is_leaf()) {
      path.leaf = number;
      return path;
    }
    if (path.height == path.steps.size() || page.child_count() == 0)
      throw Error(ErrorKind::kDamaged, "an index node without children, or too deep", number);
    Step step{number, page.LowerBound(key, row), false};
    if (step.slot == page.child_count()) {
      --step.slot;
      step.beyond_last = true;
    }
    path.steps[path.height++] = step;
    number = page.Child(step.slot);
  }
}

IndexTree::Cursor IndexTree::First() const { return LowerBound({}); }

IndexTree::Cursor IndexTree::LowerBound(std::span<const std::byte> key) const {
  PageNumber leaf = Descend(key, {}).leaf;
  for (PageNumber steps = 0;; ++steps) {
    const IndexPage page = ViewLeaf(leaf);
    const std::size_t position = page.LowerBound(key, {});
    if (position < page.count() || page.next() == 0)
      return Cursor(std::make_unique<Cursor::State>(*this, pager_.Read(leaf), position));
    if (steps > pager_.page_count()) ThrowEndlessChain(leaf);
    leaf = page.next();
  }
}

bool IndexTree::ContainsKey(std::span<const std::byte> key) const {
  PageNumber leaf = Descend(key, {}).leaf;
  for (PageNumber steps = 0;; ++steps) {
    const IndexPage page = ViewLeaf(leaf);
    const std::size_t position = page.LowerBound(key, {});
    if (position < page.count()) return page.HasKey(position, key);
    if (page.next() == 0) return false;
    if (steps > pager_.page_count()) ThrowEndlessChain(leaf);
    leaf = page.next();
  }
}

PageNumber IndexTree::Create(Pager& pager, PageAllocator& allocator, PageNumber table,
                             RowPointer pages_map) {
  IndexTree tree(pager, allocator, table, 0, pages_map);
  tree.root_ = tree.TakePage();
  InitializeIndexPage(pager.Edit(tree.root_), true, table, 0);
  return tree.root_;
}

PageNumber IndexTree::TakePage() {
  const PageNumber number = allocator_.Take();
  UsageMap(pager_, allocator_, pages_map_, MapKind::kOwned).Add(number);
  return number;
}

void IndexTree::ReleasePage(PageNumber number) {
  UsageMap(pager_, allocator_, pages_map_, MapKind::kOwned).Remove(number);
  allocator_.Release(number);
}

}  // namespace jet
