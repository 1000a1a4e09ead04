// The table of character weights, built at compile time from texts a person can check.
//
// Measured: code page 1252 without its control characters, U+0100 to U+017F, and the hidden
// characters listed. The weights of control characters come from a published table only.
#include "platform/jet/key_weights.h"

#include <string_view>

namespace jet {

// Fills the table from runs of consecutive characters. A character is written as the bytes of its
// weight in hex, "/" and an accent where it has one; "+" stands between two weights; "h" and a code
// mark a hidden character. A malformed run does not compile.
class WeightTableBuilder {
 public:
  constexpr WeightTableBuilder& Run(char16_t first, std::string_view codes) {
    char16_t unit = first;
    while (!codes.empty()) {
      const std::size_t length = codes.find(' ') < codes.size() ? codes.find(' ') : codes.size();
      Entry(unit++) = Parse(codes.substr(0, length));
      codes.remove_prefix(length < codes.size() ? length + 1 : length);
    }
    return *this;
  }

  // Hidden characters with consecutive codes.
  constexpr WeightTableBuilder& HiddenRun(char16_t first, char16_t last, std::uint8_t code) {
    for (char16_t unit = first; unit <= last; ++unit)
      Entry(unit) = {.kind = CharacterWeight::Kind::kHidden, .first = code++};
    return *this;
  }

  // The halves of characters above U+FFFF, and U+0000, have no effect.
  constexpr WeightTableBuilder& NoEffect() {
    constexpr char16_t kFirstSurrogatePage = 0xd8;
    constexpr char16_t kLastSurrogatePage = 0xdf;
    const std::uint8_t page = used_pages_++;
    table_.pages_[page].fill({.kind = CharacterWeight::Kind::kNoEffect});
    for (char16_t high = kFirstSurrogatePage; high <= kLastSurrogatePage; ++high)
      table_.page_of_[high] = page;
    Entry(0) = {.kind = CharacterWeight::Kind::kNoEffect};
    return *this;
  }

  constexpr const WeightTable& table() const { return table_; }

 private:
  constexpr CharacterWeight& Entry(char16_t unit) {
    std::uint8_t& page = table_.page_of_[unit >> 8];
    if (page == 0) page = used_pages_++;
    return table_.pages_[page][unit & 0xff];
  }

  static constexpr std::uint8_t Hex(std::string_view code, std::size_t at) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    return static_cast<std::uint8_t>(kDigits.find(code.at(at)) << 4 |
                                     kDigits.find(code.at(at + 1)));
  }

  static constexpr CharacterWeight Parse(std::string_view code) {
    using Kind = CharacterWeight::Kind;
    if (code.front() == 'h') return {.kind = Kind::kHidden, .first = Hex(code, 1)};
    CharacterWeight weight{.kind = Kind::kOneByte, .first = Hex(code, 0)};
    code.remove_prefix(2);
    if (!code.empty() && code.front() != '/') {
      const bool two_weights = code.front() == '+';
      weight.kind = two_weights ? Kind::kTwoWeights : Kind::kTwoBytes;
      if (two_weights) code.remove_prefix(1);
      weight.second = Hex(code, 0);
      code.remove_prefix(2);
    }
    if (!code.empty()) weight.accent = Hex(code, 1);
    return weight;
  }

  std::uint8_t used_pages_ = 1;  // page 0 knows no character
  WeightTable table_;
};

