// Page cache, page transactions, and the order in which a commit writes.
#include "platform/jet/pager.h"

#include <algorithm>
#include <array>
#include <deque>
#include <limits>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

#include "platform/jet/database_header.h"

namespace jet {
namespace {

constexpr std::uint32_t kNoChange = std::numeric_limits<std::uint32_t>::max();

// Batches of a commit: the changes themselves, then one a clean-up stage.
constexpr unsigned kBatches = 3;
constexpr unsigned kLastWriteOrder = static_cast<unsigned>(WriteOrder::kChanged);

// Pages that a map declares in use behind the end are made up for when the file grows past them;
// more of them than this is damage.
constexpr PageNumber kLongestGap = 1024;

// Buffers kept for the next transaction.
constexpr std::size_t kSpareBuffers = 64;

using Buffer = std::shared_ptr<PageBytes>;

// What is in memory of one page.
struct Frame {
  Buffer bytes;                      // as the transaction in progress sees it; null: not in memory
  std::uint32_t change = kNoChange;  // the page's last change in the transaction in progress
  bool recently_used = false;
  bool in_clock = false;
};

// One page's change in one batch.
struct Change {
  PageNumber number = 0;
  WriteOrder order = WriteOrder::kChanged;
  bool waits = false;  // for other pages, see Ordering
  bool written = false;
  std::uint32_t previous = kNoChange;  // the page's change in an earlier batch
  Buffer before;                       // null: the page did not exist
  Buffer after;
};

struct Ordering {
  PageNumber later = 0;
  PageNumber earlier = 0;
  auto operator<=>(const Ordering&) const = default;
};

}  // namespace

struct Pager::Impl {
  Impl(PageStore& page_store, UndoJournal* undo_journal, std::uint32_t key, std::size_t pages,
       std::uint64_t& counter)
      : store(page_store),
        journal(undo_journal),
        page_key(key),
        cache_pages(std::max<std::size_t>(pages, 1)),
        page_count(page_store.page_count()),
        frames(page_count),
        pages_written(counter) {}

  PageStore& store;
  UndoJournal* const journal;
  const std::uint32_t page_key;
  const std::size_t cache_pages;
  PageNumber page_count;  // the transaction's growth included

  static constexpr std::array<std::uint32_t, kBatches + 1> kOnlyFirstBatch = {0, kNoChange,
                                                                              kNoChange, kNoChange};

  std::vector<Frame> frames;      // by page number
  std::vector<PageNumber> clock;  // pages in memory; the hand goes round and drops idle ones
  std::size_t hand = 0;
  std::vector<Buffer> spare;

  // The transaction in progress.
  unsigned depth = 0;
  bool doomed = false;
  PageNumber page_count_before = 0;
  unsigned batch = 0;
  // The first change of each batch, kNoChange for those not begun.
  std::array<std::uint32_t, kBatches + 1> batch_start = kOnlyFirstBatch;
  std::vector<Change> changes;
  std::array<std::vector<Ordering>, kBatches> orderings;
  std::vector<Change*> written;  // in the order in which they reached the file
  std::array<std::deque<std::function<void()>>, kBatches> deferred;
  std::uint64_t rollbacks = 0;
  std::uint64_t& pages_written;

  Buffer NewBuffer() {
    if (spare.empty()) return std::make_shared<PageBytes>();
    Buffer buffer = std::move(spare.back());
    spare.pop_back();
    return buffer;
  }

  // Keeps the buffer for reuse when nobody else holds it.
  void Recycle(Buffer buffer) {
    if (buffer && buffer.use_count() == 1 && spare.size() < kSpareBuffers)
      spare.push_back(std::move(buffer));
  }

  Frame& FrameOf(PageNumber number) {
    if (number >= frames.size()) frames.resize(std::max<std::size_t>(number + 1, page_count));
    return frames[number];
  }

