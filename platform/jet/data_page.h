// Operations on the bytes of one data page: its slots, the rows behind them, its free bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/jet/data_page_format.h"
#include "platform/jet/page_view.h"
#include "platform/jet/row_pointer.h"

namespace jet::data_page {

// Rows fill the page from its end, in the order of their slots; a deleted slot keeps its place with
// a row of no bytes, so slot numbers stay. All functions throw kDamaged for a page whose slots
// contradict that; those that change a page look at all slots first and leave it as it was then.

struct Slot {
  std::size_t start = 0;
  std::size_t length = 0;
  std::uint16_t flags = 0;  // of kFlagsMask

  bool is_row() const { return flags == 0; }
  bool is_pointer() const { return flags == kPointerFlag; }
  bool is_hidden() const { return flags == kHiddenFlag; }
  bool is_deleted() const { return (flags & kDeletedFlags) == kDeletedFlags; }
};

// Whether the page is a data page, emptied ones included.
bool IsDataPage(ByteView page);
// Whether it is one of this owner's.
bool IsOwnedBy(ByteView page, PageNumber owner);

unsigned SlotCount(ByteView page);
// The slot; one without row (deleted) for a number that the page does not have.
Slot SlotAt(ByteView page, unsigned row);
std::span<const std::byte> RowBytes(ByteView page, const Slot& slot);
// The address that a pointer slot holds.
RowPointer PointerAt(ByteView page, const Slot& slot);

// The free bytes, after a look at all slots.
std::size_t FreeBytes(ByteView page);
// Whether a new row of this length finds bytes and a slot.
bool HasRoomFor(ByteView page, std::size_t length);
// Slots that are not deleted, hidden rows included.
unsigned RowCount(ByteView page);

// Makes a zero-filled page an empty data page.
void Format(ByteEditor& page, PageNumber owner);

// Adds a row in a new slot; returns its number. REQUIRES HasRoomFor its length.
std::uint8_t AddRow(ByteEditor& page, std::span<const std::byte> row, std::uint16_t flags = 0);
// Puts other bytes and flags into a slot. REQUIRES room for the difference; `row` lies elsewhere.
void ReplaceRow(ByteEditor& page, unsigned row_number, std::span<const std::byte> row,
                std::uint16_t flags);
// Lengthens a row with zero bytes, or cuts it. REQUIRES room for the difference.
void ResizeRow(ByteEditor& page, unsigned row_number, std::size_t length);
// Deletes a row: its slot stays, without bytes.
void RemoveRow(ByteEditor& page, unsigned row_number);

}  // namespace jet::data_page
