// The helpers of the surface, oddities included.
#include "app/modGeneralFunctions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <optional>
#include <stdexcept>

#include "app/modShared.h"
#include "platform/files/paths.h"
#include "platform/text/locale.h"
#include "platform/text/runtime_error.h"
#include "tests/support/recording_prompt.h"

namespace {

using testing::ElementsAre;

constexpr text::Locale kDutch{L',', L'.'};
constexpr text::Locale kEnglish{L'.', L','};

class ErrorHeading final : public language::LanguageProvider {
 public:
  std::int16_t LoadLanguageFile(const std::wstring&) override { return language::kLoaded; }
  std::wstring GetText(std::int32_t vNumber) const override {
    return vNumber == 104 ? L"Error!/pDetails:" : L"";
  }
  std::wstring GetToolTipText(std::int32_t) const override { return {}; }
  std::wstring GetMessageText(std::int32_t) const override { return {}; }
};

// Ends the work in hand at the n-th DoEvents.
class EndingPump final : public controls::EventPump {
 public:
  explicit EndingPump(int vTurns) : m_turns(vTurns) {}
  void DoEvents() override {
    if (--m_turns == 0) throw ProcessEnding();
  }

 private:
  int m_turns;
};

class GeneralFunctionsTest : public testing::Test {
 protected:
  GeneralFunctionsTest() {
    m_shared.objPrompt = &m_prompt;
    m_shared.objLanguage = &m_language;
    m_shared.strApplicationTitle = L"Title";
  }

