// How memo and OLE values are laid out on pages of their own; shared by reader and writer.
// Explained in docs/jet_format.md, "Long values".
#pragma once

#include <cstddef>
#include <cstdint>

namespace jet::long_value {

// The form follows from the length of a value before compression, in bytes.
inline constexpr std::size_t kMaxInline = 64;
inline constexpr std::size_t kMaxSingle = 3816;

// A row of a chain: the address of the next row, 0 in the last, then data.
inline constexpr std::size_t kNextAt = 0;  // row pointer
inline constexpr std::size_t kDataAt = 4;
inline constexpr std::size_t kMaxChainData = 4072;

// With no more free bytes than this a page leaves the map of pages with room.
inline constexpr std::size_t kFewFreeBytes = 257;

inline constexpr std::size_t kMaxLength = (std::size_t{1} << 30) - 1;

}  // namespace jet::long_value
