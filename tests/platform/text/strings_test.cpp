// Trimming, case and replacement.
#include "platform/text/strings.h"

#include <gtest/gtest.h>

namespace text {
namespace {

TEST(StringsTest, TrimTakesBlanksOnly) {
  EXPECT_EQ(Trim(L"  a b  "), L"a b");
  EXPECT_EQ(Trim(L"\ta\u00A0 "), L"\ta\u00A0");
  EXPECT_EQ(Trim(L"   "), L"");
  EXPECT_EQ(TrimLeft(L" a "), L"a ");
  EXPECT_EQ(TrimRight(L" a "), L" a");
}

TEST(StringsTest, UpperCaseCoversTheCodePageOnly) {
  EXPECT_EQ(ToUpper(L"[new serie] \u00E9\u00FE\u0161\u0153\u017E\u00FF"),
            L"[NEW SERIE] \u00C9\u00DE\u0160\u0152\u017D\u0178");
  EXPECT_EQ(ToUpper(L"\u00DF\u00F7\u00D7\u0436{`"), L"\u00DF\u00F7\u00D7\u0436{`");
  EXPECT_TRUE(EqualsNoCase(L"Prc\u00E9", L"pRC\u00C9"));
  EXPECT_FALSE(EqualsNoCase(L"PRC", L"PRCX"));
}

TEST(StringsTest, ReplaceAllDoesNotSearchWhatItPutIn) {
  EXPECT_EQ(ReplaceAll(L"%s en %s", L"%s", L"x%s"), L"x%s en x%s");
  EXPECT_EQ(ReplaceAll(L"aaa", L"aa", L"b"), L"ba");
  EXPECT_EQ(ReplaceAll(L"abc", L"", L"x"), L"abc");
}

}  // namespace
}  // namespace text