  // Makes room in the clock for one more page in memory, and enters it.
  void Enter(PageNumber number) {
    Frame& entering = frames[number];
    entering.recently_used = true;
    if (entering.in_clock) return;
    entering.in_clock = true;
    if (clock.size() < cache_pages) {
      clock.push_back(number);
      return;
    }
    // Twice round finds every idle page; if all are changed or new, memory grows.
    for (std::size_t steps = 2 * clock.size(); steps > 0; --steps) {
      if (hand >= clock.size()) hand = 0;
      Frame& frame = frames[clock[hand]];
      if (frame.change == kNoChange && !frame.recently_used) {
        Recycle(std::exchange(frame.bytes, nullptr));
        frame.in_clock = false;
        clock[hand++] = number;
        return;
      }
      frame.recently_used = false;
      ++hand;
    }
    clock.push_back(number);
  }

  // Brings what a large transaction has left in memory back to the bound.
  void Shrink() {
    while (clock.size() > cache_pages) {
      Frame& frame = frames[clock.back()];
      frame.bytes.reset();
      frame.in_clock = false;
      clock.pop_back();
    }
  }

  Frame& Load(PageNumber number) {
    if (number >= page_count)
      throw Error(ErrorKind::kDamaged, "page behind the end of the file", number);
    Frame& frame = FrameOf(number);
    if (frame.bytes) {
      frame.recently_used = true;
      return frame;
    }
    Buffer bytes = NewBuffer();
    store.Read(number, *bytes);
    if (page_key != 0 && number != 0) ApplyPageKey(page_key, number, *bytes);
    Enter(number);
    frame.bytes = std::move(bytes);
    return frame;
  }

  ByteEditor Track(PageNumber number, WriteOrder order, Buffer before, Buffer after) {
    Frame& frame = frames[number];
    changes.push_back({number, order, false, false, frame.change, std::move(before), after});
    frame.change = static_cast<std::uint32_t>(changes.size() - 1);
    frame.bytes = std::move(after);
    return ByteEditor(*frame.bytes, number);
  }

  void RequireTransaction() const {
    if (depth == 0) throw std::logic_error("a page change outside a transaction");
  }

  bool ChangedInThisBatch(const Frame& frame) const {
    return frame.change != kNoChange && frame.change >= batch_start[batch];
  }

  bool IsEncoded(PageNumber number) const { return page_key != 0 && number != 0; }

  PageBytes Encoded(PageNumber number, const PageBytes& bytes) const {
    PageBytes encoded = bytes;
    ApplyPageKey(page_key, number, encoded);
    return encoded;
  }

  // Writes one page as it was or shall be.
  void WriteOut(PageNumber number, const PageBytes& bytes) {
    if (IsEncoded(number)) {
      store.Write(number, Encoded(number, bytes));
    } else {
      store.Write(number, bytes);
    }
    ++pages_written;
  }

  // Has the journal keep what the commit is about to overwrite.
  void KeepOldPages() {
    if (journal == nullptr) return;
    std::vector<JournalledWrite> writes;
    std::deque<PageBytes> encoded;
    writes.reserve(changes.size());
    const auto as_stored = [&](PageNumber number, const PageBytes& bytes) {
      return IsEncoded(number) ? &encoded.emplace_back(Encoded(number, bytes)) : &bytes;
    };
    for (const Change& change : changes) {
      const bool first = change.previous == kNoChange && change.number < page_count_before;
      writes.push_back({change.number, first ? as_stored(change.number, *change.before) : nullptr,
                        as_stored(change.number, *change.after)});
    }
    const Buffer page_zero = Load(0).bytes;
    journal->Keep(page_count_before, *page_zero, writes);
  }

  // The page's change in a batch; nothing when it has none there.
  std::uint32_t ChangeIn(unsigned of_batch, PageNumber number) const {
    std::uint32_t index = number < frames.size() ? frames[number].change : kNoChange;
    while (index != kNoChange && index >= batch_start[of_batch + 1])
      index = changes[index].previous;
    return index != kNoChange && index >= batch_start[of_batch] ? index : kNoChange;
  }