namespace {

constexpr std::string_view kLetters =
    "4A 4C 4D 4F 51 53 55 57 59 5B 5C 5E 60 62 64 66 68 69 6B 6D 6F 71 73 75 76 78";

constexpr WeightTable BuildWeightTable() {
  WeightTableBuilder builder;
  builder
      // Control characters.
      .HiddenRun(0x01, 0x08, 0x03)
      .Run(0x09, "0803 0804 0805 0806 0807")
      .HiddenRun(0x0e, 0x1f, 0x0b)
      .HiddenRun(0x7f, 0x9f, 0x1d)
      // ASCII. Upper and lower case weigh the same.
      .Run(u' ', "07 09 0A 0C 0E 10 12 h80 14 16 18 2C 1A h82 1C 1E")
      .Run(u'0', "36 38 3A 3C 3E 40 42 44 46 48 20 22 2E 30 32 24 26")
      .Run(u'A', kLetters)
      .Run(u'[', "27 29 2A 2B02 2B03 2B07")
      .Run(u'a', kLetters)
      .Run(u'{', "2B09 2B0B 2B0D 2B0F")
      // U+00A0: signs, then accented capitals, then their small letters.
      .Run(0xa0, "0802 2B10 34A6 34A7 34A8 34A9 2B11 34AA 2B12 34AB 4A/03 3305 34AC h83 34AD 2B13")
      .Run(0xb0, "34AE 3304 3A 3C 2B14 34AF 34B0 34B1 2B15 38 64/03 3307 3712 3716 371A 2B16")
      .Run(0xc0, "4A/0F 4A/0E 4A/12 4A/19 4A/13 4A/1A 4A+51 4D/1C 51/0F 51/0E 51/12 51/13")
      .Run(0xcc, "59/0F 59/0E 59/12 59/13 4F/68 62/19 64/0F 64/0E 64/12 64/19 64/13 3309")
      .Run(0xd8, "64/21 6F/0F 6F/0E 6F/12 6F/13 76/0E 6D+57 6B+6B")
      .Run(0xe0, "4A/0F 4A/0E 4A/12 4A/19 4A/13 4A/1A 4A+51 4D/1C 51/0F 51/0E 51/12 51/13")
      .Run(0xec, "59/0F 59/0E 59/12 59/13 4F/68 62/19 64/0F 64/0E 64/12 64/19 64/13 330A")
      .Run(0xf8, "64/21 6F/0F 6F/0E 6F/12 6F/13 76/0E 6D+57 76/13")
      // U+0100 to U+017F: capital and small letter in turn, mostly.
      .Run(0x100, "4A/17 4A/17 4A/15 4A/15 4A/1B 4A/1B 4D/0E 4D/0E 4D/12 4D/12 4D/10 4D/10")
      .Run(0x10c, "4D/14 4D/14 4F/14 4F/14 4F/1E 4F/1E 51/17 51/17 51/15 51/15 51/10 51/10")
      .Run(0x118, "51/1B 51/1B 51/14 51/14 55/12 55/12 55/15 55/15 55/10 55/10 55/1C 55/1C")
      .Run(0x124, "57/12 57/12 57/1E 57/1E 59/19 59/19 59/17 59/17 59/15 59/15 59/1B 59/1B")
      .Run(0x130, "59/10 59/03 59+5B 59+5B 5B/12 5B/12 5C/1C 5C/1C 5C/03 5E/0E 5E/0E 5E/1C")
      .Run(0x13c, "5E/1C 5E/14 5E/14 5E/11 5E/11 5E/1F 5E/1F 62/0E 62/0E 62/1C 62/1C 62/14")
      .Run(0x148, "62/14 62/48 6305 6305 64/17 64/17 64/15 64/15 64/1D 64/1D 64+51 64+51")
      .Run(0x154, "69/0E 69/0E 69/1C 69/1C 69/14 69/14 6B/0E 6B/0E 6B/12 6B/12 6B/1C 6B/1C")
      .Run(0x160, "6B/14 6B/14 6D/1C 6D/1C 6D/14 6D/14 6E06/1E 6E06/1E 6F/19 6F/19 6F/17 6F/17")
      .Run(0x16c, "6F/15 6F/15 6F/1A 6F/1A 6F/1D 6F/1D 6F/1B 6F/1B 73/12 73/12 76/12 76/12")
      .Run(0x178, "76/13 78/0E 78/0E 78/10 78/10 78/14 78/14 6C06")
      // The rest of code page 1252, and hidden characters elsewhere.
      .Run(0x192, "53/7B")
      .Run(0x2c6, "2B02/03")
      .Run(0x2dc, "2B1C")
      .HiddenRun(0x64b, 0x650, 0xa0)
      .Run(0x652, "hA6")
      .Run(0x2010, "h84 h85 h88 h89 h8B h8C")
      .Run(0x2018, "2B37 2B38 2B39")
      .Run(0x201c, "2B3B 2B3C 2B3D")
      .Run(0x2020, "34B3 34B4 34B5")
      .Run(0x2026, "34B9 h86")
      .Run(0x2030, "34BA")
      .Run(0x2039, "2B46 2B47")
      .Run(0x2043, "h87")
      .Run(0x20ac, "35A1")
      .Run(0x2122, "6E04")
      .Run(0xff07, "h80")
      .Run(0xff0d, "h82")
      .NoEffect();
  return builder.table();
}

}  // namespace

constinit const WeightTable kWeightTable = BuildWeightTable();

}  // namespace jet
