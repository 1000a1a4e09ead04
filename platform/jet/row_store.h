// Raw rows on a table's data pages: room, slots, overflow, the maps of owned pages and of room.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "platform/jet/data_page.h"
#include "platform/jet/pager.h"
#include "platform/jet/row_pointer.h"
#include "platform/jet/usage_map.h"

namespace jet {

// The bytes of a row where they lie; `bytes` are good as long as `page` lives.
struct RawRow {
  RowId id;  // home slot
  Page page;
  std::span<const std::byte> bytes;
};

// The rows of one owner: a table. Rows are bytes here; their meaning is the row codec's.
// A light handle; the pager and allocator must outlive it, and the transactions it took part in.
// Changes need a transaction and are complete when that commits: rows that have lost their home
// slot and pages that have lost their last row go then.
class RowStore {
 public:
  RowStore(Pager& pager, PageAllocator& allocator, PageNumber owner, RowPointer owned_pages,
           RowPointer pages_with_room);

  // The row, its overflow followed; nothing when the slot holds no live row.
  // kDamaged when a pointer leads nowhere or to another owner's page.
  std::optional<RawRow> Read(RowId id) const;

  // Walks live rows by page, then slot. Holds the page it stands on; a row changed or deleted
  // meanwhile is seen old or new, rows added to pages not yet visited are seen, but those on pages
  // that the table took meanwhile are not. The store must outlive it.
  class Scan {
   public:
    explicit Scan(const RowStore& store);
    std::optional<RawRow> Next();

   private:
    const RowStore& store_;
    std::vector<PageNumber> pages_;
    std::size_t page_index_ = 0;
    unsigned row_ = 0;
    unsigned row_count_ = 0;
    std::optional<Page> page_;
  };

  // kRowTooLarge, kDiskFull.
  RowId Insert(std::span<const std::byte> row);
  // Keeps the row's home slot. In place, moved to another page, or back, as room allows.
  // `row` may be bytes read before, but not bytes on loan from Pager::View or an editor.
  void Replace(RowId id, std::span<const std::byte> row);
  // kRecordDeleted when there is no live row.
  void Delete(RowId id);

 private:
  // A live row's home slot, and for a moved one where its bytes are.
  struct Location {
    data_page::Slot home;
    std::optional<RowPointer> overflow;
    data_page::Slot overflow_slot;
  };
  std::optional<Location> Find(RowId id) const;
  Location FindOrThrow(RowId id) const;

  // A page to put a row on, from the map of pages with room, or newly taken. For an overflow row:
  // neither its home page nor one that the commit cannot write before that.
  PageNumber PageFor(std::size_t length, std::optional<PageNumber> home);
  bool IsUsable(PageNumber page) const;
  // Adds a row, hidden ones with that flag.
  RowPointer Place(std::span<const std::byte> row, std::optional<PageNumber> home);
  void PointTo(RowId id, RowPointer overflow);
  void RemoveOverflow(RowPointer at);
  // What follows the removal of a row from a page.
  void RowRemoved(PageNumber page);
  void ReleaseEmptied(PageNumber page);

  Pager& pager_;
  PageAllocator& allocator_;
  PageNumber owner_;
  UsageMap owned_;
  UsageMap with_room_;
};

}  // namespace jet
