// A list and its window, with as many items as a large import shows.
#include <wx/stattext.h>

#include <numeric>

#include "tests/platform/wx/window_test.h"

namespace {

// The text in the middle of an empty list, if there is one.
const wxStaticText* EmptyTextOf(const wxWindow& window) {
  for (const wxWindow* const child : window.GetChildren()) {
    if (const auto* const text = dynamic_cast<const wxStaticText*>(child)) return text;
    if (const wxStaticText* const inside = EmptyTextOf(*child)) return inside;
  }
  return nullptr;
}

// Shows what the list asks its window for.
class ListWindowTest : public WindowTest {
 protected:
  ListWindowTest() {
    form.page.Hold({&list});
    form.page.arrangement = controls::Column({controls::Stretched(controls::Show(&list))});
    list.SetColumns({L"Date", L"Remark"});
    list.SetCheckBoxes(true);
  }

  controls::ListView list;
};

TEST_F(ListWindowTest, ManyItemsAddedDuringWorkAreThereAndTheLastCanBeSeen) {
  constexpr long kItems = 5000;
  form.next.Click = [&] {
    for (long item = 0; item < kItems; ++item) {
      const bool last = item == kItems - 1;
      list.EnsureVisible(list.AddItem({.text = std::to_wstring(item),
                                       .sub_items = {last ? std::wstring(90, L'W') : L"short"},
                                       .checked = last,
                                       .colour = last ? controls::kRed : controls::kWindowText}));
      windows.EventPump().DoEvents();
    }
  };
  Run([&] {
    const int narrow = NativeList(list).GetColumnWidth(1);
    Click(WindowOf<wxWindow>(form.next));
    wxListCtrl& native = NativeList(list);
    ASSERT_TRUE(Wait([&] { return native.GetItemCount() == kItems; }));
    EXPECT_EQ("4999", native.GetItemText(kItems - 1));
#ifndef _WIN32  // whose list asks for it when it draws, and keeps nothing
    EXPECT_TRUE(native.IsItemChecked(kItems - 1));
    EXPECT_FALSE(native.IsItemChecked(0));
#endif
    EXPECT_GT(native.GetTopItem(), 0);
    EXPECT_GE(native.GetTopItem() + native.GetCountPerPage(), kItems);
    EXPECT_GT(native.GetColumnWidth(1), narrow) << "as wide as the longest text";
    EXPECT_GE(native.GetColumnWidth(1), native.GetTextExtent(wxString('W', 90)).x);
  });
}

TEST_F(ListWindowTest, WideColumnGivesWayAndTellsItsWholeText) {
  list.SetColumns({L"Date", L"Remark", L"Reason"});
  const std::wstring whole(90, L'W');
  list.AddItem({.text = L"today", .sub_items = {whole, L"no such product"}});
  Run([&] {
    wxListCtrl& native = NativeList(list);
    const auto all = [&] {
      return native.GetColumnWidth(0) + native.GetColumnWidth(1) + native.GetColumnWidth(2);
    };
    EXPECT_LE(all(), native.GetClientSize().x) << "the last column can be seen";
    const wxWindowList& parts = native.GetChildren();
    wxWindow& canvas = parts.empty() ? native : *parts.GetFirst()->GetData();
    wxRect row;
    native.GetItemRect(0, row);
    const int middle = row.y + row.height / 2;
    Click(native, wxPoint(row.x + native.GetColumnWidth(0) + 30, middle));
    EXPECT_EQ(wxString(whole), canvas.GetToolTipText());
    Click(native, wxPoint(row.x + 30, middle));
    EXPECT_EQ("", canvas.GetToolTipText());
    // The user drags a column.
    native.SetColumnWidth(0, 200);
    wxListEvent dragged(wxEVT_LIST_COL_END_DRAG, native.GetId());
    dragged.m_col = 0;
    native.GetEventHandler()->ProcessEvent(dragged);
    list.AddItem({.text = L"tomorrow"});
    Settle();
    EXPECT_EQ(200, native.GetColumnWidth(0));
    list.SetColumns({L"Date", L"Text", L"Reason"});
    Settle();
    EXPECT_LT(native.GetColumnWidth(0), 200);
  });
}

TEST_F(ListWindowTest, ColumnsAreMeasuredAnewForAnotherScale) {
  list.AddItem({.text = std::wstring(20, L'W'), .sub_items = {L"short"}});
  Run([&] {
    wxListCtrl& native = NativeList(list);
    native.SetFont(native.GetFont().Scaled(1.5F));
    ChangeScale();
    EXPECT_GE(native.GetColumnWidth(0), native.GetTextExtent(wxString('W', 20)).x);
  });
}

TEST_F(ListWindowTest, EmptyListSaysWhy) {
  list.SetEmptyText(L"Nothing & nobody");
  Run([&] {
    const wxWindow& native = NativeList(list);
    ASSERT_NE(nullptr, EmptyTextOf(native));
    EXPECT_EQ("Nothing & nobody", EmptyTextOf(native)->GetLabelText());
    list.AddItem({.text = L"something"});
    EXPECT_TRUE(Wait([&] { return EmptyTextOf(native) == nullptr; }));
    list.Clear();
    EXPECT_TRUE(Wait([&] { return EmptyTextOf(native) != nullptr; }));
  });
}

TEST_F(ListWindowTest, ClickOnABoxIsAnEventAndSelectingIsNone) {
  for (int item = 0; item < 3; ++item) list.AddItem({.text = L"item"});
  std::vector<std::size_t> events;
  list.ItemCheck = [&](std::size_t index) { events.push_back(index); };
  Run([&] {
    wxListCtrl& native = NativeList(list);
    wxRect place;
    native.GetItemRect(1, place);
    Click(native, wxPoint(place.x + place.width / 2, place.y + place.height / 2));
    EXPECT_TRUE(list.Item(1).selected);
    EXPECT_TRUE(events.empty());
    Click(native, wxPoint(place.x + 10, place.y + place.height / 2));
    EXPECT_EQ(std::vector<std::size_t>{1}, events);
    EXPECT_TRUE(list.Item(1).checked);
    list.Clear();
    list.AddItem({.text = L"new"});
    list.AddItem({.text = L"new"});
    Settle();
    EXPECT_EQ(0, native.GetSelectedItemCount()) << "what was selected is gone";
  });
}

TEST_F(ListWindowTest, KeysAloneReachEveryItemAndStayInTheList) {
  std::vector<std::size_t> chosen;
  int asked = 0;
  bool page_handles = true;
  list.KeyPress = [&](wchar_t key) {
    if (key != L' ') return false;
    ++asked;
    chosen.clear();
    for (std::size_t index = 0; index < list.Items().size(); ++index) {
      if (list.Item(index).selected) chosen.push_back(index);
    }
    return page_handles;
  };
  Run([&] {
    NativeList(list).SetFocus();
    const wxWindow* const focus = wxWindow::FindFocus();
    for (const int key : {WXK_DOWN, WXK_UP, WXK_RIGHT, WXK_LEFT, WXK_PAGEDOWN, WXK_END, WXK_HOME}) {
      Key(key);
      EXPECT_EQ(focus, wxWindow::FindFocus()) << key;
    }
    for (int item = 0; item < 3; ++item) list.AddItem({.text = L"item"});
    Settle();
    Key(WXK_SPACE);
    EXPECT_EQ(std::vector<std::size_t>{0}, chosen) << "the item in focus";
    Key(WXK_DOWN);
    Key(WXK_SPACE);
    EXPECT_EQ(std::vector<std::size_t>{1}, chosen);
    EXPECT_FALSE(list.Item(1).checked) << "the page has dealt with it";
    page_handles = false;
    Key(WXK_SPACE);
    EXPECT_TRUE(list.Item(1).checked);
    Key('A', wxMOD_CONTROL);
    Key(WXK_SPACE);
    EXPECT_EQ((std::vector<std::size_t>{0, 1, 2}), chosen);
    EXPECT_EQ(4, asked) << "once a key";
  });
}

TEST_F(ListWindowTest, PageMayClearTheListInItsEvents) {
  for (int item = 0; item < 3; ++item) list.AddItem({.text = L"item"});
  list.ItemCheck = [&](std::size_t) { list.Clear(); };
  list.KeyPress = [&](wchar_t) {
    list.Clear();
    return false;
  };
  Run([&] {
    wxListCtrl& native = NativeList(list);
    wxRect place;
    native.GetItemRect(2, place);
    Click(native, wxPoint(place.x + 10, place.y + place.height / 2));
    for (int item = 0; item < 3; ++item) list.AddItem({.text = L"item"});
    Settle();
    native.SetFocus();
    Key(WXK_END);
    Key(WXK_SPACE);
    EXPECT_TRUE(list.Items().empty());
  });
  EXPECT_EQ(0, reported);
}

}  // namespace
