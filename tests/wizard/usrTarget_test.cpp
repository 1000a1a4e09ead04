// The target page: which product table it offers, and when it forgets what was typed.
#include "wizard/usrTarget.h"

#include <gmock/gmock.h>

#include "platform/files/paths.h"
#include "tests/support/scripted_file_dialog.h"
#include "tests/support/surface_test.h"

namespace {

using testing::ElementsAre;

class usrTargetTest : public test_support::SurfaceTest {
 protected:
  usrTargetTest() {
    settings.objFileDialog = &dialog;
    MachineSetting(L"ProductTable") = L"default.pt";
    page.SetStepText = [this](const std::wstring& vCaption) { heard.push_back(vCaption); };
    page.AanzettenVolgende = [this](bool vAan) { heard.push_back(vAan ? L"on" : L"off"); };
  }

  test_support::ScriptedFileDialog dialog;
  usrTarget page;
  std::vector<std::wstring> heard;  // the events, in their order
};

TEST_F(usrTargetTest, TheFirstVisitTakesWhatIsStored) {
  const auto expect_taken = [](const wchar_t* vLocation, bool vBackup) {
    usrTarget fresh;
    fresh.Init();
    EXPECT_EQ(fresh.ptLocation(), vLocation);
    EXPECT_EQ(fresh.MakeBackup(), vBackup);
  };
  expect_taken(L"default.pt", true);
  Stored(L"PTLocation") = L"";
  Stored(L"Backup") = L"";
  expect_taken(L"default.pt", true);
  Stored(L"PTLocation") = L"mine.pt";
  Stored(L"Backup") = L"False";
  expect_taken(L"mine.pt", false);
}

TEST_F(usrTargetTest, EveryVisitLetsTheUserGoOnAndKeepsWhatWasTyped) {
  page.Init();
  EXPECT_THAT(heard, ElementsAre(L"#42 #10", L"on"));
  page.txt_PTLocation.Type(L"typed.pt");
  page.chkBackup.Toggle();
  Stored(L"PTLocation") = L"stored since.pt";
  page.Init();
  EXPECT_THAT(heard, ElementsAre(L"#42 #10", L"on", L"#42 #10", L"on"));
  EXPECT_EQ(page.ptLocation(), L"typed.pt");
  EXPECT_FALSE(page.MakeBackup());
  page.cmdReset.Press();
  EXPECT_EQ(page.ptLocation(), L"default.pt") << "the host product's, not the stored one";
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

}  // namespace
