// Numbers and texts by the user's locale, with the rules of classic data access.
#include "platform/text/conversion.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/text/locale.h"

namespace text {
namespace {

static_assert(!std::is_constructible_v<Variant, const void*>, "a pointer must not become True");
static_assert(!std::is_constructible_v<Variant, const char*>, "narrow text has no code page");
static_assert(!std::is_constructible_v<Variant, std::int64_t>, "no type of ours is that wide");

constexpr Locale kDutch{L',', L'.'};
constexpr Locale kEnglish{L'.', L','};
constexpr std::nullopt_t kNothing = std::nullopt;

TEST(ParseNumberTest, FollowsTheLocale) {
  const struct {
    const wchar_t* text;
    std::optional<double> english;
    std::optional<double> dutch;
  } cases[] = {
      {L"1.5", 1.5, 15},
      {L"1,5", 15, 1.5},
      {L"1.234,5", kNothing, 1234.5},
      {L"1,234.5", 1234.5, kNothing},
      {L"1,2,3", 123, kNothing},
      {L".5", 0.5, kNothing},
      {L"5.", 5, 5},
      {L"  -7 ", -7, -7},
      {L"- 7", -7, -7},
      {L"7-", -7, -7},
      {L"(7)", -7, -7},
      {L"1d-2", 0.01, 0.01},
      {L"1e-400", 0, 0},
      {L"0.0000001e+400", kNothing, kNothing},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(c.text)));
    {
      const ScopedLocale scope(kEnglish);
      EXPECT_EQ(ParseNumber(c.text), c.english);
    }
    const ScopedLocale scope(kDutch);
    EXPECT_EQ(ParseNumber(c.text), c.dutch);
  }
}

TEST(ParseNumberTest, RefusesWhatIsNoNumber) {
  const ScopedLocale scope(kEnglish);
  for (const wchar_t* const text :
       {L"",     L" ",   L"-",   L".",    L"12-3",  L"--1",   L"-1-",
        L"(-1)", L"1 2", L"1e",  L"1e+",  L"e5",    L"abc",   L"1x",
        L"\t1",  L"inf", L"nan", L"0x10", L"1e999", L"1.5.2", L"\u0661"}) {
    EXPECT_EQ(ParseNumber(text), kNothing) << testing::PrintToString(std::wstring(text));
  }
}

TEST(ToInt32Test, RoundsHalvesToEvenAndChecksTheRange) {
  const ScopedLocale scope(kEnglish);
  const struct {
    Variant value;
    std::optional<std::int32_t> number;
  } cases[] = {
      {0.5, 0},
      {1.5, 2},
      {-2.5, -2},
      {L"2.5", 2},
      {true, -1},
      {std::uint8_t{255}, 255},
      {Currency{25000}, 2},
      {Decimal{false, {0, 0, 0, 35}, 1}, 4},
      {Date{2.0}, 2},
      {2147483647.4, 2147483647},
      {2147483647.5, kNothing},
      {-2147483648.5, std::numeric_limits<std::int32_t>::min()},
      {std::numeric_limits<double>::quiet_NaN(), kNothing},
      {Null{}, kNothing},
      {L"", kNothing},
      {Binary{std::byte{1}}, kNothing},
      {Guid{}, kNothing},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ToInt32(c.value), c.number) << "type " << c.value.value().index();
  }
  EXPECT_EQ(ToByte(255.5), kNothing);
  EXPECT_EQ(ToByte(-1), kNothing);
  EXPECT_EQ(ToInt16(32768), kNothing);
}

TEST(ToBooleanTest, TakesWordsAndNumbers) {
  EXPECT_EQ(ToBoolean(L" TRUE "), true);
  EXPECT_EQ(ToBoolean(L"false"), false);
  EXPECT_EQ(ToBoolean(L"0"), false);
  EXPECT_EQ(ToBoolean(L"-3"), true);
  EXPECT_EQ(ToBoolean(0.25), true);
  EXPECT_EQ(ToBoolean(L"yes"), kNothing);
  EXPECT_EQ(ToBoolean(Null{}), kNothing);
}

TEST(ToTextTest, GivesEveryTypeItsClassicForm) {
  Guid guid;
  for (std::size_t i = 0; i < guid.bytes.size(); ++i) guid.bytes[i] = static_cast<std::byte>(i);
  constexpr std::uint32_t kAllBits = 0xFFFFFFFF;
  const struct {
    Variant value;
    const wchar_t* text;
  } cases[] = {
      {Null{}, L""},
      {true, L"True"},
      {false, L"False"},
      {0.0, L"0"},
      {-0.0, L"0"},
      {0.1 + 0.2, L"0.3"},
      {1.0 / 3, L"0.333333333333333"},
      {1.0 / 30, L"3.33333333333333E-02"},
      {0.00001, L"0.00001"},
      {1e-15, L"0.000000000000001"},
      {1e-16, L"1E-16"},
      {999999999999999.9, L"1E+15"},
      {123456789012345678.0, L"1.23456789012346E+17"},
      {-1e300, L"-1E+300"},
      {100.0, L"100"},
      {0.1F, L"0.1"},
      {1e7F, L"1E+07"},
      {Currency{std::numeric_limits<std::int64_t>::min()}, L"-922337203685477.5808"},
      {Currency{-5}, L"-0.0005"},
      {Decimal{false, {kAllBits, kAllBits, kAllBits, kAllBits}, 0},
       L"340282366920938463463374607431768211455"},
      {Decimal{false, {0, 0, 0, 1}, 28}, L"0.0000000000000000000000000001"},
      {Decimal{true, {0, 0, 0, 0}, 2}, L"0"},
      {Date{38061}, L"2004-03-15"},
      {Date{38061.5}, L"2004-03-15 12:00:00"},
      {Binary{std::byte{0x0F}, std::byte{0xA0}}, L"0fa0"},
      {guid, L"{03020100-0504-0706-0809-0a0b0c0d0e0f}"},
  };
  {
    const ScopedLocale scope(kEnglish);
    for (const auto& c : cases) EXPECT_EQ(ToText(c.value), c.text);
  }
  const ScopedLocale scope(kDutch);
  EXPECT_EQ(ToText(1234.5), L"1234,5");
  EXPECT_EQ(ToText(Currency{-12345}), L"-1,2345");
  EXPECT_EQ(ToText(Decimal{true, {0, 0, 0, 1250}, 3}), L"-1,25");
}

}  // namespace
}  // namespace text
