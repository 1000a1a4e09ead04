// The map of free pages: taking, releasing, growth; and the rows that usage maps live in.
#include <algorithm>
#include <array>
#include <vector>

#include "platform/jet/bitmap.h"
#include "platform/jet/map_row.h"
#include "platform/jet/table_definition_format.h"
#include "platform/jet/usage_map.h"

namespace jet {

using usage_map::FindMapRow;
using usage_map::kPagesPerMapPage;
using usage_map::MapPageBits;
using usage_map::MapRow;

namespace {

// Page 0, the global maps and the four system tables' definitions: never free.
constexpr PageNumber kFirstPageEverFree = 6;
constexpr PageNumber kGlobalMapPage = 1;
constexpr PageNumber kCatalogDefinition = 2;

}  // namespace

PageAllocator::PageAllocator(Pager& pager, RowPointer free_pages, RowPointer released_pages)
    : pager_(pager),
      free_pages_(free_pages),
      released_pages_(pager, *this, released_pages, MapKind::kOwned),
      rollbacks_(pager.rollback_count()) {}

PageNumber PageAllocator::Take() {
  CheckMemory();
  PageNumber from = next_;
  while (true) {
    const std::optional<PageNumber> found = FindFree(from);
    if (!found) {
      GrowMap();
      continue;
    }
    if (*found >= usage_map::kMaxPages)
      throw Error(ErrorKind::kDiskFull, "the file has reached its largest size");
    if (*found < kFirstPageEverFree || *found == free_pages_.page)
      throw Error(ErrorKind::kDamaged, "a page marked free that never is", *found);
    if (released_pages_.Contains(*found)) {
      from = *found + 1;
      continue;
    }
    SetBit(*found, false);
    pager_.EditNew(*found);
    next_ = from == next_ ? *found + 1 : next_;
    return *found;
  }
}

void PageAllocator::Release(PageNumber page, std::optional<std::uint8_t> mark) {
  if (page < kFirstPageEverFree || page >= pager_.page_count() || IsFree(page))
    throw Error(ErrorKind::kDamaged, "a page to give back that is free already or never", page);
  if (mark) {
    pager_.Defer(CleanUp::kUnreferenced,
                 [this, page, type = *mark] { pager_.Edit(page).SetU8(0, type); });
  }
  pager_.Defer(CleanUp::kFreePages, [this, page] { SetFree(page); });
}

bool PageAllocator::IsFree(PageNumber page) const {
  if (page >= usage_map::kMaxPages) return false;
  const MapRow row = FindMapRow(pager_, free_pages_);
  if (!row.is_reference())
    return row.InWindow(page) && bitmap::Test(row.bits(), page - row.first());
  const PageNumber map_page = row.map_page(page / kPagesPerMapPage);
  return map_page == 0 || bitmap::Test(MapPageBits(pager_, map_page), page % kPagesPerMapPage);
}

RowPointer PageAllocator::NewMap() {
  static constexpr std::array<std::byte, usage_map::kRowSize> kEmptyMap{};
  CheckMemory();
  if (map_page_ == 0 && pager_.page_count() > kCatalogDefinition) {
    // The maps of the catalog itself show a map page that may have room.
    const ByteView catalog = pager_.View(kCatalogDefinition);
    if (catalog.U16(table_definition_format::kPageTypeAt) == table_definition_format::kPageType)
      map_page_ = catalog.U32(table_definition_format::kOwnedPagesMapAt) >> 8;
  }
  bool has_room = map_page_ >= kFirstPageEverFree && map_page_ < pager_.page_count();
  if (has_room) {
    const ByteView page = pager_.View(map_page_);
    has_room = page.U16(data_page::kTypeAt) == data_page::kType &&
               data_page::IsOwnedBy(page, data_page::kMapOwner) &&
               data_page::HasRoomFor(page, kEmptyMap.size()) && !IsFree(map_page_);
  }
  if (!has_room) {
    map_page_ = Take();
    ByteEditor page = pager_.Edit(map_page_);
    data_page::Format(page, data_page::kMapOwner);
  }
  ByteEditor page = pager_.Edit(map_page_, WriteOrder::kAdditions);
  return {map_page_, data_page::AddRow(page, kEmptyMap)};
}

std::optional<PageNumber> PageAllocator::FindFree(PageNumber from) {
  const MapRow row = FindMapRow(pager_, free_pages_);
  if (!row.is_reference()) {
    const std::size_t skipped = from > row.first() ? from - row.first() : 0;
    const auto bit = bitmap::First(row.bits(), skipped);
    if (!bit) return std::nullopt;
    return row.first() + static_cast<PageNumber>(*bit);
  }
  for (std::size_t i = from / kPagesPerMapPage; i < usage_map::kMapPages; ++i) {
    PageNumber map_page = FindMapRow(pager_, free_pages_).map_page(i);
    if (map_page == 0) {
      AddMapPage(i);
      map_page = FindMapRow(pager_, free_pages_).map_page(i);
    }
    const PageNumber first = static_cast<PageNumber>(i) * kPagesPerMapPage;
    const auto bit = bitmap::First(MapPageBits(pager_, map_page), from > first ? from - first : 0);
    if (bit) return first + static_cast<PageNumber>(*bit);
  }
  return usage_map::kMaxPages;
}

void PageAllocator::GrowMap() {
  const MapRow row = FindMapRow(pager_, free_pages_);
  if (data_page::FreeBytes(row.page) < usage_map::kGrowth + usage_map::kGlobalRowFloor) {
    ConvertToReference();
    return;
  }
  const std::size_t old_length = row.slot.length;
  const PageNumber old_limit = row.limit();
  const PageNumber page_count = pager_.page_count();
  ByteEditor page = pager_.Edit(free_pages_.page, WriteOrder::kTakenPages);
  data_page::ResizeRow(page, free_pages_.row, old_length + usage_map::kGrowth);
  const std::size_t start = data_page::SlotAt(page.view(), free_pages_.row).start;
  const std::span<std::byte> bits = page.Slice(start + old_length, usage_map::kGrowth);
  for (PageNumber i = 0; i < usage_map::kGrowth * 8; ++i) {
    if (old_limit + i >= page_count) bitmap::Set(bits, i);
  }
}

void PageAllocator::ConvertToReference() {
  const MapRow row = FindMapRow(pager_, free_pages_);
  if (row.slot.length + data_page::FreeBytes(row.page) < usage_map::kRowSize)
    throw Error(ErrorKind::kNotSupported, "no room for the map of free pages", free_pages_.page);
  // All pages up to here are in use; the map pages follow, one for each range that they reach.
  const PageNumber first_map_page = std::max(row.limit(), pager_.page_count());
  PageNumber map_pages = 1;
  while ((first_map_page + map_pages - 1) / kPagesPerMapPage >= map_pages) ++map_pages;
  const PageNumber first_free = first_map_page + map_pages;
  if (first_free > usage_map::kMaxPages)
    throw Error(ErrorKind::kDiskFull, "the file has reached its largest size");

  for (PageNumber i = 0; i < map_pages; ++i)
    FillMapPage(first_map_page + i, i * kPagesPerMapPage, first_free);
  ByteEditor page = pager_.Edit(free_pages_.page, WriteOrder::kTakenPages);
  data_page::ResizeRow(page, free_pages_.row, usage_map::kRowSize);
  const std::size_t start = data_page::SlotAt(page.view(), free_pages_.row).start;
  std::ranges::fill(page.Slice(start, usage_map::kRowSize), std::byte{0});
  page.SetU8(start + usage_map::kFormAt, usage_map::kReference);
  for (PageNumber i = 0; i < map_pages; ++i) {
    page.SetU32(start + usage_map::kMapPagesAt + usage_map::kMapPageSize * i, first_map_page + i);
    pager_.WriteAfter(free_pages_.page, first_map_page + i);
  }
}

void PageAllocator::AddMapPage(std::size_t index) {
  const PageNumber first = static_cast<PageNumber>(index) * kPagesPerMapPage;
  const PageNumber map_page = std::max(first, pager_.page_count());
  if (map_page >= usage_map::kMaxPages)
    throw Error(ErrorKind::kDiskFull, "the file has reached its largest size");
  if (map_page >= first + kPagesPerMapPage)
    throw Error(ErrorKind::kDamaged, "no map of free pages for a part of the file", first);
  FillMapPage(map_page, first, map_page + 1);
  const std::size_t at = FindMapRow(pager_, free_pages_).map_page_at(index);
  pager_.Edit(free_pages_.page, WriteOrder::kTakenPages).SetU32(at, map_page);
  pager_.WriteAfter(free_pages_.page, map_page);
}

void PageAllocator::FillMapPage(PageNumber map_page, PageNumber first, PageNumber first_free) {
  ByteEditor page = pager_.EditNew(map_page, WriteOrder::kTakenPages);
  usage_map::FormatMapPage(page);
  const std::span<std::byte> bits = MapPageBits(page);
  std::ranges::fill(bits, std::byte{0xff});
  const PageNumber used = first_free > first ? std::min(first_free - first, kPagesPerMapPage) : 0;
  for (PageNumber i = 0; i < used; ++i) bitmap::Clear(bits, i);
}

void PageAllocator::SetBit(PageNumber page, bool free) {
  const MapRow row = FindMapRow(pager_, free_pages_);
  PageNumber holder = free_pages_.page;
  std::size_t at = 0;
  std::size_t bit = 0;
  if (row.is_reference()) {
    holder = row.map_page(page / kPagesPerMapPage);
    at = usage_map::kPageBitsAt;
    bit = page % kPagesPerMapPage;
  } else {
    at = row.bits_at();
    bit = page - row.first();
  }
  ByteEditor editor = pager_.Edit(holder, WriteOrder::kTakenPages);
  const std::span<std::byte> byte = editor.Slice(at + bit / 8, 1);
  if (free) {
    bitmap::Set(byte, bit % 8);
  } else {
    bitmap::Clear(byte, bit % 8);
  }
}

void PageAllocator::SetFree(PageNumber page) {
  if (IsFree(page)) throw Error(ErrorKind::kDamaged, "a page to give back twice", page);
  while (true) {
    const MapRow row = FindMapRow(pager_, free_pages_);
    if (row.is_reference() || row.InWindow(page)) break;
    if (page >= row.first()) {
      GrowMap();
    } else if (!LowerWindow()) {
      return;  // no room to say that the page is free: nobody will use it
    }
  }
  SetBit(page, true);
  next_ = std::min(next_, page);
}

bool PageAllocator::LowerWindow() {
  const MapRow row = FindMapRow(pager_, free_pages_);
  const std::size_t bytes = (row.limit() + 7) / 8;
  const std::size_t length = usage_map::kBitsAt + (bytes + usage_map::kGrowth - 1) /
                                                      usage_map::kGrowth * usage_map::kGrowth;
  if (length > row.slot.length + data_page::FreeBytes(row.page)) return false;
  const PageNumber old_first = row.first();
  const PageNumber old_limit = row.limit();
  std::vector<PageNumber> free;
  for (auto bit = bitmap::First(row.bits()); bit; bit = bitmap::First(row.bits(), *bit + 1))
    free.push_back(old_first + static_cast<PageNumber>(*bit));
  const auto new_limit = static_cast<PageNumber>((length - usage_map::kBitsAt) * 8);
  for (PageNumber page = std::max(old_limit, pager_.page_count()); page < new_limit; ++page)
    free.push_back(page);

  ByteEditor page = pager_.Edit(free_pages_.page, WriteOrder::kTakenPages);
  data_page::ResizeRow(page, free_pages_.row, length);
  const std::size_t start = data_page::SlotAt(page.view(), free_pages_.row).start;
  std::ranges::fill(page.Slice(start, length), std::byte{0});
  const std::span<std::byte> bits =
      page.Slice(start + usage_map::kBitsAt, length - usage_map::kBitsAt);
  for (const PageNumber number : free) bitmap::Set(bits, number);
  return true;
}

void PageAllocator::CheckMemory() {
  if (rollbacks_ == pager_.rollback_count()) return;
  rollbacks_ = pager_.rollback_count();
  next_ = 0;
  map_page_ = 0;
}

}  // namespace jet
