// Layout of page 0, shared by the parts that read and make it.
// Explained in docs/jet_format.md, "Page 0".
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/jet/page_view.h"

// Byte offsets from the start of the page. All integers are little-endian.
namespace jet::database_header_format {

inline constexpr std::array kMagic = {std::byte{0}, std::byte{1}, std::byte{0}, std::byte{0}};
inline constexpr std::size_t kEngineNameAt = 4;  // with its closing 00
inline constexpr std::string_view kEngineName{"Standard Jet DB\0", 16};
inline constexpr std::size_t kVersionAt = 0x14;  // u32
inline constexpr std::uint32_t kVersion = 1;     // 0 is the format before, others came later

// The fields of this range are XORed with the RC4 stream of one key for all files.
inline constexpr std::size_t kMaskedAt = 0x18;
inline constexpr std::size_t kMaskedSize = 128;
inline constexpr std::array kMaskKey = {std::byte{0xc7}, std::byte{0xda}, std::byte{0x39},
                                        std::byte{0x6b}};
inline constexpr std::size_t kFreePagesMapAt = 0x18;      // row pointer
inline constexpr std::size_t kReleasedPagesMapAt = 0x1c;  // row pointer
inline constexpr std::size_t kSystemTablesAt = 0x20;      // u32 a table
inline constexpr std::array<std::uint32_t, 4> kSystemTables = {2, 3, 4, 5};
inline constexpr std::size_t kCodePageAt = 0x3c;  // u16
inline constexpr std::size_t kPageKeyAt = 0x3e;   // u32, 0 when pages are not encoded
inline constexpr std::size_t kPasswordAt = 0x42;
inline constexpr std::size_t kPasswordUnits = 20;  // UTF-16, padded with zeros
inline constexpr std::size_t kPasswordSize = 2 * kPasswordUnits;
inline constexpr std::size_t kBuildAt = 0x6a;             // u32
inline constexpr std::uint32_t kBuild = 9756;             // what a file made here says
inline constexpr std::size_t kLanguageAt = 0x6e;          // u16
inline constexpr std::size_t kSortAt = 0x70;              // u8
inline constexpr std::size_t kCollationVersionAt = 0x71;  // u8
inline constexpr std::size_t kCreationDateAt = 0x72;      // double, days since 1899-12-30
static_assert(kPasswordAt + kPasswordSize == kBuildAt);

// The key of the security ids is drawn from every second byte from the password on.
inline constexpr std::size_t kSecurityKeySteps = 40;
inline constexpr unsigned kSecurityKeyShifts = 24;
static_assert(kPasswordAt + 2 * kSecurityKeySteps <= kMaskedAt + kMaskedSize);

// Plain again.
inline constexpr std::size_t kConstantAt = 0x98;  // u32
inline constexpr std::uint32_t kConstant = 1620;
inline constexpr std::size_t kFormatNameAt = 0x9c;
inline constexpr std::string_view kFormatName{"4.0"};
static_assert(kMaskedAt + kMaskedSize == kConstantAt);

// One u16 a user; word 0 is the exclusive user's. Others than these count finished writes.
inline constexpr std::size_t kCommitWordsAt = 0xe00;
inline constexpr std::size_t kCommitWords = 256;
inline constexpr std::uint16_t kCommitIdle = 0x0100;
inline constexpr std::uint16_t kCommitWriting = 0x0000;
inline constexpr std::uint16_t kCommitMetDamage = 0x0001;
static_assert(kCommitWordsAt + 2 * kCommitWords == kPageSize);

}  // namespace jet::database_header_format
