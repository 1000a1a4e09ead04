// Bits in bytes on loan, lowest bit of a byte first; searches go by whole words.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

namespace jet::bitmap {

inline std::size_t Size(std::span<const std::byte> bits) { return bits.size() * 8; }

inline bool Test(std::span<const std::byte> bits, std::size_t at) {
  return (bits[at / 8] >> (at % 8) & std::byte{1}) != std::byte{0};
}

inline void Set(std::span<std::byte> bits, std::size_t at) {
  bits[at / 8] |= std::byte{1} << (at % 8);
}

inline void Clear(std::span<std::byte> bits, std::size_t at) {
  bits[at / 8] &= ~(std::byte{1} << (at % 8));
}

// The first set bit at or behind `from`.
inline std::optional<std::size_t> First(std::span<const std::byte> bits, std::size_t from = 0) {
  for (; from < Size(bits) && from % 8 != 0; ++from) {
    if (Test(bits, from)) return from;
  }
  std::size_t byte = from / 8;
  for (std::uint64_t word = 0; byte + sizeof word <= bits.size(); byte += sizeof word) {
    std::memcpy(&word, bits.data() + byte, sizeof word);
    if (word != 0) break;
  }
  for (; byte < bits.size(); ++byte) {
    if (bits[byte] != std::byte{0}) {
      const auto value = std::to_integer<std::uint8_t>(bits[byte]);
      return byte * 8 + static_cast<std::size_t>(std::countr_zero(value));
    }
  }
  return std::nullopt;
}

// The last set bit before `limit`.
inline std::optional<std::size_t> Last(std::span<const std::byte> bits, std::size_t limit) {
  if (limit > Size(bits)) limit = Size(bits);
  for (; limit % 8 != 0; --limit) {
    if (Test(bits, limit - 1)) return limit - 1;
  }
  std::size_t byte = limit / 8;
  for (std::uint64_t word = 0; byte >= sizeof word; byte -= sizeof word) {
    std::memcpy(&word, bits.data() + byte - sizeof word, sizeof word);
    if (word != 0) break;
  }
  for (; byte > 0; --byte) {
    if (bits[byte - 1] != std::byte{0}) {
      const auto value = std::to_integer<std::uint8_t>(bits[byte - 1]);
      return byte * 8 - 1 - static_cast<std::size_t>(std::countl_zero(value));
    }
  }
  return std::nullopt;
}

}  // namespace jet::bitmap
