// Layout of usage maps: rows of map pages that hold a set of page numbers, and pages of bits.
// Explained in docs/jet_format.md, "Usage maps".
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/jet/page_view.h"

namespace jet::usage_map {

// A map is a row. Byte offsets from its start; integers are little-endian.
inline constexpr std::size_t kFormAt = 0;       // u8
inline constexpr std::uint8_t kInline = 0;      // the row holds the bits
inline constexpr std::uint8_t kReference = 1;   // the row names map pages that hold them
inline constexpr std::size_t kFirstPageAt = 1;  // inline: u32, page of the first bit, multiple of 8
inline constexpr std::size_t kBitsAt = 5;       // inline: lowest bit of a byte first
inline constexpr std::size_t kMapPagesAt = 1;   // reference: u32 each, 0 for none
inline constexpr std::size_t kMapPageSize = 4;
inline constexpr std::size_t kMapPages = 17;

// A new row, and any row in reference form.
inline constexpr std::size_t kRowSize = kMapPagesAt + kMapPages * kMapPageSize;
static_assert(kRowSize == kBitsAt + 512 / 8, "a new inline row holds 512 pages");

inline constexpr std::size_t kGrowth = 4;          // bytes by which inline rows grow
inline constexpr std::size_t kGlobalRowFloor = 4;  // free bytes left beside the map of free pages

// A map page: its type, then bits.
inline constexpr std::size_t kPageTypeAt = 0;  // u32
inline constexpr std::uint32_t kPageType = 0x00000105;
inline constexpr std::size_t kPageBitsAt = 4;
inline constexpr PageNumber kPagesPerMapPage = (kPageSize - kPageBitsAt) * 8;

// A file holds at most 2 GiB.
inline constexpr PageNumber kMaxPages = 0x80000000U / kPageSize;
static_assert(kMapPages * kPagesPerMapPage >= kMaxPages);

}  // namespace jet::usage_map
