// The start of the program: what is set when, and what ends it.
#include "app/modMain.h"

#include <gmock/gmock.h>

#include "tests/support/surface_test.h"

namespace {

using testing::ElementsAre;

constexpr wchar_t kBuiltInTitle[] = L"Orvane Wizard Prijsaanpassingen";

// A language that keeps what it was asked to load, and what the shared record held by then.
class WatchedLanguage final : public test_support::NumberedTexts {
 public:
  std::int16_t LoadLanguageFile(const std::wstring& name) override {
    loaded.push_back(name);
    title = Shared().strApplicationTitle;
    EXPECT_EQ(Shared().objLanguage, this);
    return status;
  }

  std::int16_t status = language::kLoaded;
  std::vector<std::wstring> loaded;
  std::wstring title;
};

class modMainTest : public test_support::SurfaceTest {
 protected:
  WatchedLanguage language;
};

TEST_F(modMainTest, TheRecordIsFilledInOrder) {
  settings.strVersionSubKey.clear();
  MachineSetting(L"PAPUPDATERLANGUAGE") = L"french.lng";
  MachineSetting(L"PAPUPDATERWELCOME") = L"C:\\welcome.txt";
  EXPECT_TRUE(PrepareWizard(language));
  EXPECT_EQ(language.title, kBuiltInTitle);
  EXPECT_THAT(language.loaded, ElementsAre(L"french.lng"));
  EXPECT_EQ(settings.strVersionSubKey, L"3.2\\PAP32\\");
  EXPECT_EQ(settings.strWelcomeText, L"C:\\welcome.txt");
  EXPECT_EQ(settings.strApplicationTitle, L"#0");
  EXPECT_THAT(Boxes(), testing::IsEmpty());
}

TEST_F(modMainTest, OnlyStatusOneEndsTheProgram) {
  language.status = language::kNotLoaded;
  EXPECT_FALSE(PrepareWizard(language));
  ASSERT_EQ(prompt.messages.size(), 1U);
  EXPECT_EQ(prompt.messages[0].caption, kBuiltInTitle);
  EXPECT_THAT(Boxes(), ElementsAre("Languagefile could not be loaded!"));
  for (const int status : {0, 2, -1, 256}) {
    language.status = static_cast<std::int16_t>(status);
    EXPECT_TRUE(PrepareWizard(language)) << status;
  }
  EXPECT_THAT(Boxes(), testing::IsEmpty());
}

// Each read tells so; the program goes on with what it has by itself.
TEST_F(modMainTest, SettingsThatCannotBeReadDoNotEndTheProgram) {
  registry.failure = text::RuntimeError(321, L"Invalid file format");
  EXPECT_TRUE(PrepareWizard(language));
  EXPECT_THAT(language.loaded, ElementsAre(L""));
  EXPECT_EQ(Boxes().size(), 2U);
}

}  // namespace
