// Message boxes.
#include <wx/app.h>
#include <wx/button.h>
#include <wx/clipbrd.h>
#include <wx/dataobj.h>
#include <wx/datetime.h>
#include <wx/dialog.h>
#include <wx/uiaction.h>

#include "tests/platform/wx/window_test.h"

namespace {

// The dialog that waits for the user, once it is there.
wxDialog* ShownDialog() {
  for (wxWindow* const window : wxTopLevelWindows) {
    auto* const dialog = dynamic_cast<wxDialog*>(window);
    if (dialog != nullptr && dialog->IsShown()) return dialog;
  }
  return nullptr;
}

class DialogsTest : public WindowTest {
 protected:
  // What the user does as soon as a dialog is there.
  static void InDialog(const std::function<void(wxDialog&)>& user) {
    wxTheApp->CallAfter([user] {
      ASSERT_TRUE(Wait([] { return ShownDialog() != nullptr; }));
      Settle();
      user(*ShownDialog());
    });
  }
};

TEST_F(DialogsTest, QuestionIsAnsweredByItsButtons) {
  windows.SetTexts({.yes = L"&Ja", .no = L"&Nee"});
  bool answer = false;
  form.next.Click = [&] {
    for (const bool expected : {true, false}) {
      InDialog([expected](wxDialog& dialog) {
        EXPECT_EQ("Orvane", dialog.GetTitle());
        wxWindow* const button = dialog.FindWindow(expected ? wxID_YES : wxID_NO);
        EXPECT_EQ(expected ? "&Ja" : "&Nee", button->GetLabel());
        Click(*button);
      });
      answer = windows.Prompt().AskYesNo(L"Shall I?", L"Orvane");
      EXPECT_EQ(expected, answer);
    }
    InDialog([](wxDialog&) { Key(WXK_ESCAPE); });
    EXPECT_FALSE(windows.Prompt().AskYesNo(L"Shall I?", L"Orvane"));
  };
  Run([&] { Click(WindowOf<wxWindow>(form.next)); });
}

TEST_F(DialogsTest, MessageBeforeThereIsAFormCanBeClosed) {
  EXPECT_EQ(1, windows.Run([&] {
    InDialog([](wxDialog& dialog) { Click(*dialog.FindWindow(wxID_OK)); });
    windows.Prompt().ShowMessage(L"No texts", L"Orvane");
    return false;
  }));
}

TEST_F(DialogsTest, HeldKeyThatBeganTheWorkDoesNotAnswer) {
  form.next.Click = [&] {
    InDialog([](wxDialog& dialog) {
      wxUIActionSimulator hand;
      const auto end = wxDateTime::UNow() + wxTimeSpan::Seconds(1);
      Wait([&] { return wxDateTime::UNow() > end; });
      EXPECT_TRUE(dialog.IsShown());
      hand.KeyUp(WXK_RETURN);
      Key(WXK_RETURN);
    });
    EXPECT_TRUE(windows.Prompt().AskYesNo(L"Shall I?", L"Orvane"));
  };
  Run([&] {
    wxUIActionSimulator hand;
    hand.KeyDown(WXK_RETURN);
    Settle();
  });
}

TEST_F(DialogsTest, MessageIsCopiedAsAWhole) {
  form.next.Click = [&] {
    InDialog([](wxDialog&) {
      Key('C', wxMOD_CONTROL);
      wxTextDataObject copied;
      ASSERT_TRUE(wxTheClipboard->Open());
      wxTheClipboard->GetData(copied);
      wxTheClipboard->Close();
      wxString text = copied.GetText();
      text.Replace("\r", "");
      EXPECT_EQ("Orvane\n\nCannot open\nOrv.pt", text);
      Key(WXK_RETURN);
    });
    windows.Prompt().ShowMessage(L"Cannot open\r\nOrv.pt", L"Orvane");
  };
  Run([&] { Click(WindowOf<wxWindow>(form.next)); });
}

TEST_F(DialogsTest, LongMessageFitsTheScreen) {
  std::wstring many_lines;
  for (int line = 0; line < 500; ++line) many_lines += L"A line of a long message\r\n";
  std::wstring path = L"Cannot open C:\\";
  for (int folder = 0; folder < 60; ++folder) path += L"folder\\";
  form.next.Click = [&] {
    for (const std::wstring& text : {many_lines, path, std::wstring(400, L'W')}) {
      InDialog([](wxDialog& dialog) {
        EXPECT_LT(dialog.GetSize().y, wxGetDisplaySize().y / 2);
        EXPECT_LT(dialog.GetSize().x, wxGetDisplaySize().x / 2);
        Key(WXK_RETURN);
      });
      windows.Prompt().ShowMessage(text, L"Orvane");
    }
  };
  Run([&] { Click(WindowOf<wxWindow>(form.next)); });
}

}  // namespace
