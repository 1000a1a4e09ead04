// What the bytes of an index key mean, shared by the parts that make keys.
// Explained in docs/jet_format.md, "Keys".
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace jet::key_format {

// Each column of a key begins with a flag. Descending parts are ascending ones inverted.
inline constexpr std::uint8_t kNull = 0x00;
inline constexpr std::uint8_t kNotNull = 0x7f;
inline constexpr std::uint8_t kInvert = 0xff;
inline constexpr std::uint8_t kTrue = 0x00;
inline constexpr std::uint8_t kFalse = 0xff;
inline constexpr std::uint8_t kPositiveNumeric = 0xff;

// Binary values and GUIDs: groups that each end with kGroupFollows or the last group's length.
inline constexpr std::size_t kGroupSize = 8;
inline constexpr std::uint8_t kGroupFollows = 0x09;  // never inverted

// Text: weights, 01, accents, perhaps the hidden characters, 00.
inline constexpr std::size_t kSignificantUnits = 255;
inline constexpr std::uint8_t kWeightsEnd = 0x01;
inline constexpr std::uint8_t kNoAccent = 0x02;
inline constexpr std::uint8_t kTextEnd = 0x00;  // a descending text has one more, not inverted

// A hidden character: its position (big-endian), a mark, its code.
inline constexpr std::array<std::uint8_t, 3> kHiddenBegin = {0x01, 0x01, 0x01};
inline constexpr std::size_t kHiddenPositionBase = 0x8000 + 7;
inline constexpr std::size_t kHiddenPositionStep = 4;  // a weight before the character
inline constexpr std::uint8_t kHiddenMark = 0x06;
inline constexpr std::size_t kHiddenSize = 2 + 1 + 1;  // position, mark, code

// A longer key keeps its first bytes and ends with a checksum of the others, big-endian.
inline constexpr std::size_t kMaxKeySize = 510;
inline constexpr std::size_t kKeptSize = 508;
static_assert(kKeptSize + 2 == kMaxKeySize);
// The checksum's table at 1, 2, 4 ... 128; the others follow by XOR.
inline constexpr std::array<std::uint16_t, 8> kChecksumSteps = {0x0580, 0x0f80, 0x1b80, 0x3380,
                                                                0x6380, 0xc380, 0x8381, 0x0383};

}  // namespace jet::key_format
