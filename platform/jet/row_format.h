// Layout of a stored row and of the values in it, shared by the reader and the builder of rows.
// Explained with a worked row in docs/jet_format.md, "Rows".
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// All integers are little-endian. Offsets count from the row's first byte.
namespace jet::row_format {

inline constexpr std::size_t kMaxRowSize = 4060;

// column count | fixed area | variable values | end of data | slot offsets, last slot first |
// slot count | null mask. The parts behind the values are found from the row's end; a table that
// never had a variable column has neither values, end of data, offsets nor slot count.
inline constexpr std::size_t kColumnCountAt = 0;  // u16, highest column number + 1
inline constexpr std::size_t kFixedAreaAt = 2;
inline constexpr std::size_t kOffsetSize = 2;  // end of data and each slot's offset
inline constexpr std::size_t kSlotCountSize = 2;
inline constexpr std::size_t kLeastFixedArea = 2;  // without variable columns: room for a pointer

// One bit a column number, lowest first; set: the column has a value.
constexpr std::size_t NullMaskSize(std::size_t column_count) { return (column_count + 7) / 8; }

// Numeric: sign, then |value| * 10^scale as four u32, most significant first.
inline constexpr std::size_t kNumericSignAt = 0;
inline constexpr std::uint8_t kNumericNegative = 0x80;
inline constexpr std::size_t kNumericMagnitudeAt = 1;
inline constexpr std::size_t kNumericWords = 4;
inline constexpr std::size_t kNumericSize = kNumericMagnitudeAt + 4 * kNumericWords;

// Compressed text begins with this mark; a byte 00 switches between one and two bytes a unit.
inline constexpr std::array kCompressedMark = {std::byte{0xff}, std::byte{0xfe}};
inline constexpr std::byte kCompressionSwitch{0};

// The field of a memo or OLE column, followed by the value when that is inline.
inline constexpr std::size_t kLongLengthAt = 0;  // u32, the form in the upper bits
inline constexpr std::uint32_t kLongLengthMask = 0x3fffffff;
inline constexpr unsigned kLongFormShift = 30;
inline constexpr std::size_t kLongPointerAt = 4;  // row pointer
inline constexpr std::size_t kLongStampAt = 8;    // u32
inline constexpr std::size_t kLongFieldSize = kLongStampAt + 4;

}  // namespace jet::row_format
