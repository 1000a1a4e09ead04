// What each character contributes to a text key under the general legacy order.
#pragma once

#include <array>
#include <cstdint>

namespace jet {

struct CharacterWeight {
  enum class Kind : std::uint8_t {
    kUnknown,     // this engine has no weight for it
    kNoEffect,    //
    kHidden,      // `first` is its code
    kOneByte,     // `first`
    kTwoBytes,    // one weight: `first`, `second`
    kTwoWeights,  // two weights of one byte: `first`, `second`
  };
  Kind kind = Kind::kUnknown;
  std::uint8_t first = 0;
  std::uint8_t second = 0;
  std::uint8_t accent = 0;  // of the weight; 0 none
};

// Weights by character, in pages of 256 characters; those without any entry share one page.
class WeightTable {
 public:
  constexpr const CharacterWeight& operator[](char16_t unit) const {
    return pages_[page_of_[unit >> 8]][unit & 0xff];
  }

 private:
  friend class WeightTableBuilder;
  static constexpr std::size_t kPages = 9;  // empty, surrogates, and seven with characters

  std::array<std::uint8_t, 256> page_of_{};
  std::array<std::array<CharacterWeight, 256>, kPages> pages_{};
};

extern const WeightTable kWeightTable;

}  // namespace jet
