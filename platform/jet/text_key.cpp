// Builds text keys: weights, then accents, then the places of hidden characters.
#include "platform/jet/text_key.h"

#include <algorithm>
#include <array>

#include "platform/jet/key_format.h"
#include "platform/jet/key_weights.h"

namespace jet {
namespace format = key_format;
namespace {

using Kind = CharacterWeight::Kind;

// In the modern Spanish order n tilde is a letter between n and o.
constexpr CharacterWeight kSpanishLetter = {.kind = Kind::kTwoBytes, .first = 0x63, .second = 0x04};

const CharacterWeight& WeightOf(char16_t unit, KeyOrder order) {
  constexpr char16_t kCapital = 0xd1;
  constexpr char16_t kSmall = 0xf1;
  if (order == KeyOrder::kSpanishModern && (unit == kCapital || unit == kSmall))
    return kSpanishLetter;
  return kWeightTable[unit];
}

// A row of bytes with room for all that a text can need, so that building it costs no allocation.
template <std::size_t kCapacity>
class ByteRow {
 public:
  void Add(std::uint8_t byte) { bytes_[size_++] = std::byte{byte}; }
  std::size_t size() const { return size_; }
  std::byte operator[](std::size_t at) const { return bytes_[at]; }
  void AppendTo(Bytes& key) const { key.insert(key.end(), bytes_.data(), bytes_.data() + size_); }

 private:
  std::array<std::byte, kCapacity> bytes_;
  std::size_t size_ = 0;
};

constexpr std::size_t kMaxWeights = 2 * format::kSignificantUnits;

// The accent bytes of a text's weights, up to the last weight that has one.
class Accents {
 public:
  // Tells of one more weight and its accent, 0 for none.
  void Add(std::uint8_t accent) {
    if (accent != 0) {
      if (bytes_.size() == 0) first_ = count_;
      while (bytes_.size() < count_) bytes_.Add(format::kNoAccent);
      bytes_.Add(accent);
    }
    ++count_;
  }

  std::size_t weight_count() const { return count_; }

  void AppendTo(Bytes& key, KeyOrder order) const {
    if (order != KeyOrder::kFrench) return bytes_.AppendTo(key);
    // From the last weight of the text to the first one with an accent.
    if (bytes_.size() == 0) return;
    key.insert(key.end(), count_ - bytes_.size(), std::byte{format::kNoAccent});
    for (std::size_t i = bytes_.size(); i > first_; --i) key.push_back(bytes_[i - 1]);
  }

 private:
  ByteRow<kMaxWeights> bytes_;
  std::size_t count_ = 0;
  std::size_t first_ = 0;
};

// Characters without weight, told by their place only.
class HiddenCharacters {
 public:
  void Add(std::size_t weights_before, std::uint8_t code) {
    const std::size_t position =
        format::kHiddenPositionBase + format::kHiddenPositionStep * weights_before;
    bytes_.Add(static_cast<std::uint8_t>(position >> 8));
    bytes_.Add(static_cast<std::uint8_t>(position & 0xff));
    bytes_.Add(format::kHiddenMark);
    bytes_.Add(code);
  }

  void AppendTo(Bytes& key) const {
    if (bytes_.size() == 0) return;
    for (const std::uint8_t byte : format::kHiddenBegin) key.push_back(std::byte{byte});
    bytes_.AppendTo(key);
  }

 private:
  ByteRow<format::kHiddenSize * format::kSignificantUnits> bytes_;
};

}  // namespace

std::u16string_view SignificantText(std::u16string_view text) {
  text = text.substr(0, format::kSignificantUnits);
  return text.substr(0, text.find_last_not_of(u' ') + 1);
}

bool HasWeights(std::u16string_view text) {
  return std::ranges::none_of(
      text, [](char16_t unit) { return kWeightTable[unit].kind == Kind::kUnknown; });
}

bool AppendTextKey(Bytes& key, KeyOrder order, std::u16string_view text) {
  ByteRow<kMaxWeights + 1> weights;
  Accents accents;
  HiddenCharacters hidden;
  for (const char16_t unit : SignificantText(text)) {
    const CharacterWeight& weight = WeightOf(unit, order);
    switch (weight.kind) {
      case Kind::kUnknown:
        return false;
      case Kind::kNoEffect:
        break;
      case Kind::kHidden:
        hidden.Add(accents.weight_count(), weight.first);
        break;
      case Kind::kOneByte:
        weights.Add(weight.first);
        accents.Add(weight.accent);
        break;
      case Kind::kTwoBytes:
        weights.Add(weight.first);
        weights.Add(weight.second);
        accents.Add(weight.accent);
        break;
      case Kind::kTwoWeights:
        weights.Add(weight.first);
        weights.Add(weight.second);
        accents.Add(0);
        accents.Add(0);
        break;
    }
  }
  weights.Add(format::kWeightsEnd);
  weights.AppendTo(key);
  accents.AppendTo(key, order);
  hidden.AppendTo(key);
  key.push_back(std::byte{format::kTextEnd});
  return true;
}

}  // namespace jet
