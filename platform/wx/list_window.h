// The window of a list.
#pragma once

#include <wx/listctrl.h>
#include <wx/stattext.h>

#include <cstddef>
#include <optional>
#include <set>
#include <unordered_map>
#include <vector>

#include "platform/controls/list_view.h"
#include "platform/wx/column_widths.h"
#include "platform/wx/control_window.h"

namespace wx_windows {

// The toolkit's list, which keeps no items of its own but asks for those that it draws.
class NativeList final : public wxListCtrl {
 public:
  // The list must outlive it.
  NativeList(const controls::ListView& list, wxWindow& parent);

  // Where the items are drawn: on the list itself where it is the system's; where the toolkit draws
  // it, on its first child, besides which it has its headings.
  wxWindow& Canvas();
  // What an item shows in a column; empty where there is none.
  wxString CellText(long item, long column) const { return OnGetItemText(item, column); }

 private:
  wxString OnGetItemText(long item, long column) const override;
  bool OnGetItemIsChecked(long item) const override;
  wxItemAttr* OnGetItemAttr(long item) const override;

  const controls::ListItem* Item(long item) const;

  const controls::ListView& list_;
  mutable std::unordered_map<controls::Colour, wxItemAttr> looks_;  // the toolkit wants pointers
};

// Shows a list, each change for the cost of that change: what happens to items is noted and shown
// all at once, when the window system gets its turn.
class ListWindow final : public ControlWindow, private controls::ListView::ItemObserver {
 public:
  ListWindow(controls::ListView& list, wxWindow& parent, WorkGate& gate);
  ~ListWindow() override;

 private:
  bool MirrorKind() override;

  void ColumnsChanged() override;
  void ItemAdded(std::size_t index) override;
  void ItemChanged(std::size_t index) override;
  void ItemsCleared() override;
  void ScrollIntoView(std::size_t index) override;

  void ColourLine();
  void ShowLater();
  void ShowNow();
  void ShowColumns();
  void ShowSelection(std::size_t index);
  void SetWidths();
  void Measure(std::size_t index);
  void PlaceEmptyText();

  // From the window to the list.
  void BindEvents();
  void OnKeyDown(wxKeyEvent& event);
  void ShowWholeText(const wxPoint& mouse);
  void TakeSelection();
  void TakeCheck(long item, bool checked);
  void Toggle(long item);
  bool TakeKey(wchar_t key);

  controls::ListView& list_;
  NativeList& native_;
  wxStaticText* empty_text_ = nullptr;  // only while it is shown
  ColumnWidths widths_;
  std::vector<std::size_t> changed_;   // items to draw anew
  std::vector<std::size_t> selected_;  // as the window had them last, in order
  std::optional<std::size_t> scroll_to_;
  std::set<int> dragged_;  // columns whose width is the user's
  bool columns_changed_ = true;
  bool cleared_ =
      false;  // since it was shown last: the window's selection is not that of its items
  bool show_later_ = false;
  bool take_selection_later_ = false;
};

}  // namespace wx_windows
