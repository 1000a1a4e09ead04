// Raw rows on a table's data pages.
#include "platform/jet/row_store.h"

#include <algorithm>
#include <array>

#include "platform/jet/row_codec.h"

namespace jet {
namespace {

// Pages looked at for an overflow row before a new one is taken.
constexpr int kPageTries = 16;

}  // namespace

RowStore::RowStore(Pager& pager, PageAllocator& allocator, PageNumber owner, RowPointer owned_pages,
                   RowPointer pages_with_room)
    : pager_(pager),
      allocator_(allocator),
      owner_(owner),
      owned_(pager, allocator, owned_pages, MapKind::kOwned),
      with_room_(pager, allocator, pages_with_room, MapKind::kHint) {}

std::optional<RowStore::Location> RowStore::Find(RowId id) const {
  if (id.page >= pager_.page_count()) return std::nullopt;
  const ByteView page = pager_.View(id.page);
  if (!data_page::IsOwnedBy(page, owner_)) return std::nullopt;
  Location location{data_page::SlotAt(page, id.row), std::nullopt, {}};
  if (location.home.is_row()) return location;
  if (!location.home.is_pointer()) return std::nullopt;

  const RowPointer target = data_page::PointerAt(page, location.home);
  const ByteView target_page = pager_.View(target.page);
  location.overflow = target;
  location.overflow_slot = data_page::SlotAt(target_page, target.row);
  if (!data_page::IsOwnedBy(target_page, owner_) || !location.overflow_slot.is_hidden())
    throw Error(ErrorKind::kDamaged, "a moved row that is not where it should be", id.page);
  return location;
}

RowStore::Location RowStore::FindOrThrow(RowId id) const {
  std::optional<Location> location = Find(id);
  if (!location) throw Error(ErrorKind::kRecordDeleted, "no row in this slot", id.page);
  return *location;
}

std::optional<RawRow> RowStore::Read(RowId id) const {
  const std::optional<Location> location = Find(id);
  if (!location) return std::nullopt;
  const PageNumber number = location->overflow ? location->overflow->page : id.page;
  RawRow row{id, pager_.Read(number), {}};
  row.bytes = data_page::RowBytes(row.page.view(),
                                  location->overflow ? location->overflow_slot : location->home);
  return row;
}

RowStore::Scan::Scan(const RowStore& store) : store_(store), pages_(store.owned_.Pages()) {}

std::optional<RawRow> RowStore::Scan::Next() {
  while (true) {
    while (row_ < row_count_) {
      const auto row = static_cast<std::uint8_t>(row_++);
      const data_page::Slot slot = data_page::SlotAt(page_->view(), row);
      const RowId id{page_->number(), row};
      if (slot.is_row()) return RawRow{id, *page_, data_page::RowBytes(page_->view(), slot)};
      // Followed on the pages as they are now: since this one was read the row may have moved.
      if (slot.is_pointer()) {
        if (std::optional<RawRow> moved = store_.Read(id)) return moved;
      }
    }
    if (page_index_ >= pages_.size()) return std::nullopt;
    const PageNumber number = pages_[page_index_++];
    row_ = row_count_ = 0;
    // Maps may name pages that the file has not grown to yet, and such as were never written.
    if (number >= store_.pager_.page_count()) continue;
    const Page page = store_.pager_.Read(number);
    if (data_page::IsOwnedBy(page.view(), store_.owner_)) {
      page_ = page;
      row_count_ = data_page::SlotCount(page.view());
    } else if (page.view().U16(data_page::kTypeAt) != data_page::kNeverWrittenType &&
               store_.owned_.Contains(number)) {
      throw Error(ErrorKind::kDamaged, "a table's map names a page that is not its own", number);
    }
  }
}

RowId RowStore::Insert(std::span<const std::byte> row) { return Place(row, std::nullopt); }

void RowStore::Replace(RowId id, std::span<const std::byte> row) {
  if (row.size() > kMaxRowSize) throw Error(ErrorKind::kRowTooLarge, "a row beyond the largest");
  const Location location = FindOrThrow(id);
  const std::size_t home_room = data_page::FreeBytes(pager_.View(id.page)) + location.home.length;
  if (location.overflow) {
    const RowPointer away = *location.overflow;
    const std::size_t away_room =
        data_page::FreeBytes(pager_.View(away.page)) + location.overflow_slot.length;
    if (row.size() <= away_room) {
      ByteEditor page = pager_.Edit(away.page);
      data_page::ReplaceRow(page, away.row, row, data_page::kHiddenFlag);
      return;
    }
  }
  if (row.size() <= home_room) {
    ByteEditor page = pager_.Edit(id.page);
    data_page::ReplaceRow(page, id.row, row, 0);
  } else {
    if (home_room < data_page::kPointerSize)
      throw Error(ErrorKind::kRowTooLarge, "no room for a pointer to the moved row", id.page);
    PointTo(id, Place(row, id.page));
  }
  if (location.overflow) RemoveOverflow(*location.overflow);
}

void RowStore::Delete(RowId id) {
  const Location location = FindOrThrow(id);
  ByteEditor page = pager_.Edit(id.page);
  data_page::RemoveRow(page, id.row);
  RowRemoved(id.page);
  if (location.overflow) RemoveOverflow(*location.overflow);
}

RowPointer RowStore::Place(std::span<const std::byte> row, std::optional<PageNumber> home) {
  if (row.size() > kMaxRowSize) throw Error(ErrorKind::kRowTooLarge, "a row beyond the largest");
  const PageNumber number = PageFor(row.size(), home);
  ByteEditor page = pager_.Edit(number);
  page.SetU16(data_page::kTypeAt, data_page::kType);
  const std::uint16_t flags = home ? data_page::kHiddenFlag : std::uint16_t{0};
  return {number, data_page::AddRow(page, row, flags)};
}

PageNumber RowStore::PageFor(std::size_t length, std::optional<PageNumber> home) {
  int tries = kPageTries;
  for (auto page = with_room_.Last(); page && tries > 0; page = with_room_.LastBelow(*page)) {
    if (home && (*page == *home || pager_.WaitsForOthers(*page))) {
      --tries;
      continue;
    }
    if (IsUsable(*page) && data_page::HasRoomFor(pager_.View(*page), length)) return *page;
    with_room_.Remove(*page);
  }
  const PageNumber taken = allocator_.Take();
  ByteEditor page = pager_.Edit(taken);
  data_page::Format(page, owner_);
  owned_.Add(taken);
  with_room_.Add(taken);
  return taken;
}

bool RowStore::IsUsable(PageNumber page) const {
  // The map of pages with room is a hint: a page may have left the table since.
  if (page >= pager_.page_count() || !owned_.Contains(page)) return false;
  if (!data_page::IsOwnedBy(pager_.View(page), owner_))
    throw Error(ErrorKind::kDamaged, "a table's map names a page that is not its own", page);
  return true;
}

void RowStore::PointTo(RowId id, RowPointer overflow) {
  std::array<std::byte, data_page::kPointerSize> stored{};
  ByteEditor(stored).SetU32(0, overflow.ToStored());
  ByteEditor page = pager_.Edit(id.page);
  data_page::ReplaceRow(page, id.row, stored, data_page::kPointerFlag);
  pager_.WriteAfter(id.page, overflow.page);
  owned_.WriteBefore(overflow.page, id.page);
}

void RowStore::RemoveOverflow(RowPointer at) {
  pager_.Defer(CleanUp::kUnreferenced, [store = *this, at]() mutable {
    ByteEditor page = store.pager_.Edit(at.page);
    data_page::RemoveRow(page, at.row);
    store.RowRemoved(at.page);
  });
}

void RowStore::RowRemoved(PageNumber page) {
  if (data_page::RowCount(pager_.View(page)) > 0) {
    with_room_.Add(page);
    return;
  }
  pager_.Defer(CleanUp::kUnreferenced,
               [store = *this, page]() mutable { store.ReleaseEmptied(page); });
}

void RowStore::ReleaseEmptied(PageNumber page) {
  if (!owned_.Contains(page)) return;
  // The first page stays with the table; another may have got rows again in this transaction.
  if (owned_.First() == page || data_page::RowCount(pager_.View(page)) > 0) {
    with_room_.Add(page);
    return;
  }
  owned_.Remove(page);
  with_room_.Remove(page);
  allocator_.Release(page, data_page::kReleasedMark);
}

}  // namespace jet
