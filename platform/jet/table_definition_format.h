// Layout of a table definition, shared by the parts that read, write and patch it.
// Explained in docs/jet_format.md, "Table definitions".
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/jet/page_view.h"

// All integers are little-endian. A definition runs over a chain of pages: the first page whole,
// then what follows the page header of each further page. Offsets count in that joined run.
namespace jet::table_definition_format {

// Every page of the chain begins so.
inline constexpr std::size_t kPageTypeAt = 0;  // u16
inline constexpr std::uint16_t kPageType = 0x0102;
inline constexpr std::size_t kFreeSpaceAt = 2;  // u16
inline constexpr std::size_t kNextPageAt = 4;   // u32, 0 on the last page
inline constexpr std::size_t kPageHeaderSize = 8;

// Bytes that count as used behind the closing mark: they decide how many pages the chain has.
inline constexpr std::size_t kReserve = 8;

inline constexpr std::size_t kLengthAt = 0x08;    // u32, from offset 0 to the closing mark's end
inline constexpr std::size_t kConstantAt = 0x0c;  // u32
inline constexpr std::uint32_t kConstant = 1625;  // also in columns and logical indexes
inline constexpr std::size_t kRowCountAt = 0x10;  // u32
inline constexpr std::size_t kLastAutonumberAt = 0x14;       // i32
inline constexpr std::size_t kAutonumberIncrementAt = 0x18;  // i32
inline constexpr std::size_t kKindAt = 0x28;                 // u8
inline constexpr std::uint8_t kUserTable = 'N';
inline constexpr std::uint8_t kSystemTable = 'S';
inline constexpr std::size_t kNextColumnNumberAt = 0x29;    // u16
inline constexpr std::size_t kVariableSlotsAt = 0x2b;       // u16
inline constexpr std::size_t kColumnCountAt = 0x2d;         // u16
inline constexpr std::size_t kLogicalIndexCountAt = 0x2f;   // u32
inline constexpr std::size_t kPhysicalIndexCountAt = 0x33;  // u32
inline constexpr std::size_t kOwnedPagesMapAt = 0x37;       // row pointer
inline constexpr std::size_t kPagesWithRoomMapAt = 0x3b;    // row pointer
inline constexpr std::size_t kCountersAt = 0x3f;            // behind the header

// The parts behind the header, without gaps: counters, columns, column names, physical indexes,
// logical indexes, their names, long-value maps, closing mark.
inline constexpr std::uint16_t kClosingMark = 0xffff;

// A name: u16 bytes, then UTF-16LE.
inline constexpr std::size_t kNameTextAt = 2;

namespace counter {                            // one a physical index
inline constexpr std::size_t kEntriesAt = 0;   // u32
inline constexpr std::size_t kDistinctAt = 4;  // u32
inline constexpr std::size_t kUnknownAt8 = 8;  // u32
inline constexpr std::size_t kSize = kUnknownAt8 + 4;
}  // namespace counter

namespace column {
inline constexpr std::size_t kTypeAt = 0;               // u8
inline constexpr std::size_t kConstantAt = 1;           // u32
inline constexpr std::size_t kNumberAt = 5;             // u16
inline constexpr std::size_t kSlotAt = 7;               // u16
inline constexpr std::size_t kPositionAt = 9;           // u16
inline constexpr std::size_t kPrecisionAt = 11;         // u8, numeric
inline constexpr std::size_t kScaleAt = 12;             // u8, numeric
inline constexpr std::size_t kLanguageAt = 11;          // u16, all others
inline constexpr std::size_t kSortAt = 13;              // u8
inline constexpr std::size_t kCollationVersionAt = 14;  // u8
inline constexpr std::size_t kFlagsAt = 15;             // u8
inline constexpr std::size_t kExtraFlagsAt = 16;        // u8
inline constexpr std::size_t kUnknownAt17 = 17;         // u32
inline constexpr std::size_t kFixedOffsetAt = 21;       // u16
inline constexpr std::size_t kLengthAt = 23;            // u16, bytes
inline constexpr std::size_t kSize = kLengthAt + 2;
}  // namespace column

namespace physical_index {
inline constexpr std::size_t kConstantAt = 0;  // u32
inline constexpr std::uint32_t kConstant = 1923;
inline constexpr std::size_t kColumnsAt = 4;  // as many places as an index may have columns
inline constexpr std::size_t kColumns = 10;
inline constexpr std::size_t kColumnNumberAt = 0;  // u16 in a place
inline constexpr std::uint16_t kNoColumn = 0xffff;
inline constexpr std::size_t kDirectionAt = 2;  // u8 in a place: 1 ascending, 0 descending
inline constexpr std::size_t kColumnSize = 3;
inline constexpr std::size_t kPagesMapAt = 34;  // row pointer
static_assert(kColumnsAt + kColumns * kColumnSize == kPagesMapAt);
inline constexpr std::size_t kRootAt = 38;       // u32
inline constexpr std::size_t kUnknownAt42 = 42;  // u32
inline constexpr std::size_t kFlagsAt = 46;      // u8
inline constexpr std::size_t kUnknownAt47 = 47;
inline constexpr std::size_t kSize = kUnknownAt47 + 5;
}  // namespace physical_index

namespace logical_index {
inline constexpr std::size_t kConstantAt = 0;      // u32
inline constexpr std::size_t kNumberAt = 4;        // u32
inline constexpr std::size_t kPhysicalAt = 8;      // u32
inline constexpr std::size_t kSideAt = 12;         // u8
inline constexpr std::size_t kOtherNumberAt = 13;  // u32
inline constexpr std::size_t kOtherTableAt = 17;   // u32
inline constexpr std::size_t kOnUpdateAt = 21;     // u8
inline constexpr std::size_t kOnDeleteAt = 22;     // u8
inline constexpr std::size_t kKindAt = 23;         // u8
inline constexpr std::size_t kUnknownAt24 = 24;    // u32
inline constexpr std::size_t kSize = kUnknownAt24 + 4;
}  // namespace logical_index

namespace long_value_maps {
inline constexpr std::size_t kColumnAt = 0;    // u16
inline constexpr std::size_t kOwnedAt = 2;     // row pointer
inline constexpr std::size_t kWithRoomAt = 6;  // row pointer
inline constexpr std::size_t kSize = kWithRoomAt + 4;
}  // namespace long_value_maps

// What a table may have. The engine that made the format refuses tables or files beyond them.
inline constexpr std::size_t kMaxColumnNumbers = 255;  // dropped columns included
inline constexpr std::size_t kMaxLogicalIndexes = 32;  // incoming relationships included
inline constexpr std::size_t kMaxTextBytes = 510;
inline constexpr std::uint8_t kMaxPrecision = 28;

}  // namespace jet::table_definition_format
