// Usage maps: sets of page numbers kept in rows of map pages, and the map of free pages.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/jet/pager.h"
#include "platform/jet/row_pointer.h"

namespace jet {

class PageAllocator;

// Which way a map's inline window goes when a page lies outside it.
enum class MapKind {
  kOwned,  // data, index and long-value pages owned: the window slides to the first page and
           // lengthens from there, then reference form
  kHint,   // pages with room: the window slides, then reference form
};

// One set of page numbers. A light handle: reads the map's row anew on each call.
// The pager and allocator must outlive it. Changes need a transaction. Pages added are written
// before the pages that use them, so after a kill a map may hold too much, never too little.
class UsageMap {
 public:
  UsageMap(Pager& pager, PageAllocator& allocator, RowPointer at, MapKind kind);

  bool Contains(PageNumber page) const;
  void Add(PageNumber page);     // no effect when it is in the set
  void Remove(PageNumber page);  // no effect when it is not
  // Has the commit write what this map says of `page` before it writes `user`, a page changed by
  // the transaction that uses `page`.
  void WriteBefore(PageNumber page, PageNumber user);
  // All pages, ascending. kDamaged for a map outside its rules or naming pages beyond 2 GiB.
  std::vector<PageNumber> Pages() const;
  std::optional<PageNumber> First() const;
  std::optional<PageNumber> Last() const;
  std::optional<PageNumber> LastBelow(PageNumber limit) const;

  RowPointer at() const { return at_; }

 private:
  // Gives the map a place for the page's bit, converting it where its window cannot go there.
  void MakeRoomFor(PageNumber page);
  bool LengthenWindow(PageNumber page);  // false: not possible, nothing changed
  bool SlideWindow(PageNumber page);     // the same
  void ConvertToReference();
  // Makes the row an empty one of the usual size; false when there is no room for that.
  bool ClearRow(std::uint8_t form);
  // Sets a bit in a map in reference form.
  void AddToMapPage(PageNumber page);

  Pager& pager_;
  PageAllocator& allocator_;
  RowPointer at_;
  MapKind kind_;
};

// Takes pages from the map of free pages and gives them back.
//
// Released pages become free when the transaction commits, as its last write; they are not taken
// again within the same transaction. Pages set in the map of released pages (a release cut short)
// are never taken. One to an open file, so that what it remembers holds; must outlive transactions.
class PageAllocator {
 public:
  // The maps are where page 0 says; in every file seen, where the defaults do.
  explicit PageAllocator(Pager& pager, RowPointer free_pages = {1, 0},
                         RowPointer released_pages = {1, 1});
  PageAllocator(const PageAllocator&) = delete;
  PageAllocator& operator=(const PageAllocator&) = delete;

  // The number of a page that is now ours, zero-filled through Pager::EditNew. kDiskFull above
  // 2 GiB, kDamaged for a map that offers pages which are never free.
  PageNumber Take();
  // First byte becomes `mark` (8 dropped definition, 9 emptied data or long-value page) when given;
  // the rest of the page stays as it is. kDamaged for a page that is free already or never.
  void Release(PageNumber page, std::optional<std::uint8_t> mark = std::nullopt);

  bool IsFree(PageNumber page) const;

  // An empty map in a new row of a map page with room (a page owned by nobody, shared by tables).
  RowPointer NewMap();

 private:
  // The first page at or behind `from` that the map says is free; nothing when it has no more.
  std::optional<PageNumber> FindFree(PageNumber from);
  // Where no bit is left: lengthens the row, or converts it.
  void GrowMap();
  void ConvertToReference();
  // Lets the row's window begin at page 0, for the pages of a file whose writer left them out.
  // False when there is no room for that.
  bool LowerWindow();
  // Makes the map page of a range of which none was in use so far.
  void AddMapPage(std::size_t index);
  void FillMapPage(PageNumber map_page, PageNumber first, PageNumber first_free);
  void SetBit(PageNumber page, bool free);
  void SetFree(PageNumber page);
  // Forgets what a rollback may have made wrong.
  void CheckMemory();

  Pager& pager_;
  RowPointer free_pages_;
  UsageMap released_pages_;
  PageNumber next_ = 0;      // no page below this is free
  PageNumber map_page_ = 0;  // where the last new map went; 0: not known
  std::uint64_t rollbacks_ = 0;
};

}  // namespace jet
