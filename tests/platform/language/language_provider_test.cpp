// Where language files are found, what counts as one, and what happens when a text is missing.
#include "platform/language/language_provider.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/files/paths.h"
#include "platform/text/runtime_error.h"
#include "tests/support/temporary_folder.h"

namespace language {
namespace {

using test_support::TemporaryFolder;

constexpr char kDutch[] = "language file: Nederlands\n1 text: een\n2 text: twee\n2 tooltip: tip\n";

TEST(LanguageProviderTest, MissingTextsComeFromDutchAndTheProgramsFolderGoesBeforeLang) {
  const TemporaryFolder folder;
  folder.Write("lang/dutch.lng", kDutch);
  folder.Write("lang/x.lng", "language file: X\r\n1 text: in lang\r\n2 message: said\r\n");
  FileLanguageProvider provider(folder.path());
  const auto first_text = [&](const std::wstring& name) {
    EXPECT_EQ(provider.LoadLanguageFile(name), kLoaded);
    return provider.GetText(1);
  };
  EXPECT_EQ(first_text(L"x.lng"), L"in lang");
  EXPECT_EQ(provider.GetText(2), L"twee");
  EXPECT_EQ(provider.GetToolTipText(2), L"tip");
  EXPECT_EQ(provider.GetMessageText(2), L"said");
  EXPECT_EQ(provider.GetText(3), L"");
  folder.Write("x.lng", "language file: X\n1 text: beside\n");
  EXPECT_EQ(first_text(L"x.lng"), L"beside");
  const auto elsewhere = folder.Write("far/away.lng", "language file: X\n1 text: absolute\n");
  EXPECT_EQ(first_text(files::ToText(elsewhere)), L"absolute");
  EXPECT_EQ(first_text(L""), L"een");
  EXPECT_EQ(provider.GetMessageText(2), L"");
}

TEST(LanguageProviderTest, StatusTellsWhyAndTextsStay) {
  const TemporaryFolder folder;
  FileLanguageProvider provider(folder.path());
  EXPECT_EQ(provider.LoadLanguageFile(L""), kNotLoaded);
  EXPECT_EQ(provider.GetText(1), L"");
  folder.Write("strange.lng", "MZ\x90");
  EXPECT_EQ(provider.LoadLanguageFile(L"strange.lng"), kNotLoaded) << "no Dutch to fall back on";

  folder.Write("lang/dutch.lng", kDutch);
  folder.Write("x.lng", "language file: X\n1 text: x\n");
  ASSERT_EQ(provider.LoadLanguageFile(L"x.lng"), kLoaded);
  EXPECT_EQ(provider.LoadLanguageFile(L"missing.lng"), kNotLoaded);
  EXPECT_EQ(provider.LoadLanguageFile(L"lang"), kNotLoaded);
  EXPECT_EQ(provider.LoadLanguageFile(L"005"), kNotLoaded);
  EXPECT_EQ(provider.GetText(1), L"x");

  for (const char* const bytes : {"", "\n# nothing\n", "MZ\x90", "1 text: no header\n"}) {
    folder.Write("strange.lng", bytes);
    EXPECT_EQ(provider.LoadLanguageFile(L"strange.lng"), kUnknownFormat);
    EXPECT_EQ(provider.GetText(1), L"een");
  }
}

TEST(LanguageFileTest, ABadLineCostsOnlyItself) {
  const TemporaryFolder folder;
  const auto path = folder.Write("x.lng",
                                 "\xEF\xBB\xBF# comment\n"
                                 "language file:  \xC3\x89lan \n"
                                 "  7 text:  a: b # c /p %s \t\r\n"
                                 "no colon\n"
                                 "-1 text: negative\n"
                                 "99999999999 text: too large\n"
                                 "8 caption: unknown kind\n"
                                 "7 text: again\n"
                                 "9 text: last \xE2\x82\xAC");
  const LanguageTexts texts = ReadLanguageFile(path);
  EXPECT_EQ(texts.name, L"\u00C9lan");
  EXPECT_EQ(texts.entries.at(7).text, L"a: b # c /p %s");
  EXPECT_EQ(texts.entries.at(9).text, L"last \u20AC");
  EXPECT_EQ(texts.entries.size(), 2U);
  EXPECT_THAT(texts.problems,
              testing::ElementsAre("line 4: no colon", "line 5: no number", "line 6: no number",
                                   "line 7: neither text, tooltip nor message",
                                   "line 8: given twice; the first one stands"));
}

}  // namespace
}  // namespace language
