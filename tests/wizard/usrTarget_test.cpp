// The target page: which product table it offers, and when it forgets what was typed.
#include "wizard/usrTarget.h"

#include <gmock/gmock.h>

#include "app/modMain.h"
#include "platform/files/paths.h"
#include "tests/support/memory_registry.h"
#include "tests/support/scripted_file_dialog.h"
#include "tests/support/surface_test.h"

namespace {

using registry::RootKey;
using testing::ElementsAre;

constexpr wchar_t kOwnKey[] = L"Software\\Velkor Software\\Orvane\\3.2\\PAP32\\";

class usrTargetTest : public test_support::SurfaceTest {
 protected:
  usrTargetTest() {
    settings.objRegistry = &registry;
    settings.objFileDialog = &dialog;
    settings.strVersionSubKey = L"3.2\\PAP32\\";
    registry.values[{RootKey::kCurrentUser, kSettingsKey, L"ProductTable"}] = L"default.pt";
    page.SetStepText = [this](const std::wstring& vCaption) { heard.push_back(vCaption); };
    page.AanzettenVolgende = [this](bool vAan) { heard.push_back(vAan ? L"on" : L"off"); };
  }
  void Store(const std::wstring& vName, const std::wstring& vText) {
    registry.values[{RootKey::kCurrentUser, kOwnKey, vName}] = vText;
  }

  test_support::MemoryRegistry registry;
  test_support::ScriptedFileDialog dialog;
  usrTarget page;
  std::vector<std::wstring> heard;  // the events, in their order
};

TEST_F(usrTargetTest, TheFirstVisitTakesWhatIsStored) {
  const struct {
    const char* name;
    std::optional<std::wstring> location;
    std::optional<std::wstring> backup;
    std::wstring path;
    bool make_backup;
  } cases[] = {
      {"nothing stored", {}, {}, L"default.pt", true},
      {"empty texts", L"", L"", L"default.pt", true},
      {"both", L"mine.pt", L"False", L"mine.pt", false},
      {"any other word", {}, L"no", L"default.pt", true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    registry.values.erase({RootKey::kCurrentUser, kOwnKey, L"PTLocation"});
    if (c.location) Store(L"PTLocation", *c.location);
    if (c.backup) Store(L"Backup", *c.backup);
    usrTarget fresh;
    fresh.Init();
    EXPECT_EQ(fresh.ptLocation(), c.path);
    EXPECT_EQ(fresh.MakeBackup(), c.make_backup);
  }
}

TEST_F(usrTargetTest, EveryVisitLetsTheUserGoOnAndKeepsWhatWasTyped) {
  page.Init();
  EXPECT_THAT(heard, ElementsAre(L"#42 #10", L"on"));
  page.txt_PTLocation.Type(L"typed.pt");
  page.chkBackup.Toggle();
  Store(L"PTLocation", L"stored since.pt");
  page.Init();
  EXPECT_THAT(heard, ElementsAre(L"#42 #10", L"on", L"#42 #10", L"on"));
  EXPECT_EQ(page.ptLocation(), L"typed.pt");
  EXPECT_FALSE(page.MakeBackup());
  page.cmdReset.Press();
  EXPECT_EQ(page.ptLocation(), L"default.pt") << "the host product's, not the stored one";
}

TEST_F(usrTargetTest, TipsAreOneLine) {
  struct Broken final : test_support::NumberedTexts {
    std::wstring GetToolTipText(std::int32_t vNumber) const override {
      return L"tip\\n of " + std::to_wstring(vNumber) + L"\\n";
    }
  } broken;
  settings.objLanguage = &broken;
  page.Init();
  EXPECT_EQ(page.cmdReset.ToolTip(), L"tip of 1012");
}

TEST_F(usrTargetTest, TheFileDialogBeginsWithAFileThatExists) {
  page.Init();
  page.cmdSelPT.Press();
  EXPECT_EQ(page.ptLocation(), L"default.pt") << "the user thought better of it";
  dialog.answer = files::ToText(folder.Write("O'Neill \xC3\xA9.pt", ""));
  page.cmdSelPT.Press();
  EXPECT_EQ(page.ptLocation(), *dialog.answer);
  page.cmdSelPT.Press();
  ASSERT_EQ(dialog.requests.size(), 3U);
  EXPECT_EQ(dialog.requests[0].file, L"");
  EXPECT_EQ(dialog.requests[2].file, *dialog.answer);
  EXPECT_EQ(dialog.requests[2].title, L"#49");
  EXPECT_EQ(dialog.requests[2].filter, L"#48");
}

// The settings cannot be read: each read tells so itself, and the page is there with its defaults.
TEST_F(usrTargetTest, AnUnreadableRegistryStillLeavesAPage) {
  registry.failure = text::RuntimeError(321, L"Invalid file format");
  settings.strProgramFolder = L"folder";
  page.Init();
  EXPECT_THAT(heard, ElementsAre(L"#42 #10", L"on"));
  EXPECT_THAT(page.ptLocation(), testing::EndsWith(L"Orv.pt"));
  EXPECT_TRUE(page.MakeBackup());
  using Shown = test_support::RecordingPrompt::Shown;
  const Shown box = {
      L"#104\r\n\r\nProcedure = modSharedRegistryFuncties.fGetstring (Function)\r\n"
      L"Error = 321: Invalid file format",
      L"Title"};
  EXPECT_THAT(prompt.messages, ElementsAre(box, box, box, box))
      << "the user's product table and the machine's, PTLocation, Backup";
}

}  // namespace
