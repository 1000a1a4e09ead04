// Layout of an undo journal, shared by the parts that write and read it.
// Explained in docs/recovery.md, "The undo journal".
#pragma once

#include <cstddef>
#include <cstdint>

// Byte offsets from the start of the file. All integers are little-endian.
namespace jet::undo_journal_format {

inline constexpr std::size_t kMagicAt = 0;                          // u64
inline constexpr std::uint64_t kMagic = 0x32'4f'44'4e'55'50'41'50;  // "PAPUNDO2"
inline constexpr std::size_t kFingerprintAt = 8;                    // u64, of all that follows it
inline constexpr std::size_t kFingerprintedAt = 16;
inline constexpr std::size_t kPageZeroAt = 16;    // u64, fingerprint of page 0
inline constexpr std::size_t kPageCountAt = 24;   // u32, of the database before the commit
inline constexpr std::size_t kEntryCountAt = 28;  // u32
inline constexpr std::size_t kImageCountAt = 32;  // u32
inline constexpr std::size_t kHeaderSize = 36;

// Entries follow the header, one for each write of the commit in order; then the old pages.
namespace entry {
inline constexpr std::size_t kAfterAt = 0;      // u64, fingerprint of the page as it is written
inline constexpr std::size_t kNumberAt = 8;     // u32, of the page
inline constexpr std::size_t kHasImageAt = 12;  // u32, 1: its old bytes are the next of the images
inline constexpr std::size_t kSize = 16;
}  // namespace entry

}  // namespace jet::undo_journal_format
