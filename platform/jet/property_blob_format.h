// Layout of a property blob, shared by its reader and writer.
// Explained in docs/jet_format.md, "Property blobs".
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// All integers are little-endian. A blob is its mark and then chunks until its end.
namespace jet::property_blob_format {

inline constexpr std::array kMark = {std::byte{'M'}, std::byte{'R'}, std::byte{'2'}, std::byte{0}};

namespace chunk {
inline constexpr std::size_t kLengthAt = 0;  // u32, this field included
inline constexpr std::size_t kKindAt = 4;    // u16
inline constexpr std::size_t kContentAt = 6;
inline constexpr std::uint16_t kNames = 0x80;       // first of all: each name that the values use
inline constexpr std::uint16_t kObject = 0;         // properties of the object itself
inline constexpr std::uint16_t kColumn = 1;         // properties of a column
inline constexpr std::uint16_t kLastGroupKind = 2;  // seen described only; like a column's
}  // namespace chunk

// Names stand as u16 bytes, then UTF-16LE.
inline constexpr std::size_t kNameTextAt = 2;

// The content of a group's chunk begins so; its name follows, then its values.
namespace group {
inline constexpr std::size_t kHeadSizeAt = 0;  // u32, up to the end of the name
inline constexpr std::size_t kNameAt = 4;
inline constexpr std::size_t kHeadSize = kNameAt + kNameTextAt;  // without the name's text
}  // namespace group

namespace value {
inline constexpr std::size_t kLengthAt = 0;  // u16, all of the value's parts
inline constexpr std::size_t kFlagAt = 2;    // u8
inline constexpr std::uint8_t kPartOfDefinition = 1;
inline constexpr std::size_t kTypeAt = 3;       // u8
inline constexpr std::size_t kNameAt = 4;       // u16, place in the list of names
inline constexpr std::size_t kByteCountAt = 6;  // u16
inline constexpr std::size_t kBytesAt = 8;
}  // namespace value

}  // namespace jet::property_blob_format
