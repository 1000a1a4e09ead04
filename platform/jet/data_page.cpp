// Slots and rows of one data page.
#include "platform/jet/data_page.h"

#include <algorithm>
#include <cstring>

namespace jet::data_page {
namespace {

std::size_t SlotOffsetAt(unsigned row) { return kSlotsAt + kSlotSize * row; }

[[noreturn]] void ThrowDamaged(const char* detail, PageNumber page) {
  throw Error(ErrorKind::kDamaged, detail, page);
}

// Where the lowest row begins. Looks at all slots, and at the stored number of free bytes.
std::size_t CheckedLowest(ByteView page) {
  const unsigned count = SlotCount(page);
  std::size_t lowest = kPageSize;
  for (unsigned row = 0; row < count; ++row) {
    const std::uint16_t slot = page.U16(SlotOffsetAt(row));
    const std::size_t start = slot & kOffsetMask;
    if (start > lowest || (slot & kUnusedFlag) != 0)
      ThrowDamaged("slots out of order", page.number());
    lowest = start;
  }
  const std::size_t slots_end = SlotOffsetAt(count);
  if (lowest < slots_end) ThrowDamaged("a row over the slots", page.number());
  if (page.U16(kFreeBytesAt) != lowest - slots_end)
    ThrowDamaged("wrong number of free bytes", page.number());
  return lowest;
}

}  // namespace

bool IsDataPage(ByteView page) {
  const std::uint16_t type = page.U16(kTypeAt);
  return type == kType || type == kReleasedType;
}

bool IsOwnedBy(ByteView page, PageNumber owner) {
  return IsDataPage(page) && page.U32(kOwnerAt) == owner;
}

unsigned SlotCount(ByteView page) {
  const unsigned count = page.U16(kSlotCountAt);
  if (count > kMaxSlots) ThrowDamaged("too many slots", page.number());
  return count;
}

Slot SlotAt(ByteView page, unsigned row) {
  const unsigned count = SlotCount(page);
  if (row >= count) return {kPageSize, 0, kDeletedFlags};
  const std::uint16_t stored = page.U16(SlotOffsetAt(row));
  const std::size_t start = stored & kOffsetMask;
  const std::size_t end = row == 0 ? kPageSize : page.U16(SlotOffsetAt(row - 1)) & kOffsetMask;
  if (start < SlotOffsetAt(count) || start > end || end > kPageSize)
    ThrowDamaged("a row outside its page", page.number());
  return {start, end - start, static_cast<std::uint16_t>(stored & kFlagsMask)};
}

std::span<const std::byte> RowBytes(ByteView page, const Slot& slot) {
  return page.Slice(slot.start, slot.length);
}

RowPointer PointerAt(ByteView page, const Slot& slot) {
  if (slot.length < kPointerSize) ThrowDamaged("a row pointer cut short", page.number());
  return RowPointer::FromStored(page.U32(slot.start));
}

std::size_t FreeBytes(ByteView page) {
  CheckedLowest(page);
  return page.U16(kFreeBytesAt);
}

bool HasRoomFor(ByteView page, std::size_t length) {
  return SlotCount(page) < kMaxSlots && length + kSlotSize <= FreeBytes(page);
}

unsigned RowCount(ByteView page) {
  const unsigned slots = SlotCount(page);
  unsigned rows = 0;
  for (unsigned row = 0; row < slots; ++row)
    rows += (page.U16(SlotOffsetAt(row)) & kDeletedFlags) != kDeletedFlags ? 1 : 0;
  return rows;
}

void Format(ByteEditor& page, PageNumber owner) {
  page.SetU16(kTypeAt, kType);
  page.SetU16(kFreeBytesAt, static_cast<std::uint16_t>(kMaxFreeBytes));
  page.SetU32(kOwnerAt, owner);
}

std::uint8_t AddRow(ByteEditor& page, std::span<const std::byte> row, std::uint16_t flags) {
  const std::size_t lowest = CheckedLowest(page.view());
  const unsigned count = SlotCount(page.view());
  const std::size_t free = page.view().U16(kFreeBytesAt);
  if (count >= kMaxSlots || row.size() + kSlotSize > free)
    ThrowDamaged("no room for a row", page.number());
  const std::size_t start = lowest - row.size();
  std::ranges::copy(row, page.Slice(start, row.size()).begin());
  page.SetU16(SlotOffsetAt(count), static_cast<std::uint16_t>(start | flags));
  page.SetU16(kSlotCountAt, static_cast<std::uint16_t>(count + 1));
  page.SetU16(kFreeBytesAt, static_cast<std::uint16_t>(free - row.size() - kSlotSize));
  return static_cast<std::uint8_t>(count);
}

void ResizeRow(ByteEditor& page, unsigned row_number, std::size_t length) {
  const std::size_t lowest = CheckedLowest(page.view());
  const unsigned count = SlotCount(page.view());
  if (row_number >= count) ThrowDamaged("no such row", page.number());
  const Slot slot = SlotAt(page.view(), row_number);
  const std::size_t free = page.view().U16(kFreeBytesAt);
  if (length > slot.length + free) ThrowDamaged("no room for a row", page.number());
  if (length == slot.length) return;

  // The rows below move as one block, together with what stays of the row itself.
  const std::size_t kept = std::min(length, slot.length);
  const std::size_t new_lowest = lowest + slot.length - length;
  const std::size_t block = slot.start + kept - lowest;
  std::byte* const bytes = page.Slice(0, kPageSize).data();
  std::memmove(bytes + new_lowest, bytes + lowest, block);
  if (length > slot.length) {
    std::memset(bytes + new_lowest + block, 0, length - slot.length);
  } else {
    std::memset(bytes + lowest, 0, slot.length - length);
  }
  for (unsigned row = row_number; row < count; ++row) {
    const std::uint16_t stored = page.view().U16(SlotOffsetAt(row));
    const std::size_t start = (stored & kOffsetMask) + slot.length - length;
    page.SetU16(SlotOffsetAt(row), static_cast<std::uint16_t>((stored & kFlagsMask) | start));
  }
  page.SetU16(kFreeBytesAt, static_cast<std::uint16_t>(free + slot.length - length));
}

void ReplaceRow(ByteEditor& page, unsigned row_number, std::span<const std::byte> row,
                std::uint16_t flags) {
  ResizeRow(page, row_number, row.size());
  const std::size_t start = SlotAt(page.view(), row_number).start;
  std::ranges::copy(row, page.Slice(start, row.size()).begin());
  page.SetU16(SlotOffsetAt(row_number), static_cast<std::uint16_t>(start | flags));
}

void RemoveRow(ByteEditor& page, unsigned row_number) {
  ResizeRow(page, row_number, 0);
  const std::size_t start = SlotAt(page.view(), row_number).start;
  page.SetU16(SlotOffsetAt(row_number), static_cast<std::uint16_t>(start | kDeletedFlags));
}

}  // namespace jet::data_page
