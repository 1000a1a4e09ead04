// The helpers of the surface, oddities included.
#include "app/modGeneralFunctions.h"

#include <gmock/gmock.h>

#include <new>
#include <stdexcept>

#include "platform/files/paths.h"
#include "platform/text/locale.h"
#include "tests/support/surface_test.h"

namespace {

constexpr text::Locale kDutch{L',', L'.'};
constexpr text::Locale kEnglish{L'.', L','};

// Its texts are numbers, but for the heading of an error report.
class ErrorHeading final : public test_support::NumberedTexts {
 public:
  std::wstring GetText(std::int32_t vNumber) const override {
    return vNumber == 104 ? L"Error!/pDetails:" : NumberedTexts::GetText(vNumber);
  }
};

class GeneralFunctionsTest : public test_support::SurfaceTest {};

TEST_F(GeneralFunctionsTest, PSplitFollowsItsRules) {
  using Fields = std::vector<std::wstring>;
  const struct {
    const wchar_t* line;
    Fields fields;  // without the empty one at index 0
  } cases[] = {
      {L"A,,C", {L"A", L"", L"C"}},
      {L",", {L"", L""}},
      {L" a , b ", {L" a ", L" b "}},
      {LR"("x,y",z)", {L"x,y", L"z"}},
      {LR"("a")", {L"a"}},
      {LR"(")", {LR"(")"}},  // a single quote is not stripped
      {LR"(a,"b,c")", {L"a", L"b,c"}},
      {LR"(a,"b)", {L"a", LR"("b)"}},
      {LR"("a"b,c)", {L"a", L"", L"c"}},  // the b after the closing quote is dropped
      {LR"("a"b"c",d)", {L"a", L"c", L"d"}},
      {LR"("a","b"c)", {L"a", LR"(b")"}},
      {LR"(""a,b)", {L"", L"", L"b"}},
      {LR"(x"a,b"y,c)",
       {LR"("a,b)", L"", L"c"}},  // a quote inside a field: the ends go, not the quotes
      {LR"(a"b"c)", {LR"("b")"}},
      {LR"("","")", {L"", L""}},
      {LR"(x"a,b")", {LR"("a,b)"}},       // the closing quote ends the line: both ends go
      {LR"("a,"b",c")", {L"a,", L",c"}},  // a quoted text cannot hold a quote
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(c.line)));
    std::wstring line = c.line;
    EXPECT_EQ(PSplitCount(line), c.fields.size());
    Fields fields = PSplit(line);
    ASSERT_FALSE(fields.empty());
    EXPECT_EQ(fields.front(), L"");
    EXPECT_EQ(line, fields.back());
    fields.erase(fields.begin());
    EXPECT_EQ(fields, c.fields);
  }
  std::wstring empty;
  EXPECT_TRUE(PSplit(empty).empty());
}

TEST_F(GeneralFunctionsTest, PSplitOfAnUnclosedQuoteEndsOnlyThroughDoEvents) {
  pump.meanwhile = [this] {
    if (pump.calls % 5 == 0) throw ProcessEnding();
  };
  for (const wchar_t* const text : {L"\"a,b", L"x,\"a,b", L"\"x\",y\",z", L"\","}) {
    std::wstring line = text;
    EXPECT_THROW(PSplit(line), ProcessEnding);
    EXPECT_THROW(PSplitCount(line), ProcessEnding);
  }
  EXPECT_THAT(Boxes(), testing::IsEmpty());
}

TEST_F(GeneralFunctionsTest, ErrorReportTellsNumberAndDescription) {
  ErrorHeading language;
  settings.objLanguage = &language;
  const std::vector<std::pair<std::exception_ptr, std::wstring>> cases = {
      {std::make_exception_ptr(text::RuntimeError(3045, L"Could not use file.")),
       L"3045: Could not use file."},
      {std::make_exception_ptr(std::bad_alloc()), L"7: Out of memory"},
      {std::make_exception_ptr(std::runtime_error("odd \xC3\xA9")), L"5: odd \u00E9"},
      {std::make_exception_ptr(1), L"51: Internal error"},
  };
  for (const auto& [error, text] : cases) {
    prompt.messages.clear();
    try {
      std::rethrow_exception(error);
    } catch (...) {
      ShowErrorMessage(L"clsX.Do (Sub)");
    }
    const test_support::RecordingPrompt::Shown report = {
        L"Error!\r\nDetails:\r\n\r\nProcedure = clsX.Do (Sub)\r\nError = " + text, L"Title"};
    EXPECT_THAT(prompt.messages, testing::ElementsAre(report));
  }
}

