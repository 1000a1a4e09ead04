// The end of the user's session while the wizard is open. After the last answer of its windows
// Windows may kill the program: by then it must have left its work, with a product table that is
// sound and free, and no file that it had made for the while.
#include <windows.h>

#include <algorithm>

#include "tests/walks/window_walk.h"

namespace walks {
namespace {

namespace fs = std::filesystem;

class SessionTest : public WindowWalk {
 protected:
  enum class Order { kFrontFirst, kBackFirst };

  static std::vector<HWND> Windows() {
    std::vector<HWND> windows;
    const auto add = [](HWND window, LPARAM to) -> BOOL {
      DWORD process = 0;
      GetWindowThreadProcessId(window, &process);
      if (process == GetCurrentProcessId()) {
        reinterpret_cast<std::vector<HWND>*>(to)->push_back(window);
      }
      return TRUE;
    };
    EnumWindows(add, reinterpret_cast<LPARAM>(&windows));
    return windows;
  }

  // As the system does it. Returns with the last answer.
  static void EndSession(Order order) {
    std::vector<HWND> windows = Windows();
    if (order == Order::kBackFirst) std::reverse(windows.begin(), windows.end());
    for (const HWND window : windows) {
      EXPECT_EQ(Answer(window, WM_QUERYENDSESSION, 0), 1U) << "the end was refused";
    }
    for (const HWND window : windows) Answer(window, WM_ENDSESSION, 1);
  }

 private:
  static DWORD_PTR Answer(HWND window, UINT message, WPARAM what) {
    constexpr UINT kPatience = 20'000;  // milliseconds
    DWORD_PTR answer = 0;
    SendMessageTimeoutW(window, message, what, 0, SMTO_NORMAL, kPatience, &answer);
    return answer;
  }
};

TEST_F(SessionTest, EndsInAnImport) {
  OfferLongUpdate();
  Walk([&] {
    GoToSelect();
    Begin(kNext);
    Await("an import under way", AmidImport);
    EndSession(Order::kBackFirst);
    ExpectCleanEnd();  // nobody has it open any more
  });
}

TEST_F(SessionTest, EndsInAMessage) {
  Walk([&] {
    GoTo(kTarget);
    Type("C:\\nowhere.pt");
    Begin(kNext);
    Await("a message", [] { return !Message().empty(); });
    EndSession(Order::kFrontFirst);
  });
  EXPECT_EQ(Setting("PTLocation"), "(none)");
}

TEST_F(SessionTest, EndsInTheFileDialogAfterAnotherProgramRefusedOnce) {
  Walk([&] {
    GoTo(kTarget);
    for (const HWND window : Windows()) {
      EXPECT_EQ(SendMessageW(window, WM_QUERYENDSESSION, 0, 0), 1);
      SendMessageW(window, WM_ENDSESSION, 0, 0);
    }
    ExpectStep(kTarget, "Browse... Default << Previous Next >> Close");
    Begin("Browse...");
    Await("the file dialog", [] {
      const std::vector<HWND> all = Windows();
      return std::any_of(all.begin(), all.end(), [](HWND window) {
        wchar_t name[16] = {};
        GetClassNameW(window, name, 16);
        return name == std::wstring(L"#32770") && IsWindowVisible(window);
      });
    });
    EndSession(Order::kFrontFirst);
  });
}

}  // namespace
}  // namespace walks
