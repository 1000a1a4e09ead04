// Layout of a data page: rows of a table, long values, or usage maps.
// Explained with a worked page in docs/jet_format.md, "Data pages".
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/jet/page_view.h"

namespace jet::data_page {

// Byte offsets from the start of the page. All integers are little-endian.
inline constexpr std::size_t kTypeAt = 0;       // u16
inline constexpr std::size_t kFreeBytesAt = 2;  // u16
inline constexpr std::size_t kOwnerAt = 4;      // u32, definition page of the table; or one below
inline constexpr std::size_t kStampAt = 8;      // u32, first page of a chain of long values; else 0
inline constexpr std::size_t kSlotCountAt = 12;  // u16
inline constexpr std::size_t kSlotsAt = 14;      // one u16 a slot
inline constexpr std::size_t kSlotSize = 2;

inline constexpr std::uint16_t kType = 0x0101;
inline constexpr std::uint16_t kReleasedType = 0x0109;  // emptied and given back
inline constexpr std::uint8_t kReleasedMark = 0x09;     // its first byte
inline constexpr std::uint16_t kNeverWrittenType = 0;

inline constexpr PageNumber kLongValueOwner = 0x4c41564c;  // "LVAL"
inline constexpr PageNumber kMapOwner = 0;

// A slot is the offset of its row plus these flags. Stored in files: never renumber.
inline constexpr std::uint16_t kOffsetMask = 0x1fff;
inline constexpr std::uint16_t kUnusedFlag = 0x2000;  // never set
inline constexpr std::uint16_t kPointerFlag =
    0x4000;                                           // the row lies elsewhere, here is its address
inline constexpr std::uint16_t kHiddenFlag = 0x8000;  // reached only through such an address
inline constexpr std::uint16_t kDeletedFlags = kPointerFlag | kHiddenFlag;
inline constexpr std::uint16_t kFlagsMask = kUnusedFlag | kDeletedFlags;
static_assert(kPageSize <= kOffsetMask, "an offset may be the page's end");

inline constexpr unsigned kMaxSlots = 255;      // a row number is one byte
inline constexpr std::size_t kPointerSize = 4;  // a u32 row pointer
inline constexpr std::size_t kMaxFreeBytes = kPageSize - kSlotsAt;

}  // namespace jet::data_page
