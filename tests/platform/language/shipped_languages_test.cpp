// The language files that are shipped: complete, and alike in everything but the words.
#include <gtest/gtest.h>

#include <iterator>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/language/language_file.h"
#include "platform/text/code_page.h"
#include "platform/text/strings.h"

namespace language {
namespace {

LanguageTexts Shipped(const char* name) {
  return ReadLanguageFile(std::filesystem::path(ORVPAP_PROGRAM_FOLDER) / "lang" / name);
}

constexpr const char* kShippedFiles[] = {"dutch.lng", "english.lng", "german.lng", "french.lng"};

// The captions and list texts that a shipped file has, those of the window and of the download page
// among them, which are yet to come. What the code asks for now, tools/check-texts.py finds.
constexpr std::int32_t kTextNumbers[] = {
    0,    1,    2,    3,    5,    6,    7,    8,    9,    10,   22,   23,   24,   25,   26,
    27,   28,   29,   30,   39,   40,   41,   42,   47,   48,   49,   51,   52,   53,   54,
    55,   56,   57,   59,   60,   61,   62,   63,   64,   65,   67,   68,   69,   70,   71,
    72,   73,   74,   76,   77,   78,   79,   80,   81,   82,   83,   84,   85,   86,   87,
    88,   89,   90,   91,   93,   94,   95,   96,   97,   98,   99,   100,  101,  102,  103,
    104,  132,  133,  1000, 1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1010, 1011, 1012,
    1013, 1020, 1021, 1022, 1023, 1024, 1030, 1040, 1041, 1042, 1050, 1060, 1061};
constexpr std::int32_t kToolTipNumbers[] = {58, 1011, 1012, 1013};
constexpr std::int32_t kMessageNumbers[] = {26, 27, 50, 1024};

// Texts into which the program puts a path or a code.
constexpr std::int32_t kFilledTexts[] = {5,  53, 54, 56,  67,  68,  80,   86,  87,
                                         88, 91, 93, 101, 102, 103, 1024, 1050};

std::size_t Count(const std::wstring& text, const std::wstring& mark) {
  return (text.size() - text::ReplaceAll(text, mark, L"").size()) / mark.size();
}

struct Marks {
  std::size_t names, paragraphs, access_keys;
  friend bool operator==(const Marks&, const Marks&) = default;
};

// Everything about a file that must not differ from language to language.
using Shape = std::map<std::pair<std::int32_t, int>, Marks>;
Shape ShapeOf(const LanguageTexts& texts) {
  Shape shape;
  for (const auto& [number, entry] : texts.entries) {
    const std::wstring* const kinds[] = {&entry.text, &entry.tool_tip, &entry.message};
    for (int kind = 0; kind < 3; ++kind) {
      const std::wstring& text = *kinds[kind];
      if (text.empty()) continue;
      shape[{number, kind}] = {Count(text, L"%s"), Count(text, L"/p"), Count(text, L"&")};
    }
  }
  return shape;
}

TEST(ShippedLanguagesTest, DutchIsComplete) {
  const LanguageTexts dutch = Shipped("dutch.lng");
  EXPECT_TRUE(dutch.problems.empty()) << dutch.problems.front();
  const auto entry = [&](std::int32_t number) -> Entry {
    const auto found = dutch.entries.find(number);
    return found == dutch.entries.end() ? Entry() : found->second;
  };
  for (const auto number : kTextNumbers) EXPECT_NE(entry(number).text, L"") << number;
  for (const auto number : kToolTipNumbers) EXPECT_NE(entry(number).tool_tip, L"") << number;
  for (const auto number : kMessageNumbers) EXPECT_NE(entry(number).message, L"") << number;
  for (const auto number : kFilledTexts) EXPECT_EQ(Count(entry(number).text, L"%s"), 1U) << number;
  const std::size_t texts =
      std::size(kTextNumbers) + std::size(kToolTipNumbers) + std::size(kMessageNumbers);
  EXPECT_EQ(ShapeOf(dutch).size(), texts) << "the file has texts that are not listed here";
}

TEST(ShippedLanguagesTest, EveryOtherLanguageHasTheSameShape) {
  const Shape dutch = ShapeOf(Shipped("dutch.lng"));
  for (const char* const name : kShippedFiles) {
    SCOPED_TRACE(name);
    const LanguageTexts other = Shipped(name);
    EXPECT_TRUE(other.problems.empty()) << other.problems.front();
    const Shape shape = ShapeOf(other);
    for (const auto& [key, marks] : dutch) {
      const auto found = shape.find(key);
      ASSERT_NE(found, shape.end()) << "number " << key.first << " kind " << key.second;
      EXPECT_EQ(found->second, marks) << "number " << key.first << " kind " << key.second;
    }
    EXPECT_EQ(shape.size(), dutch.size());
  }
}

// Messages go into the log, which is ANSI.
TEST(ShippedLanguagesTest, EveryTextCanBeLogged) {
  for (const char* const name : kShippedFiles) {
    for (const auto& [number, entry] : Shipped(name).entries) {
      for (const std::wstring& text : {entry.text, entry.tool_tip, entry.message}) {
        EXPECT_EQ(text::AnsiToWide(text::WideToAnsi(text)), text) << name << " " << number;
      }
    }
  }
}

// The captions that are on the screen together; a key that two of them share reaches only one.
TEST(ShippedLanguagesTest, AccessKeysDoNotCollide) {
  const std::vector<std::vector<std::int32_t>> screens = {
      {1, 2, 3, 1011, 1012, 1013}, {1, 2, 3, 1020, 1021}, {1, 2, 3, 1030}, {1040, 1041}};
  for (const char* const name : kShippedFiles) {
    const LanguageTexts texts = Shipped(name);
    for (const auto& screen : screens) {
      std::set<wchar_t> keys;
      for (const std::int32_t number : screen) {
        const std::wstring& caption = texts.entries.at(number).text;
        const std::size_t mark = caption.find(L'&');
        if (mark == std::wstring::npos) continue;
        ASSERT_LT(mark + 1, caption.size()) << name << " " << number;
        EXPECT_TRUE(keys.insert(text::ToUpper(caption[mark + 1])).second) << name << " " << number;
      }
    }
  }
}

}  // namespace
}  // namespace language
