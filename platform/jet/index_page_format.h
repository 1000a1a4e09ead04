// Layout of an index page, shared by its reader, its writer and the tree over it.
// Explained with a worked leaf in docs/jet_format.md, "Index pages".
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/jet/page_view.h"

// Byte offsets from the start of the page. Integers are little-endian, except inside entries.
namespace jet::index_page_format {

inline constexpr std::size_t kTypeAt = 0;  // u16
inline constexpr std::uint16_t kNode = 0x0103;
inline constexpr std::uint16_t kLeaf = 0x0104;
inline constexpr std::size_t kFreeAt = 2;       // u16, bytes behind the entries
inline constexpr std::size_t kOwnerAt = 4;      // u32, the table's definition page
inline constexpr std::size_t kZeroAt = 8;       // u32, always 0
inline constexpr std::size_t kPreviousAt = 12;  // u32, page of the same level, 0 none
inline constexpr std::size_t kNextAt = 16;      // u32
inline constexpr std::size_t kTailAt = 20;      // u32, a node's last child; 0 on a leaf
inline constexpr std::size_t kPrefixAt = 24;    // u16, bytes that all entries but the first omit
inline constexpr std::size_t kLevelAt = 26;  // u8, 0 on a leaf; other writers put 0 on nodes, too
inline constexpr std::size_t kMaskAt = 27;   // a set bit b: an entry ends at kEntriesAt + b
inline constexpr std::size_t kMaskSize = 453;
inline constexpr std::size_t kEntriesAt = kMaskAt + kMaskSize;
inline constexpr std::size_t kEntriesSize = kPageSize - kEntriesAt;
static_assert(8 * kMaskSize > kEntriesSize, "every end of an entry needs its bit");

// An entry: key, row address, and on nodes the child page. Addresses and pages are big-endian.
inline constexpr std::size_t kRowPageSize = 3;
inline constexpr std::size_t kRowSize = kRowPageSize + 1;
inline constexpr std::size_t kChildSize = 4;

inline constexpr std::size_t kMaxKeySize = 510;  // what a writer may put into an entry

// Far more levels than a file of the largest size needs.
inline constexpr std::size_t kMaxDepth = 16;

}  // namespace jet::index_page_format