  // Writes a change of a batch after those it waits for.
  void WriteChange(unsigned of_batch, Change& change) {
    if (change.written) return;
    change.written = true;
    if (change.waits) {
      const std::vector<Ordering>& all = orderings[of_batch];
      auto at = std::lower_bound(all.begin(), all.end(), Ordering{change.number, 0});
      for (; at != all.end() && at->later == change.number; ++at) {
        const std::uint32_t earlier = ChangeIn(of_batch, at->earlier);
        if (earlier != kNoChange) WriteChange(of_batch, changes[earlier]);
      }
    }
    // A new page may come before its left neighbour, never behind the end.
    static constexpr PageBytes kEmptyPage{};
    while (store.page_count() < change.number) store.Write(store.page_count(), kEmptyPage);
    written.push_back(&change);
    WriteOut(change.number, *change.after);
  }

  void WriteBatch(unsigned of_batch) {
    std::sort(orderings[of_batch].begin(), orderings[of_batch].end());
    const std::size_t start = batch_start[of_batch];
    const std::span<Change> batch_changes =
        std::span(changes).subspan(start, batch_start[of_batch + 1] - start);
    for (unsigned order = 0; order <= kLastWriteOrder; ++order) {
      for (Change& change : batch_changes) {
        if (static_cast<unsigned>(change.order) == order) WriteChange(of_batch, change);
      }
    }
  }

  void Begin() {
    if (depth++ > 0) return;
    doomed = false;
    page_count_before = page_count;
  }

  // Runs what was deferred, each stage as a batch of its own, so that all that can fail but the
  // writing itself has happened before the first write.
  void CloseBatches() {
    while (true) {
      while (!deferred[batch].empty()) {
        const std::function<void()> action = std::move(deferred[batch].front());
        deferred[batch].pop_front();
        action();
      }
      batch_start[batch + 1] = static_cast<std::uint32_t>(changes.size());
      if (batch + 1 == kBatches) return;
      ++batch;
    }
  }

  void Commit() {
    if (doomed) {
      Undo();
      throw Error(ErrorKind::kIo, "a part of the change was given up");
    }
    try {
      CloseBatches();
      KeepOldPages();
      for (unsigned i = 0; i < kBatches; ++i) WriteBatch(i);
    } catch (...) {
      PutBack();
      Undo();
      throw;
    }
    for (Change& change : changes) {
      frames[change.number].change = kNoChange;
      Recycle(std::move(change.before));
    }
    Forget();
  }

  // Writes the old bytes over what has reached the file. The first failure ends it: the file is
  // then what the disk has made of it, and nothing of these pages is trusted to memory.
  void PutBack() noexcept {
    try {
      for (std::size_t i = written.size(); i-- > 0;) {
        const Change& change = *written[i];
        if (change.before && change.number < page_count_before)
          WriteOut(change.number, *change.before);
      }
      if (store.page_count() > page_count_before) store.Truncate(page_count_before);
    } catch (const std::exception&) {
      if (journal != nullptr) journal->Leave();
      for (Change* change : written) change->before.reset();
      page_count_before = store.page_count();
    }
  }

  // Brings memory back to what it was before the transaction.
  void Undo() noexcept {
    for (std::size_t i = changes.size(); i-- > 0;) {
      Change& change = changes[i];
      Frame& frame = frames[change.number];
      frame.change = kNoChange;
      frame.bytes = std::move(change.before);
    }
    page_count = page_count_before;
    ++rollbacks;
    Forget();
  }

