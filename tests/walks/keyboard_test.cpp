// The wizard by keyboard alone.
#include "tests/walks/window_walk.h"

namespace walks {
namespace {

using testing::Each;
using testing::StartsWith;

class KeyboardTest : public WindowWalk {
 protected:
  static void AwaitStep(const std::string& title) {
    Await("the step '" + title + "'", [&] { return AtRest() && Title() == title; });
  }
  // Whether every row of the list begins so.
  static void AwaitRows(const std::string& mark) {
    Await("only rows with '" + mark + "'", [&] {
      const std::vector<std::string> rows = Rows();
      return AtRest() && testing::Matches(Each(StartsWith(mark)))(rows);
    });
  }
};

TEST_F(KeyboardTest, FromTheWelcomeToTheFinish) {
  Walk([&] {
    Keys("Return");
    AwaitStep(kTarget);
    EXPECT_TRUE(Ask<bool>([] { return IsOn(kBackup); }));
    Keys("alt+m");
    Await("no backup", [] { return AtRest() && !IsOn(kBackup); });
    Keys("alt+r");
    AwaitStep(kWelcome);
    Keys("alt+n");
    AwaitStep(kTarget);
    Keys("Return");
    AwaitStep(kProcessed);
    Keys("Return");
    AwaitStep(kDownload);
    Keys("Down");
    Await("not to check", [] { return AtRest() && IsOn(kDoNotCheck); });
    Keys("Return");
    AwaitStep(kSelect);
    AwaitRows("x ");
    Keys("Home shift+End space");
    AwaitRows("  ");
    Keys("Return");
    ExpectStep(kSelect, "<< Previous (Next >>) Close");
    Keys("Home space");
    Await("a row to apply", [] { return AtRest() && Rows().front().starts_with("x "); });
    Keys("Return");
    AwaitStep(kImport);
    AwaitRest();
    ExpectStep(kImport, "Copy << Previous Close");
    Keys("Escape");
    Keys("Return");
  });
  EXPECT_THAT(Register(), testing::ElementsAre("20040315_VELDHAVEN_PLAAT.PRC"));
  EXPECT_EQ(Setting("Backup"), "False");
}

TEST_F(KeyboardTest, EscapeClosesTheWizard) {
  Walk([&] {
    Keys("Return");
    AwaitStep(kTarget);
    Keys("Escape");
  });
  EXPECT_EQ(Setting("PTLocation"), "(none)");
}

}  // namespace
}  // namespace walks
