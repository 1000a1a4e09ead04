// Index keys, against keys measured on real files and the order they must give.
#include "platform/jet/key_encoding.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "tests/platform/jet/definitions.h"

namespace jet {
namespace {

using test::FromHex;
using test::KindOf;
using test::ToHex;

constexpr Collation kFrench{1036, 0, 0};
constexpr Collation kSpanishModern{3082, 0, 0};
constexpr Collation kChinese{2052, 0, 0};

Collation OfLanguage(unsigned language) { return {static_cast<std::uint16_t>(language), 0, 0}; }

ColumnDefinition ColumnOf(ColumnType type) {
  TableDefinition table;
  return test::AddColumn(table, u"Column", type, type == ColumnType::kText ? 510 : 0);
}

std::string KeyOf(ColumnType type, const Value& value, bool ascending = true) {
  Bytes key;
  AppendKeyPart(key, value, ColumnOf(type), ascending);
  return ToHex(key);
}

std::string SortKey(std::u16string_view text, Collation collation = {}) {
  return ToHex(TextSortKey(collation, text));
}

TEST(KeyEncodingTest, TextsHaveTheKeysOfRealFiles) {
  const struct {
    std::u16string_view text;
    const char* key;
    Collation collation{};
  } cases[] = {
      {u"ümlaut", "6F 60 5E 4A 6F 6D 01 13 00"},
      {u"naïve", "62 4A 59 71 51 01 02 02 13 00"},
      {u"co-op", "4D 64 64 66 01 01 01 01 80 0F 06 82 00"},
      {u"Aß-B", "4A 6B 6B 4C 01 01 01 01 80 13 06 82 00"},
      {u"£-", "34 A7 01 01 01 01 80 0B 06 82 00"},
      {u"", "01 00"},
      {u"Þĳ€ŧ", "6D 57 59 5B 35 A1 6E 06 01 02 02 02 02 02 1E 00"},
      {u"A\U0001F600b", "4A 4C 01 00"},  // halves have no effect
      {u"côté", "4D 64 6D 51 01 02 12 02 0E 00"},
      {u"côté", "4D 64 6D 51 01 0E 02 12 00", kFrench},
      {u"élan", "51 5E 4A 62 01 02 02 02 0E 00", kFrench},
      {u"cote", "4D 64 6D 51 01 00", kFrench},
      {u"mañana", "60 4A 62 4A 62 4A 01 02 02 19 00"},
      {u"mañana", "60 4A 63 04 4A 62 4A 01 00", kSpanishModern},
  };
  for (const auto& c : cases) EXPECT_EQ(SortKey(c.text, c.collation), c.key);
}

TEST(KeyEncodingTest, PositionsOfHiddenCharactersNeedSixteenBits) {
  const auto hidden_after = [](std::size_t weights) {
    const std::string key = SortKey(std::u16string(weights, u'a') + u"-");
    return key.substr(key.size() - 14, 5);
  };
  EXPECT_EQ(hidden_after(62), "80 FF");
  EXPECT_EQ(hidden_after(63), "81 03");
  EXPECT_EQ(hidden_after(254), "83 FF");
}

TEST(KeyEncodingTest, EqualityIgnoresCaseTrailingSpacesAndWhatLiesBehind255) {
  EXPECT_EQ(SortKey(u"Éclair "), SortKey(u"éCLAIR"));
  EXPECT_NE(SortKey(u"Éclair"), SortKey(u"Eclair"));
  EXPECT_NE(SortKey(u" a"), SortKey(u"a"));
  EXPECT_NE(SortKey(u"a-b"), SortKey(u"ab"));
  const std::u16string cut(255, u'x');
  EXPECT_EQ(SortKey(cut + u"y"), SortKey(cut));
  EXPECT_NE(SortKey(cut), SortKey(cut.substr(1)));
}

TEST(KeyEncodingTest, OnlyMeasuredCollationsAreEncoded) {
  for (const unsigned language : {1033u, 1043u, 1031u, 2057u, 1040u, 1046u, 1u, 31847u})
    EXPECT_TRUE(CanEncode(OfLanguage(language))) << language;
  EXPECT_TRUE(CanEncode(kFrench));
  EXPECT_TRUE(CanEncode(kSpanishModern));
  for (const unsigned language : {0u, 4u, 1034u, 1041u, 2052u, 2058u, 31848u, 65535u})
    EXPECT_FALSE(CanEncode(OfLanguage(language))) << language;
  EXPECT_FALSE(CanEncode({1033, 1, 0}));
  EXPECT_FALSE(CanEncode({1033, 0, 1}));
  int general = 0;
  for (unsigned language = 0; language <= 0xffff; ++language)
    general += CanEncode(OfLanguage(language)) ? 1 : 0;
  EXPECT_EQ(general, 326 + 7 + 18);
}

TEST(KeyEncodingTest, TextsWithoutKnownWeightsAreRefusedButCompared) {
  EXPECT_FALSE(CanEncodeText({}, u"Ωmega"));
  EXPECT_FALSE(CanEncodeText(kChinese, u"abc"));
  EXPECT_TRUE(CanEncodeText({}, std::u16string(255, u'x') + u"Ω"));  // behind what counts
  EXPECT_EQ(KindOf([] { KeyOf(ColumnType::kText, u"Ω"); }), ErrorKind::kNotSupported);
  EXPECT_EQ(SortKey(u"Ωmega "), SortKey(u"Ωmega"));
  EXPECT_NE(SortKey(u"Ωmega"), SortKey(u"ΩMEGA"));
  EXPECT_GT(TextSortKey({}, u"Ω"), TextSortKey({}, u"zzz"));
}

TEST(KeyEncodingTest, EachTypeHasItsForm) {
  struct Case {
    ColumnType type;
    Value value;
    const char* ascending;
    const char* descending;
  };
  Guid guid;
  std::ranges::copy(FromHex("78 56 34 12 BC 9A F0 DE 01 02 03 04 05 06 07 08"),
                    guid.stored.begin());
  const Case cases[] = {
      {ColumnType::kLong, Null{}, "00", "FF"},
      {ColumnType::kBoolean, true, "7F 00", "80 FF"},
      {ColumnType::kBoolean, false, "7F FF", "80 00"},
      {ColumnType::kBoolean, Null{}, "7F FF", "80 00"},
      {ColumnType::kByte, std::uint8_t{200}, "7F C8", "80 37"},
      {ColumnType::kInteger, std::int16_t{-2}, "7F 7F FE", "80 80 01"},
      {ColumnType::kLong, std::int32_t{1}, "7F 80 00 00 01", "80 7F FF FF FE"},
      {ColumnType::kCurrency, Currency{10000}, "7F 80 00 00 00 00 00 27 10",
       "80 7F FF FF FF FF FF D8 EF"},
      {ColumnType::kSingle, 1.5f, "7F BF C0 00 00", "80 40 3F FF FF"},
      {ColumnType::kDouble, -2.0, "7F 3F FF FF FF FF FF FF FF", "80 C0 00 00 00 00 00 00 00"},
      {ColumnType::kDate, Date{2.0}, "7F C0 00 00 00 00 00 00 00", "80 3F FF FF FF FF FF FF FF"},
      {ColumnType::kBinary, FromHex("65 8B"), "7F 65 8B 00 00 00 00 00 00 02",
       "80 9A 74 FF FF FF FF FF FF FD"},
      {ColumnType::kBinary, Bytes{}, "7F", "80"},
      {ColumnType::kBinary, FromHex("01 02 03 04 05 06 07 08"), "7F 01 02 03 04 05 06 07 08 08",
       "80 FE FD FC FB FA F9 F8 F7 F7"},
      {ColumnType::kBinary, FromHex("01 02 03 04 05 06 07 08 00"),
       "7F 01 02 03 04 05 06 07 08 09 00 00 00 00 00 00 00 00 01",
       "80 FE FD FC FB FA F9 F8 F7 09 FF FF FF FF FF FF FF FF FE"},
      {ColumnType::kGuid, guid, "7F 12 34 56 78 9A BC DE F0 09 01 02 03 04 05 06 07 08 08",
       "80 ED CB A9 87 65 43 21 0F 09 FE FD FC FB FA F9 F8 F7 F7"},
      {ColumnType::kText, std::u16string(u"é"), "7F 51 01 0E 00", "80 AE FE F1 FF 00"},
  };
  for (const Case& part : cases) {
    EXPECT_EQ(KeyOf(part.type, part.value, true), part.ascending);
    EXPECT_EQ(KeyOf(part.type, part.value, false), part.descending);
  }
  EXPECT_EQ(KeyOf(ColumnType::kNumeric, Numeric{false, 0, {0, 0, 0, 7}}),
            "7F FF 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 07");
  EXPECT_EQ(KeyOf(ColumnType::kNumeric, Numeric{true, 0, {0, 0, 0, 7}}),
            "7F 00 FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF F8");
  using enum ErrorKind;
  EXPECT_EQ(KindOf([] { KeyOf(ColumnType::kNumeric, Numeric{}, false); }), kNotSupported);
  EXPECT_EQ(KindOf([] { KeyOf(ColumnType::kOle, Bytes{}); }), kNotSupported);
  EXPECT_EQ(KindOf([] { KeyOf(ColumnType::kLong, 1.0); }), kTypeMismatch);
}

TEST(KeyEncodingTest, LongKeysEndWithTheChecksumOfWhatTheyLost) {
  Bytes key;
  AppendKeyPart(key, std::u16string(255, u'é'), ColumnOf(ColumnType::kText), true);
  ASSERT_EQ(key.size(), 513u);
  const Bytes kept(key.begin(), key.begin() + 508);
  LimitKey(key);
  ASSERT_EQ(key.size(), 510u);
  EXPECT_TRUE(std::equal(kept.begin(), kept.end(), key.begin()));
  EXPECT_EQ(ToHex(Bytes(key.end() - 2, key.end())), "FF AA");

  Bytes other(511);
  other[508] = std::byte{0xa3};
  other[509] = std::byte{0x01};
  LimitKey(other);
  EXPECT_EQ(ToHex(Bytes(other.end() - 2, other.end())), "CA 02");

  Bytes fits(510, std::byte{1});
  fits.back() = std::byte{2};
  const Bytes before = fits;
  LimitKey(fits);
  EXPECT_EQ(fits, before);
}

}  // namespace
}  // namespace jet
