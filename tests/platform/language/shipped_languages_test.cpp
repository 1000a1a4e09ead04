// The language files that are shipped: complete, and alike in everything but the words.
#include <gtest/gtest.h>

#include <array>
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

// Texts into which the program puts a path or a code.
constexpr std::int32_t kFilledTexts[] = {5,  53, 54, 56,  67,  68,  80,   86,  87,
                                         88, 91, 93, 101, 102, 103, 1024, 1050};

std::size_t Count(const std::wstring& text, const std::wstring& mark) {
  return (text.size() - text::ReplaceAll(text, mark, L"").size()) / mark.size();
}

using Marks = std::array<std::size_t, 3>;  // of names, paragraphs and access keys

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

TEST(ShippedLanguagesTest, EveryLanguageHasTheSameShape) {
  const Shape dutch = ShapeOf(Shipped("dutch.lng"));
  for (const char* const name : kShippedFiles) {
    SCOPED_TRACE(name);
    const LanguageTexts other = Shipped(name);
    EXPECT_TRUE(other.problems.empty()) << other.problems.front();
    for (const auto number : kFilledTexts)
      EXPECT_EQ(Count(other.entries.at(number).text, L"%s"), 1U) << number;
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
