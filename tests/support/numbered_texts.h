// A language in which every text is its number, so that tests name texts as the program does.
#pragma once

#include <set>
#include <string>

#include "platform/language/language_provider.h"

namespace test_support {

// Text 96 is "#96"; a text that the program fills has its "%s": "#86 %s". Tool tips have the broken
// line ends of real ones.
class NumberedTexts : public language::LanguageProvider {
 public:
  std::int16_t LoadLanguageFile(const std::wstring&) override { return language::kLoaded; }
  std::wstring GetText(std::int32_t number) const override {
    static const std::set<std::int32_t> filled = {5,  53, 54,  56,  67,  68,   80,   86,   87,  88,
                                                  91, 93, 101, 102, 103, 1024, 1050, 1071, 1072};
    return L"#" + std::to_wstring(number) + (filled.contains(number) ? L" %s" : L"");
  }
  std::wstring GetToolTipText(std::int32_t number) const override {
    return GetText(number) + L"\\n";
  }
  std::wstring GetMessageText(std::int32_t number) const override { return GetText(number); }
};

}  // namespace test_support
