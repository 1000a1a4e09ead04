// Sets of page numbers in rows: window of bits, and reference to map pages.
#include "platform/jet/usage_map.h"

#include <algorithm>

#include "platform/jet/bitmap.h"
#include "platform/jet/map_row.h"

namespace jet {

using usage_map::FindMapRow;
using usage_map::kPagesPerMapPage;
using usage_map::MapPageBits;
using usage_map::MapRow;

UsageMap::UsageMap(Pager& pager, PageAllocator& allocator, RowPointer at, MapKind kind)
    : pager_(pager), allocator_(allocator), at_(at), kind_(kind) {}

bool UsageMap::Contains(PageNumber page) const {
  if (page >= usage_map::kMaxPages) return false;
  const MapRow row = FindMapRow(pager_, at_);
  if (!row.is_reference())
    return row.InWindow(page) && bitmap::Test(row.bits(), page - row.first());
  const PageNumber map_page = row.map_page(page / kPagesPerMapPage);
  return map_page != 0 && bitmap::Test(MapPageBits(pager_, map_page), page % kPagesPerMapPage);
}

void UsageMap::Add(PageNumber page) {
  if (page >= usage_map::kMaxPages)
    throw Error(ErrorKind::kDamaged, "a page number beyond the largest file", page);
  if (Contains(page)) return;
  MakeRoomFor(page);
  const MapRow row = FindMapRow(pager_, at_);
  if (row.is_reference()) {
    AddToMapPage(page);
    return;
  }
  const std::size_t at = row.bits_at();
  const std::size_t size = row.bits().size();
  const PageNumber first = row.first();
  ByteEditor editor = pager_.Edit(at_.page, WriteOrder::kAdditions);
  bitmap::Set(editor.Slice(at, size), page - first);
}

void UsageMap::Remove(PageNumber page) {
  if (!Contains(page)) return;
  const WriteOrder order = kind_ == MapKind::kHint ? WriteOrder::kAdditions : WriteOrder::kChanged;
  const MapRow row = FindMapRow(pager_, at_);
  if (row.is_reference()) {
    ByteEditor editor = pager_.Edit(row.map_page(page / kPagesPerMapPage), order);
    bitmap::Clear(MapPageBits(editor), page % kPagesPerMapPage);
    return;
  }
  const std::size_t at = row.bits_at();
  const std::size_t size = row.bits().size();
  const PageNumber first = row.first();
  ByteEditor editor = pager_.Edit(at_.page, order);
  bitmap::Clear(editor.Slice(at, size), page - first);
}

std::vector<PageNumber> UsageMap::Pages() const {
  std::vector<PageNumber> pages;
  const auto collect = [&pages, this](std::span<const std::byte> bits, PageNumber first) {
    for (auto bit = bitmap::First(bits); bit; bit = bitmap::First(bits, *bit + 1)) {
      const PageNumber page = first + static_cast<PageNumber>(*bit);
      if (page >= usage_map::kMaxPages)
        throw Error(ErrorKind::kDamaged, "a usage map beyond the largest file", at_.page);
      pages.push_back(page);
    }
  };
  const MapRow row = FindMapRow(pager_, at_);
  if (!row.is_reference()) {
    collect(row.bits(), row.first());
    return pages;
  }
  for (std::size_t i = 0; i < usage_map::kMapPages; ++i) {
    const PageNumber map_page = FindMapRow(pager_, at_).map_page(i);
    if (map_page != 0)
      collect(MapPageBits(pager_, map_page), static_cast<PageNumber>(i) * kPagesPerMapPage);
  }
  return pages;
}

std::optional<PageNumber> UsageMap::First() const {
  const MapRow row = FindMapRow(pager_, at_);
  if (!row.is_reference()) {
    const auto bit = bitmap::First(row.bits());
    if (!bit) return std::nullopt;
    return row.first() + static_cast<PageNumber>(*bit);
  }
  for (std::size_t i = 0; i < usage_map::kMapPages; ++i) {
    const PageNumber map_page = FindMapRow(pager_, at_).map_page(i);
    if (map_page == 0) continue;
    if (const auto bit = bitmap::First(MapPageBits(pager_, map_page)))
      return static_cast<PageNumber>(i * kPagesPerMapPage + *bit);
  }
  return std::nullopt;
}

std::optional<PageNumber> UsageMap::Last() const { return LastBelow(usage_map::kMaxPages); }

std::optional<PageNumber> UsageMap::LastBelow(PageNumber limit) const {
  limit = std::min(limit, usage_map::kMaxPages);
  const MapRow row = FindMapRow(pager_, at_);
  if (!row.is_reference()) {
    if (limit <= row.first()) return std::nullopt;
    const auto bit = bitmap::Last(row.bits(), limit - row.first());
    if (!bit) return std::nullopt;
    return row.first() + static_cast<PageNumber>(*bit);
  }
  for (std::size_t i = usage_map::kMapPages; i-- > 0;) {
    const PageNumber first = static_cast<PageNumber>(i) * kPagesPerMapPage;
    if (limit <= first) continue;
    const PageNumber map_page = FindMapRow(pager_, at_).map_page(i);
    if (map_page == 0) continue;
    if (const auto bit = bitmap::Last(MapPageBits(pager_, map_page), limit - first))
      return first + static_cast<PageNumber>(*bit);
  }
  return std::nullopt;
}

void UsageMap::WriteBefore(PageNumber page, PageNumber user) {
  pager_.WriteAfter(user, at_.page);
  const MapRow row = FindMapRow(pager_, at_);
  if (row.is_reference() && row.map_page(page / kPagesPerMapPage) != 0)
    pager_.WriteAfter(user, row.map_page(page / kPagesPerMapPage));
}

void UsageMap::MakeRoomFor(PageNumber page) {
  const MapRow row = FindMapRow(pager_, at_);
  if (row.is_reference() || row.InWindow(page)) return;
  // A window without pages may go anywhere: a small table in a large file needs no map page.
  const bool may_slide = kind_ == MapKind::kHint || !bitmap::First(row.bits());
  const bool made =
      (may_slide && SlideWindow(page)) || (kind_ == MapKind::kOwned && LengthenWindow(page));
  if (!made) ConvertToReference();
}

bool UsageMap::LengthenWindow(PageNumber page) {
  const MapRow row = FindMapRow(pager_, at_);
  if (page < row.first()) return false;
  const std::size_t wanted = usage_map::kBitsAt + (page - row.first()) / 8 + 1;
  const std::size_t steps =
      (wanted - row.slot.length + usage_map::kGrowth - 1) / usage_map::kGrowth;
  if (steps * usage_map::kGrowth > data_page::FreeBytes(row.page)) return false;
  const std::size_t length = row.slot.length + steps * usage_map::kGrowth;
  ByteEditor editor = pager_.Edit(at_.page, WriteOrder::kAdditions);
  data_page::ResizeRow(editor, at_.row, length);
  return true;
}

bool UsageMap::SlideWindow(PageNumber page) {
  static constexpr PageNumber kWindow = (usage_map::kRowSize - usage_map::kBitsAt) * 8;
  const PageNumber new_first = page / kWindow * kWindow;
  const std::vector<PageNumber> kept = Pages();
  const bool all_stay = std::ranges::all_of(kept, [new_first](PageNumber number) {
    return number >= new_first && number < new_first + kWindow;
  });
  if (!all_stay || !ClearRow(usage_map::kInline)) return false;
  const std::size_t start = FindMapRow(pager_, at_).slot.start;
  ByteEditor editor = pager_.Edit(at_.page, WriteOrder::kAdditions);
  editor.SetU32(start + usage_map::kFirstPageAt, new_first);
  const std::span<std::byte> bits = editor.Slice(start + usage_map::kBitsAt, kWindow / 8);
  for (const PageNumber number : kept) bitmap::Set(bits, number - new_first);
  return true;
}

void UsageMap::ConvertToReference() {
  const std::vector<PageNumber> kept = Pages();
  if (!ClearRow(usage_map::kReference))
    throw Error(ErrorKind::kNotSupported, "no room for a usage map in reference form", at_.page);
  for (const PageNumber number : kept) AddToMapPage(number);
}

bool UsageMap::ClearRow(std::uint8_t form) {
  const MapRow row = FindMapRow(pager_, at_);
  if (usage_map::kRowSize > row.slot.length + data_page::FreeBytes(row.page)) return false;
  ByteEditor editor = pager_.Edit(at_.page, WriteOrder::kAdditions);
  data_page::ResizeRow(editor, at_.row, usage_map::kRowSize);
  const std::size_t start = data_page::SlotAt(editor.view(), at_.row).start;
  std::ranges::fill(editor.Slice(start, usage_map::kRowSize), std::byte{0});
  editor.SetU8(start + usage_map::kFormAt, form);
  return true;
}

void UsageMap::AddToMapPage(PageNumber page) {
  const std::size_t index = page / kPagesPerMapPage;
  PageNumber map_page = FindMapRow(pager_, at_).map_page(index);
  if (map_page == 0) {
    map_page = allocator_.Take();
    ByteEditor taken = pager_.Edit(map_page);
    usage_map::FormatMapPage(taken);
    const std::size_t at = FindMapRow(pager_, at_).map_page_at(index);
    pager_.Edit(at_.page, WriteOrder::kAdditions).SetU32(at, map_page);
  }
  MapPageBits(pager_, map_page);
  ByteEditor editor = pager_.Edit(map_page, WriteOrder::kAdditions);
  bitmap::Set(MapPageBits(editor), page % kPagesPerMapPage);
}

}  // namespace jet