TEST_F(GeneralFunctionsTest, NoBoundaryKeepsAnEndingProcess) {
  const auto end_inside = [](const auto& boundary) {
    try {
      throw ProcessEnding();
    } catch (...) {
      boundary();
    }
  };
  EXPECT_THROW(end_inside([] { ShowErrorMessage(L"x"); }), ProcessEnding);
  EXPECT_THROW(end_inside([] { IgnoreError(); }), ProcessEnding);
  EXPECT_THAT(Boxes(), testing::IsEmpty());
}

TEST(GeneralFunctionsPromptTest, WithoutAnInstalledOneMessagesReachStandardError) {
  testing::internal::CaptureStderr();
  ShowMessage(L"lost? \u00E9", L"");
  EXPECT_FALSE(Shared().objPrompt->AskYesNo(L"sure?", L""));
  DoEvents();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "lost? \xC3\xA9\nsure?\n");
}

TEST(GeneralFunctionsNullTest, NullGivesTheDefaultAndNonsenseZero) {
  const text::ScopedLocale locale(kEnglish);
  const text::Variant null;
  EXPECT_EQ(NullToString(null, L"none"), L"none");
  EXPECT_TRUE(NullToBoolean(null, true));
  EXPECT_FALSE(NullToBoolean(L"perhaps", true));
  EXPECT_EQ(NullToLong(L"x", 7), 0);
  EXPECT_EQ(NullToLong(L"1e10", 7), 0);
  EXPECT_EQ(NullToDouble(L"1,234.5"), 1234.5);
  EXPECT_EQ(NullToInteger(40000), 0);
  EXPECT_EQ(NullToByte(256), 0);
  EXPECT_EQ(NullToByte(-1), 0);
}

TEST(GeneralFunctionsNumberTest, FilesUseAFullStopUnderEveryLocale) {
  for (const text::Locale locale : {kEnglish, kDutch}) {
    const text::ScopedLocale scope(locale);
    EXPECT_EQ(ParseDecimal(L" 1.5 "), 1.5);
    EXPECT_EQ(ParseDecimal(L"\t1"), 0);
    EXPECT_EQ(ParseDecimal(L"1.2.3"), 0);
    EXPECT_EQ(FormatDecimal(1234.5), L"1234.5");
  }
  const text::ScopedLocale scope(kEnglish);
  EXPECT_EQ(ParseDecimal(L"1,234.5"), 1234.5);
}

TEST(GeneralFunctionsNumberTest, ExtractNumberKeepsDigitsAndMinusSigns) {
  EXPECT_EQ(ExtractNumber(L"-42 kg"), -42);
  EXPECT_EQ(ExtractNumber(L"12-3"), 0);
  EXPECT_EQ(ExtractNumber(L"1.5"), 15);
  EXPECT_EQ(ExtractNumber(L"99999999999"), 0);
  EXPECT_TRUE(IsTrueValue(-1));
  EXPECT_FALSE(IsTrueValue(1));
}

TEST(GeneralFunctionsPathTest, BothSeparatorsAreUnderstood) {
  EXPECT_EQ(GetFolder(L"C:\\a\\b.pt"), L"C:\\a");
  EXPECT_EQ(GetFileName(L"C:\\a\\b.pt"), L"b.pt");
  EXPECT_EQ(GetFolder(L"b.pt"), L"");
  EXPECT_EQ(GetFileName(L"b.pt"), L"");
  EXPECT_EQ(AddBackslash(L"a\\"), L"a\\");
  EXPECT_EQ(AddBackslash(L"a"), std::wstring(L"a") + files::Separator());
#ifndef _WIN32
  EXPECT_EQ(GetFolder(L"/a\\b/c.pt"), L"/a\\b");
  EXPECT_EQ(GetFileName(L"/a/b\\c.pt"), L"c.pt");
#endif
}

TEST(GeneralFunctionsTextTest, LinesAndControlCharacters) {
  EXPECT_EQ(AppendLine(L"", L"x"), L"x");
  EXPECT_EQ(AppendLine(L"a", L"x"), L"a\r\nx");
  EXPECT_EQ(StripControlChars(L"a\tb\r\n\x1F c\x7F"), L"ab c\x7F");
}

}  // namespace
