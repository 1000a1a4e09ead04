// The shared record: what is in force with and without a scope.
#include "app/modShared.h"

#include <gtest/gtest.h>

#include "app/modGeneralFunctions.h"
#include "platform/files/paths.h"
#include "tests/support/recording_prompt.h"

namespace {

TEST(SharedSettingsTest, ScopesNestAndEnd) {
  SharedSettings outer;
  SharedSettings inner;
  const SharedSettingsScope outer_scope(outer);
  {
    const SharedSettingsScope inner_scope(inner);
    EXPECT_EQ(&Shared(), &inner);
  }
  EXPECT_EQ(&Shared(), &outer);
}

TEST(SharedSettingsTest, TheProgramsFolderIsTheSystemsUnlessOneIsGiven) {
  EXPECT_TRUE(files::FolderExists(ProgramFolder()));
  SharedSettings given;
  given.strProgramFolder = L"elsewhere";
  const SharedSettingsScope scope(given);
  EXPECT_EQ(ProgramFolder(), L"elsewhere");
}

TEST(SharedSettingsTest, WithoutAnInstalledPromptMessagesReachStandardError) {
  testing::internal::CaptureStderr();
  ShowMessage(L"lost? \u00E9", L"");
  EXPECT_FALSE(Shared().objPrompt->AskYesNo(L"sure?", L""));
  DoEvents();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "lost? \xC3\xA9\nsure?\n");
  EXPECT_EQ(LanguageText(0), L"");
  EXPECT_GT(Shared().objClock->Now(), 45000);
}

}  // namespace