  void Forget() noexcept {
    for (Change& change : changes) Recycle(std::move(change.after));
    changes.clear();
    written.clear();
    for (auto& list : orderings) list.clear();
    for (auto& list : deferred) list.clear();
    batch_start = kOnlyFirstBatch;
    batch = 0;
    page_count_before = page_count;
    doomed = false;
    Shrink();
  }
};

Pager::Pager(std::unique_ptr<PageStore> store, std::uint32_t page_key, std::size_t cache_pages,
             std::unique_ptr<UndoJournal> journal)
    : store_(std::move(store)),
      journal_(std::move(journal)),
      impl_(
          std::make_unique<Impl>(*store_, journal_.get(), page_key, cache_pages, pages_written_)) {}

Pager::~Pager() = default;

Page Pager::Read(PageNumber number) const {
  const Frame& frame = impl_->Load(number);
  if (frame.change == kNoChange) return Page(frame.bytes, number);
  return Page(std::make_shared<PageBytes>(*frame.bytes), number);
}

ByteView Pager::View(PageNumber number) const {
  return ByteView(*impl_->Load(number).bytes, number);
}

ByteEditor Pager::Edit(PageNumber number, WriteOrder order) {
  Impl& impl = *impl_;
  impl.RequireTransaction();
  Frame& frame = impl.Load(number);
  if (impl.ChangedInThisBatch(frame)) return ByteEditor(*frame.bytes, number);
  Buffer after = impl.NewBuffer();
  *after = *frame.bytes;
  return impl.Track(number, order, frame.bytes, std::move(after));
}

ByteEditor Pager::EditNew(PageNumber number, WriteOrder order) {
  Impl& impl = *impl_;
  impl.RequireTransaction();
  if (number < impl.page_count) {
    ByteEditor page = Edit(number, order);
    std::ranges::fill(page.Slice(0, kPageSize), std::byte{0});
    return page;
  }
  if (number - impl.page_count > kLongestGap)
    throw Error(ErrorKind::kDamaged, "the map of free pages begins far behind the file", number);
  while (impl.page_count < number) EditNew(impl.page_count);
  ++impl.page_count;
  impl.FrameOf(number);
  impl.Enter(number);
  Buffer after = impl.NewBuffer();
  after->fill(std::byte{0});
  return impl.Track(number, order, nullptr, std::move(after));
}

void Pager::WriteAfter(PageNumber later, PageNumber earlier) {
  Impl& impl = *impl_;
  impl.RequireTransaction();
  const std::uint32_t change = impl.ChangeIn(impl.batch, later);
  if (later == earlier || change == kNoChange) return;
  impl.changes[change].waits = true;
  impl.orderings[impl.batch].push_back({later, earlier});
}

bool Pager::WaitsForOthers(PageNumber number) const {
  const std::uint32_t change = impl_->ChangeIn(impl_->batch, number);
  return change != kNoChange && impl_->changes[change].waits;
}

void Pager::Defer(CleanUp stage, std::function<void()> action) {
  impl_->RequireTransaction();
  const unsigned wanted = static_cast<unsigned>(stage) + 1;
  impl_->deferred[std::max(wanted, impl_->batch)].push_back(std::move(action));
}

PageNumber Pager::page_count() const { return impl_->page_count; }

std::uint64_t Pager::rollback_count() const { return impl_->rollbacks; }

PageTransaction::PageTransaction(Pager& pager) : pager_(pager) {
  if (pager.read_only()) throw Error(ErrorKind::kReadOnly, "the file is open for reading only");
  pager.impl_->Begin();
}

PageTransaction::~PageTransaction() {
  if (committed_) return;
  Pager::Impl& impl = *pager_.impl_;
  if (--impl.depth > 0) {
    impl.doomed = true;
  } else if (!impl.changes.empty()) {
    impl.Undo();
  } else {
    impl.Forget();
  }
}

void PageTransaction::Commit() {
  if (committed_) return;
  Pager::Impl& impl = *pager_.impl_;
  if (impl.depth == 1) impl.Commit();
  committed_ = true;
  --impl.depth;
}

}  // namespace jet
