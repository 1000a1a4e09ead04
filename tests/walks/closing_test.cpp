// Closing the wizard in the middle of its work: the program ends there, and leaves a product table
// that is sound and free, and no file that it had made for the while.
#include <atomic>

#include "platform/files/paths.h"
#include "tests/walks/window_walk.h"

namespace walks {
namespace {

namespace fs = std::filesystem;

using testing::HasSubstr;

class ClosingTest : public WindowWalk {
 protected:
  static void CloseWhen(const std::string& what, const std::function<bool()>& there) {
    Await(what, [&] {
      if (!there()) return false;
      ClickCloseBox();
      return true;
    });
  }
};

TEST_F(ClosingTest, InALineThatNeverEnds) {
  OfferOnly("[NEW SUPPLIER]\r\n\"A field that is never closed\r\n");
  Walk([&] {
    GoToSelect();
    Begin(kNext);
    CloseWhen("the import", [] { return Title() == kImport && !Rows().empty(); });
  });
  ExpectCleanEnd();
}

TEST_F(ClosingTest, InAnImport) {
  OfferLongUpdate();
  Walk([&] {
    GoToSelect();
    Begin(kNext);
    CloseWhen("an import under way", AmidImport);
  });
  ExpectCleanEnd();
}

// The window gets its turn there only when the last one is long enough ago.
TEST_F(ClosingTest, BetweenCompactionAndCopy) {
  Walk([&] {
    GoToSelect();
    CheckOnly({0});
    Begin(kNext);
    bool closed = false;
    for (int attempt = 0; !closed; ++attempt) {
      ASSERT_LT(attempt, 50) << "the window never gets its turn there";
      bool finished = false;
      Await("the compaction or its end", [&] {
        finished = AtRest() && Title() == kImport;
        closed = !finished && fs::exists(compacted);
        if (closed) ClickCloseBox();
        return closed || finished;
      });
      if (!finished) continue;
      Press(kPrevious);
      CheckOnly({0});
      Begin(kNext);
    }
  });
  ExpectCleanEnd();
}

TEST_F(ClosingTest, IsRefusedWhileFilesAreFetched) {
  std::atomic<bool> go_on = false;
  const auto at_once = answer;
  answer = [&](auto& peer, const std::string& head) {
    while (!go_on && peer.Pause(std::chrono::milliseconds(5))) {
    }
    at_once(peer, head);
  };
  Walk([&] {
    GoTo(kDownload);
    for (const bool list : {true, false}) {
      go_on = false;
      Begin(kNext);
      Await("the transfer", [] { return Buttons() == "(<< Previous) (Next >>) (Close)"; });
      OnWindows(ClickCloseBox);
      ExpectStep(kDownload, "(<< Previous) (Next >>) (Close)");
      go_on = true;
      AwaitRest();
      ExpectStep(kDownload, "<< Previous Next >> Close");
      if (list) {
        EXPECT_FALSE(RowsNow().empty());
      }
    }
    EXPECT_TRUE(fs::exists(updates / "20260302_VELDHAVEN_PROFIEL.PRC"));
    OnWindows(ClickCloseBox);
  });
  EXPECT_EQ(Setting("PTLocation"), "(none)");
}

}  // namespace
}  // namespace walks
