// The start of the program: what is set when, and what ends it.
#include "app/modMain.h"

#include <gmock/gmock.h>

#include "app/modShared.h"
#include "tests/support/memory_registry.h"
#include "tests/support/numbered_texts.h"
#include "tests/support/recording_prompt.h"

namespace {

using registry::RootKey;
using testing::ElementsAre;
using Shown = test_support::RecordingPrompt::Shown;

constexpr wchar_t kMachineKey[] = L"Software\\Velkor Software\\Orvane\\3.2\\Settings\\";
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
  std::wstring GetText(std::int32_t number) const override {
    return loaded.empty() ? L"" : NumberedTexts::GetText(number);
  }

  std::int16_t status = language::kLoaded;
  std::vector<std::wstring> loaded;
  std::wstring title;
};

class modMainTest : public testing::Test {
 protected:
  modMainTest() {
    shared.objPrompt = &prompt;
    shared.objRegistry = &registry;
  }
  void Store(const wchar_t* vName, registry::Value vValue) {
    registry.values[{RootKey::kLocalMachine, kMachineKey, vName}] = std::move(vValue);
  }

  test_support::RecordingPrompt prompt;
  test_support::MemoryRegistry registry;
  WatchedLanguage language;
  SharedSettings shared;
  SharedSettingsScope scope{shared};
};

TEST_F(modMainTest, TheRecordIsFilledInOrder) {
  Store(L"PAPUPDATERLANGUAGE", L"french.lng");
  Store(L"PAPUPDATERWELCOME", L"C:\\welcome.txt");
  EXPECT_TRUE(PrepareWizard(language));
  EXPECT_EQ(language.title, kBuiltInTitle);
  EXPECT_THAT(language.loaded, ElementsAre(L"french.lng"));
  EXPECT_EQ(shared.strVersionSubKey, L"3.2\\PAP32\\");
  EXPECT_EQ(shared.strLanguageFile, L"french.lng");
  EXPECT_EQ(shared.strWelcomeText, L"C:\\welcome.txt");
  EXPECT_EQ(shared.strApplicationTitle, L"#0");
  EXPECT_THAT(prompt.messages, testing::IsEmpty());
}

TEST_F(modMainTest, OnlyStatusOneEndsTheProgram) {
  language.status = language::kNotLoaded;
  EXPECT_FALSE(PrepareWizard(language));
  EXPECT_THAT(prompt.messages,
              ElementsAre(Shown{L"Languagefile could not be loaded!", kBuiltInTitle}));
  EXPECT_EQ(shared.strApplicationTitle, kBuiltInTitle);

  prompt.messages.clear();
  for (const int status : {0, 2, -1, 256}) {
    language.loaded.clear();
    language.status = static_cast<std::int16_t>(status);
    EXPECT_TRUE(PrepareWizard(language)) << status;
    EXPECT_EQ(shared.strApplicationTitle, L"#0");
  }
  EXPECT_THAT(prompt.messages, testing::IsEmpty());
}

// Each read tells so; the program goes on with what it has by itself.
TEST_F(modMainTest, SettingsThatCannotBeReadDoNotEndTheProgram) {
  registry.failure = text::RuntimeError(321, L"Invalid file format");
  EXPECT_TRUE(PrepareWizard(language));
  EXPECT_THAT(language.loaded, ElementsAre(L""));
  const Shown box = {
      L"\r\n\r\nProcedure = modSharedRegistryFuncties.fGetstring (Function)\r\n"
      L"Error = 321: Invalid file format",
      kBuiltInTitle};
  EXPECT_THAT(prompt.messages, ElementsAre(box, box));
}

}  // namespace
