// A usage map's row and its map pages, found and checked; shared by usage maps and the allocator.
#pragma once

#include <algorithm>
#include <span>

#include "platform/jet/data_page.h"
#include "platform/jet/page_view.h"
#include "platform/jet/pager.h"
#include "platform/jet/row_pointer.h"
#include "platform/jet/usage_map_format.h"

namespace jet::usage_map {

// A look at a map's row: good until the next call of the pager.
struct MapRow {
  ByteView page;
  data_page::Slot slot;

  bool is_reference() const { return page.U8(slot.start + kFormAt) == kReference; }

  // Inline form: the bits, the page that the first of them stands for, the page behind the last.
  std::size_t bits_at() const { return slot.start + kBitsAt; }
  std::span<const std::byte> bits() const { return page.Slice(bits_at(), slot.length - kBitsAt); }
  PageNumber first() const { return page.U32(slot.start + kFirstPageAt); }
  PageNumber limit() const {
    return first() + static_cast<PageNumber>((slot.length - kBitsAt) * 8);
  }
  bool InWindow(PageNumber number) const { return number >= first() && number < limit(); }

  // Reference form: where the number of a map page stands, and that number, 0 for none.
  std::size_t map_page_at(std::size_t index) const {
    return slot.start + kMapPagesAt + kMapPageSize * index;
  }
  PageNumber map_page(std::size_t index) const { return page.U32(map_page_at(index)); }
};

// kDamaged for a row that is no map.
inline MapRow FindMapRow(const Pager& pager, RowPointer at) {
  const ByteView page = pager.View(at.page);
  if (page.U16(data_page::kTypeAt) != data_page::kType)
    throw Error(ErrorKind::kDamaged, "a usage map that is on no data page", at.page);
  const MapRow row{page, data_page::SlotAt(page, at.row)};
  if (!row.slot.is_row() || row.slot.length < kBitsAt)
    throw Error(ErrorKind::kDamaged, "no usage map where one should be", at.page);
  const std::uint8_t form = page.U8(row.slot.start + kFormAt);
  const bool sound =
      form == kReference ? row.slot.length == kRowSize : form == kInline && row.first() < kMaxPages;
  if (!sound) throw Error(ErrorKind::kDamaged, "a usage map of unknown form", at.page);
  return row;
}

// The bits of a map page: good until the next call of the pager. kDamaged for any other page.
inline std::span<const std::byte> MapPageBits(const Pager& pager, PageNumber number) {
  const ByteView page = pager.View(number);
  if (page.U32(kPageTypeAt) != kPageType)
    throw Error(ErrorKind::kDamaged, "a page that is no usage map page", number);
  return page.Slice(kPageBitsAt, kPageSize - kPageBitsAt);
}

// The same bits, to be changed.
inline std::span<std::byte> MapPageBits(ByteEditor& page) {
  return page.Slice(kPageBitsAt, kPageSize - kPageBitsAt);
}

// Gives a freshly taken page its type.
inline void FormatMapPage(ByteEditor& page) { page.SetU32(kPageTypeAt, kPageType); }

}  // namespace jet::usage_map
