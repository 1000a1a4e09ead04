// Pages of the file: cached reads, and changes that reach the file as a group or not at all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

#include "platform/jet/page_store.h"
#include "platform/jet/page_view.h"
#include "platform/jet/undo_journal.h"

namespace jet {

// Where a page goes in the order in which a commit writes. The order makes sure that a process
// killed between two writes leaves a file that can be read and changed again: what nothing points
// to yet goes first, pointers later. docs/recovery.md lists the file after a kill at each step.
//
// Within a group pages are written in the order in which the transaction first touched them, but
// for what WriteAfter asks.
enum class WriteOrder : std::uint8_t {
  kTakenPages,  // the map of free pages, with the bits of taken pages cleared
  kNewPages,    // pages taken by this transaction: nothing in the file points to them yet
  kAdditions,   // pages that gain what nothing points to yet: long values, pages in usage maps
  kChanged,     // everything else
};

// What a commit does after everything else, as further batches of page writes of their own: taking
// away what the changes have left without a pointer to it.
enum class CleanUp : std::uint8_t {
  kUnreferenced,  // overflow rows, long values, emptied pages
  kFreePages,     // the map of free pages, with the bits of released pages set
};

// Owns the open file. At most one transaction at a time (see PageTransaction).
//
// Reading keeps a bounded cache of clean pages. Every byte that reaches the file goes through
// Commit of a transaction, which has the journal keep what it overwrites.
// Not synchronised: use from one thread.
class Pager {
 public:
  static constexpr std::size_t kDefaultCachePages = 16384;  // 64 MiB

  // `page_key` is the key of encoded pages, 0 for a plain file. Without a journal a killed process
  // leaves what the order of writes makes of it.
  Pager(std::unique_ptr<PageStore> store, std::uint32_t page_key,
        std::size_t cache_pages = kDefaultCachePages,
        std::unique_ptr<UndoJournal> journal = nullptr);
  ~Pager();
  Pager(const Pager&) = delete;
  Pager& operator=(const Pager&) = delete;

  // The page as the transaction in progress sees it. kDamaged for a page behind the end.
  // Copies a page that the transaction has changed; View does not.
  Page Read(PageNumber number) const;

  // The same page on loan, without the cost of keeping it: good until the next call of this pager.
  ByteView View(PageNumber number) const;

  // The same page, to be changed by the transaction in progress. The editor is good until the
  // transaction ends; Read sees its changes at once, but a Page read before keeps the old bytes.
  // `order` counts at the first touch only. REQUIRES a transaction.
  ByteEditor Edit(PageNumber number, WriteOrder order = WriteOrder::kChanged);

  // As Edit, for a page taken by this transaction: its bytes are zero, the file grows to hold it.
  ByteEditor EditNew(PageNumber number, WriteOrder order = WriteOrder::kNewPages);

  // `later`, changed by this transaction, is not written before `earlier`, changed by it too,
  // whatever their groups: `later` points to what is new on `earlier`. Must not run in a circle;
  // WaitsForOthers tells whether a page may still be waited for without any risk of that.
  void WriteAfter(PageNumber later, PageNumber earlier);
  bool WaitsForOthers(PageNumber number) const;

  // Has `action` done when the transaction commits, in the batch that `stage` names; forgotten when
  // it does not commit. The action edits pages as usual; when it throws, nothing is written. It
  // must stay valid beyond the objects that asked for it. Asked for in that batch or a later one,
  // it is done in the batch in progress.
  void Defer(CleanUp stage, std::function<void()> action);

  // Pages in the file, those added by the transaction in progress included.
  PageNumber page_count() const;

  bool read_only() const { return store_->read_only(); }

  // Pages written to the file since it was opened; for benchmarks.
  std::uint64_t pages_written() const { return pages_written_; }

  // Changes that were discarded or failed since the file was opened: what was remembered about
  // pages when this was lower may be wrong.
  std::uint64_t rollback_count() const;

 private:
  friend class PageTransaction;
  struct Impl;

  std::unique_ptr<PageStore> store_;
  std::unique_ptr<UndoJournal> journal_;
  std::unique_ptr<Impl> impl_;
  std::uint64_t pages_written_ = 0;
};

// A group of page changes that reaches the file completely or not at all, as long as the process
// lives: when a write fails, the pages already written are put back and Commit throws.
//
// Edits stay in memory until Commit(). Dropping the object without Commit() discards them; the
// destructor does no I/O. Transactions nest: an inner one joins the outer one and its Commit does
// nothing; an inner one dropped without Commit dooms the outer one, whose Commit then throws kIo.
//
// The pager must outlive the transaction.
class PageTransaction {
 public:
  explicit PageTransaction(Pager& pager);  // kReadOnly when the file was opened for reading only
  ~PageTransaction();
  PageTransaction(const PageTransaction&) = delete;
  PageTransaction& operator=(const PageTransaction&) = delete;

  // Ends the transaction. Throws kDiskFull or kIo, and what clean-up throws; the file is then as it
  // was before.
  void Commit();

 private:
  Pager& pager_;
  bool committed_ = false;
};

}  // namespace jet
