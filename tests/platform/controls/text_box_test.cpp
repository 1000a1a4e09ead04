// Text boxes: what the user may type, and what the page hears of it.
#include "platform/controls/text_box.h"

#include <gtest/gtest.h>

#include "tests/support/counting_observer.h"

namespace {

TEST(TextBoxTest, TypingIsAnEventAndAnAssignmentIsNone) {
  controls::TextBox box;
  test_support::CountingObserver observer;
  box.Observe(&observer);
  std::wstring heard;
  box.Change = [&] { heard += box.Text() + L";"; };
  box.SetText(L"a");
  box.Type(L"ab");
  box.Type(L"ab");
  EXPECT_EQ(heard, L"ab;");
  EXPECT_EQ(observer.Take(), 2);
}

TEST(TextBoxTest, ALockedOneIsNotTypedInto) {
  controls::TextBox box;
  box.SetLocked(true);
  box.Type(L"x");
  EXPECT_EQ(box.Text(), L"");
  box.SetText(L"the program's");
  EXPECT_EQ(box.Text(), L"the program's");
  box.SetLocked(false);
  box.SetEnabled(false);
  box.Type(L"x");
  EXPECT_EQ(box.Text(), L"the program's");
}

}  // namespace
