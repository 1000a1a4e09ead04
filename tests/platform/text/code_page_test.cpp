// Bytes into wide text and back, in every encoding the program meets.
#include "platform/text/code_page.h"

#include <gtest/gtest.h>

#include <string>

namespace text {
namespace {

// Anything in this range of bytes is common to every single-byte code page of ours.
TEST(CodePageTest, AsciiIsItself) {
  EXPECT_EQ(AnsiToWide("Profiel, 100 x \"50\"\t"), L"Profiel, 100 x \"50\"\t");
  EXPECT_EQ(WideToAnsi(L"Profiel, 100 x \"50\"\t"), "Profiel, 100 x \"50\"\t");
  EXPECT_EQ(AnsiToWide(std::string("a\0b", 3)), std::wstring(L"a\0b", 3));
  EXPECT_EQ(AnsiToWide(""), L"");
}

#ifndef _WIN32  // there the user's code page decides
TEST(CodePageTest, EveryByteSurvivesARoundTrip) {
  std::string bytes;
  for (int byte = 0; byte <= 0xFF; ++byte) bytes += static_cast<char>(byte);
  EXPECT_EQ(WideToAnsi(AnsiToWide(bytes)), bytes);
}

TEST(CodePageTest, KnowsTheCharactersThatDifferFromTheirByte) {
  EXPECT_EQ(AnsiToWide("\x80\x85\x93\x99\x9F\xE9\xFF"),
            L"\u20AC\u2026\u201C\u2122\u0178\u00E9\u00FF");
  EXPECT_EQ(AnsiToWide("\x81\x9D"), (std::wstring{0x81, 0x9D}));
  EXPECT_EQ(WideToAnsi(L"\u20AC\u2122\u0178"), "\x80\x99\x9F");
  EXPECT_EQ(WideToAnsi(L"A\u0416\uFFFD" + std::wstring(1, 0x80)), "A???");
}
#endif

TEST(Utf8Test, ReadsAndWritesEveryLength) {
  const std::string bytes = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x94\xA9z";
  const std::wstring text = L"a\u00E9\u20AC\U0001F529z";
  EXPECT_EQ(Utf8ToWide(bytes), text);
  EXPECT_EQ(WideToUtf8(text), bytes);
}

TEST(Utf8Test, ReplacesWhatCannotBeRead) {
  const struct {
    std::string bytes;
    std::wstring text;
  } cases[] = {
      {"\x80g", L"\uFFFDg"},                              // no lead byte
      {"\xC3", L"\uFFFD"},                                // cut off
      {"\xC3g", L"\uFFFDg"},                              // the next character is not swallowed
      {"\xE2\x82g", L"\uFFFDg"},                          // one mark for a cut sequence
      {"\xC0\xAF", L"\uFFFD\uFFFD"},                      // overlong
      {"\xE0\x80\xAF", L"\uFFFD\uFFFD\uFFFD"},            // overlong
      {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},            // surrogate
      {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond the last code point
      {"\xFF\xFE", L"\uFFFD\uFFFD"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.bytes));
    EXPECT_EQ(Utf8ToWide(c.bytes), c.text);
  }
}

TEST(Utf16Test, PairsSurrogatesAndReplacesLoneOnes) {
  EXPECT_EQ(Utf16ToWide(u"\U0001F529\u00E9"), L"\U0001F529\u00E9");
  EXPECT_EQ(WideToUtf16(L"\U0001F529\u00E9"), u"\U0001F529\u00E9");
  EXPECT_EQ(Utf16ToWide(std::u16string{0xD83D, u'a', 0xDD29, 0xD83D}), L"\uFFFDa\uFFFD\uFFFD");
  const auto lone = static_cast<wchar_t>(0xD83D);
  EXPECT_EQ(WideToUtf16(std::wstring{lone, L'a'}), u"\uFFFDa");
  EXPECT_EQ(WideToUtf8(std::wstring{lone, L'a'}),
            "\xEF\xBF\xBD"
            "a");
}

}  // namespace
}  // namespace text