  test_support::RecordingPrompt m_prompt;
  ErrorHeading m_language;
  SharedSettings m_shared;
  SharedSettingsScope m_scope{m_shared};
};

TEST_F(GeneralFunctionsTest, PSplitFollowsItsRules) {
  using Fields = std::vector<std::wstring>;
  const struct {
    const wchar_t* line;
    Fields fields;  // without the empty one at index 0
  } cases[] = {
      {L"A,B,C", {L"A", L"B", L"C"}},
      {L"A,,C", {L"A", L"", L"C"}},
      {L"A,", {L"A", L""}},
      {L",", {L"", L""}},
      {L" a , b ", {L" a ", L" b "}},
      {L"\"x,y\",z", {L"x,y", L"z"}},
      {L"a", {L"a"}},
      {L"\"a\"", {L"a"}},
      {L"a,\"b\"", {L"a", L"b"}},
      {L"a,\"b,c\"", {L"a", L"b,c"}},
      {L"a,\"b", {L"a", L"\"b"}},        // a single quote is not stripped
      {L"\"a\"b,c", {L"a", L"", L"c"}},  // the b after the closing quote is dropped
      {L"\"a\"b\"c\",d", {L"a", L"c", L"d"}},
      {L"x\"a,b\"y,c",
       {L"\"a,b", L"", L"c"}},  // a quote inside a field: the ends go, not the quotes
      {L"\"\",\"\"", {L"", L""}},
      {L"\"a,b\"", {L"a,b"}},
      {L"x\"a,b\"", {L"\"a,b"}},           // the closing quote ends the line: both ends go
      {L"\"a,\"b\",c\"", {L"a,", L",c"}},  // a quoted text cannot hold a quote
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(c.line)));
    std::wstring line = c.line;
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

// The splitter's steps taken literally, shortening the line field by field. Nothing for a line that
// never ends.
std::optional<std::vector<std::wstring>> SplitStepByStep(std::wstring vLine) {
  std::vector<std::wstring> fields;
  if (vLine.empty()) return fields;
  constexpr auto kNone = std::wstring::npos;
  const auto without_ends = [](const std::wstring& text) {
    return text.substr(1, text.size() - 2);
  };
  fields.emplace_back();
  while (vLine.find(L',') != kNone) {
    const std::size_t comma = vLine.find(L',');
    const std::size_t quote = vLine.find(L'"');
    if (quote == kNone || quote > comma) {
      fields.push_back(vLine.substr(0, comma));
      vLine.erase(0, comma + 1);
      continue;
    }
    const std::size_t closing = vLine.find(L'"', quote + 1);
    if (closing == kNone) return std::nullopt;
    if (closing == vLine.size() - 1) {
      vLine = without_ends(vLine);
      break;
    }
    fields.push_back(without_ends(vLine.substr(0, closing + 1)));
    vLine.erase(0, closing + 2);
  }
  const std::size_t quote = vLine.find(L'"');
  if (quote != kNone && vLine.find(L'"', quote + 1) != kNone) vLine = without_ends(vLine);
  fields.push_back(vLine);
  return fields;
}

TEST_F(GeneralFunctionsTest, PSplitAgreesWithItsStepsOnEveryShortLine) {
  constexpr wchar_t kCharacters[] = {L'a', L',', L'"'};
  constexpr int kLongest = 9;
  int combinations = 1;
  for (int length = 0; length <= kLongest; ++length, combinations *= 3) {
    for (int code = 0; code < combinations; ++code) {
      std::wstring line;
      for (int rest = code, i = 0; i < length; ++i, rest /= 3) line += kCharacters[rest % 3];
      EndingPump pump(1);
      m_shared.objEventPump = &pump;
      const std::wstring whole = line;
      std::optional<std::vector<std::wstring>> fields;
      try {
        fields = PSplit(line);
      } catch (const ProcessEnding&) {
        fields.reset();
      }
      ASSERT_EQ(fields, SplitStepByStep(whole)) << testing::PrintToString(whole);
      if (fields) {
        ASSERT_EQ(PSplitCount(whole), fields->empty() ? 0 : fields->size() - 1);
      }
    }
  }
}

TEST_F(GeneralFunctionsTest, PSplitOfAnUnclosedQuoteEndsOnlyThroughDoEvents) {
  EndingPump pump(1000);
  m_shared.objEventPump = &pump;
  for (const wchar_t* const text : {L"\"a,b", L"x,\"a,b", L"\"x\",y\",z"}) {
    std::wstring line = text;
    EXPECT_THROW(PSplit(line), ProcessEnding);
    pump = EndingPump(1000);
    EXPECT_THROW(PSplitCount(line), ProcessEnding);
    pump = EndingPump(1000);
  }
  EXPECT_TRUE(m_prompt.messages.empty());
}

// A million fields; the quadratic way would take hours.
TEST_F(GeneralFunctionsTest, PSplitOfAHugeLine) {
  std::wstring line;
  for (int i = 0; i < 1'000'000; ++i) line += i % 2 == 0 ? L"0123456789," : L"\"a,b\",";
  const auto fields = PSplit(line);
  ASSERT_EQ(fields.size(), 1'000'002U);
  EXPECT_EQ(fields[1'000'000], L"a,b");
}

TEST_F(GeneralFunctionsTest, ErrorReportTellsNumberAndDescription) {
  const std::vector<std::pair<std::exception_ptr, std::wstring>> cases = {
      {std::make_exception_ptr(text::RuntimeError(3045, L"Could not use file.")),
       L"3045: Could not use file."},
      {std::make_exception_ptr(std::bad_alloc()), L"7: Out of memory"},
      {std::make_exception_ptr(std::runtime_error("odd \xC3\xA9")), L"5: odd \u00E9"},
      {std::make_exception_ptr(1), L"51: Internal error"},
  };
  for (const auto& [error, text] : cases) {
    m_prompt.messages.clear();
    try {
      std::rethrow_exception(error);
    } catch (...) {
      ShowErrorMessage(L"clsX.Do (Sub)");
    }
    ASSERT_EQ(m_prompt.messages.size(), 1U);
    EXPECT_EQ(m_prompt.messages[0].text,
              L"Error!\r\nDetails:\r\n\r\nProcedure = clsX.Do (Sub)\r\nError = " + text);
    EXPECT_EQ(m_prompt.messages[0].caption, L"Title");
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
  EXPECT_TRUE(m_prompt.messages.empty());
}

TEST_F(GeneralFunctionsTest, ShowMessageUsesTheApplicationTitleForNone) {
  ShowMessage(L"text", L"");
  ShowMessage(L"text", L"own");
  EXPECT_THAT(m_prompt.messages,
              ElementsAre(test_support::RecordingPrompt::Shown{L"text", L"Title"},
                          test_support::RecordingPrompt::Shown{L"text", L"own"}));
}

TEST(GeneralFunctionsNullTest, NullGivesTheDefaultAndNonsenseZero) {
  const text::ScopedLocale locale(kEnglish);
  const text::Variant null;
  EXPECT_EQ(NullToString(null), L"");
  EXPECT_EQ(NullToString(null, L"none"), L"none");
  EXPECT_EQ(NullToString(1.5), L"1.5");
  EXPECT_TRUE(NullToBoolean(null, true));
  EXPECT_FALSE(NullToBoolean(L"perhaps", true));
  EXPECT_TRUE(NullToBoolean(L"true"));
  EXPECT_EQ(NullToLong(null, 7), 7);
  EXPECT_EQ(NullToLong(L"x", 7), 0);
  EXPECT_EQ(NullToLong(L"1e10", 7), 0);
  EXPECT_EQ(NullToDouble(L"1,234.5"), 1234.5);
  EXPECT_EQ(NullToInteger(40000), 0);
  EXPECT_EQ(NullToByte(L"255"), 255);
  EXPECT_EQ(NullToByte(256), 0);
  EXPECT_EQ(NullToByte(-1), 0);
}

TEST(GeneralFunctionsNumberTest, FilesUseAFullStopUnderEveryLocale) {
  for (const text::Locale locale : {kEnglish, kDutch}) {
    const text::ScopedLocale scope(locale);
    EXPECT_EQ(DecimalSeparator(), locale.decimal_mark);
    EXPECT_EQ(ParseDecimal(L" 1.5 "), 1.5);
    EXPECT_EQ(ParseDecimal(L"-0.25"), -0.25);
    EXPECT_EQ(ParseDecimal(L""), 0);
    EXPECT_EQ(ParseDecimal(L"\t1"), 0);
    EXPECT_EQ(ParseDecimal(L"1.2.3"), 0);
    EXPECT_EQ(FormatDecimal(1234.5), L"1234.5");
    EXPECT_EQ(FormatDecimalValue(text::Null{}), L"");
    EXPECT_EQ(FormatDecimalValue(text::Currency{12500}), L"1.25");
  }
  const text::ScopedLocale scope(kEnglish);
  EXPECT_EQ(ParseDecimal(L"1,234.5"), 1234.5);
}

TEST(GeneralFunctionsNumberTest, ExtractNumberKeepsDigitsAndMinusSigns) {
  EXPECT_EQ(ExtractNumber(L"-42 kg"), -42);
  EXPECT_EQ(ExtractNumber(L"12-3"), 0);
  EXPECT_EQ(ExtractNumber(L"17P"), 17);
  EXPECT_EQ(ExtractNumber(L"1.5"), 15);
  EXPECT_EQ(ExtractNumber(L""), 0);
  EXPECT_EQ(ExtractNumber(L"99999999999"), 0);
  EXPECT_TRUE(IsTrueValue(-1));
  EXPECT_FALSE(IsTrueValue(1));
}

TEST(GeneralFunctionsPathTest, BothSeparatorsAreUnderstood) {
  EXPECT_EQ(GetFolder(L"C:\\a\\b.pt"), L"C:\\a");
  EXPECT_EQ(GetFileName(L"C:\\a\\b.pt"), L"b.pt");
  EXPECT_EQ(GetFolder(L"b.pt"), L"");
  EXPECT_EQ(GetFileName(L"b.pt"), L"");
  EXPECT_EQ(GetFileName(L"a\\"), L"");
  EXPECT_EQ(AddBackslash(L"a\\"), L"a\\");
  EXPECT_EQ(AddBackslash(L"a"), std::wstring(L"a") + files::Separator());
  EXPECT_EQ(GetExtension(L"update.prc.bak"), L"bak");
  EXPECT_EQ(GetExtension(L"update"), L"");
#ifndef _WIN32
  EXPECT_EQ(GetFolder(L"/a\\b/c.pt"), L"/a\\b");
  EXPECT_EQ(GetFileName(L"/a/b\\c.pt"), L"c.pt");
  EXPECT_EQ(AddBackslash(L"/a/"), L"/a/");
  EXPECT_EQ(GetShortPath(L"/a long name"), L"/a long name");
#endif
}

TEST(GeneralFunctionsTextTest, LinesAndControlCharacters) {
  EXPECT_EQ(AppendLine(L"", L"x"), L"x");
  EXPECT_EQ(AppendLine(L"a", L""), L"a");
  EXPECT_EQ(AppendLine(L"a", L"x"), L"a\r\nx");
  EXPECT_EQ(StripControlChars(L"a\tb\r\n\x1F c\x7F"), L"ab c\x7F");
}

}  // namespace
