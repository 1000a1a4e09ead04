// The window of a list: what the user does there.
#include "platform/wx/list_window.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace wx_windows {
namespace {

bool MovesInList(int key) {
  switch (key) {
    case WXK_UP:
    case WXK_DOWN:
    case WXK_LEFT:
    case WXK_RIGHT:
    case WXK_HOME:
    case WXK_END:
    case WXK_PAGEUP:
    case WXK_PAGEDOWN:
    case WXK_NUMPAD_UP:
    case WXK_NUMPAD_DOWN:
    case WXK_NUMPAD_LEFT:
    case WXK_NUMPAD_RIGHT:
    case WXK_NUMPAD_HOME:
    case WXK_NUMPAD_END:
    case WXK_NUMPAD_PAGEUP:
    case WXK_NUMPAD_PAGEDOWN:
      return true;
    default:
      return false;
  }
}

}  // namespace

void ListWindow::BindEvents() {
  const auto selection_changes = [this](wxListEvent& event) {
    event.Skip();
    if (Mirroring() || take_selection_later_) return;
    take_selection_later_ = true;  // selecting all of a long list is an event an item
    Later([this] { TakeSelection(); });
  };
  for (const auto& kind :
       {wxEVT_LIST_ITEM_SELECTED, wxEVT_LIST_ITEM_DESELECTED, wxEVT_LIST_ITEM_FOCUSED}) {
    native_.Bind(kind, selection_changes);
  }
  native_.Bind(wxEVT_LIST_ITEM_CHECKED,
               [this](wxListEvent& event) { TakeCheck(event.GetIndex(), true); });
  native_.Bind(wxEVT_LIST_ITEM_UNCHECKED,
               [this](wxListEvent& event) { TakeCheck(event.GetIndex(), false); });
  native_.Bind(wxEVT_KEY_DOWN, &ListWindow::OnKeyDown, this);
  native_.Bind(wxEVT_CHAR, [this](wxKeyEvent& event) {
    const auto key = static_cast<wchar_t>(event.GetUnicodeKey());
    if (key == WXK_NONE || key == L' ' || !TakeKey(key)) event.Skip();
  });
  native_.Bind(wxEVT_LIST_COL_END_DRAG, [this](wxListEvent& event) {
    event.Skip();
    dragged_.insert(event.GetColumn());
  });
  native_.Canvas().Bind(wxEVT_MOTION, [this](wxMouseEvent& event) {
    event.Skip();
    ShowWholeText(native_.ScreenToClient(native_.Canvas().ClientToScreen(event.GetPosition())));
  });
  native_.Bind(wxEVT_DPI_CHANGED, [this](wxDPIChangedEvent& event) {
    event.Skip();
    widths_.ForgetCharacters();
    columns_changed_ = true;
    ShowLater();
  });
  native_.Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    event.Skip();
    ShowLater();
  });
}

// A text that its column cuts off is the tool tip while the mouse is on it.
void ListWindow::ShowWholeText(const wxPoint& mouse) {
  wxString whole;
  const long top = native_.GetTopItem();
  wxRect row;
  if (!list_.Items().empty() && native_.GetItemRect(top, row) && row.height > 0) {
    const long item = top + (mouse.y - row.y) / row.height;
    int left = row.x;
    for (int column = 0; column < native_.GetColumnCount(); ++column) {
      const int width = native_.GetColumnWidth(column);
      if (mouse.x >= left && mouse.x < left + width) {
        const wxString text = native_.CellText(item, column);
        const auto place = static_cast<std::size_t>(column);
        if (widths_.WidthOf(place, text.ToStdWstring()) > width) whole = text;
        break;
      }
      left += width;
    }
  }
  wxWindow& canvas = native_.Canvas();
  if (canvas.GetToolTipText() == whole) return;
  if (whole.empty()) {
    canvas.UnsetToolTip();
  } else {
    canvas.SetToolTip(whole);
  }
}

// The keys that the list needs before the window makes something of them.
void ListWindow::OnKeyDown(wxKeyEvent& event) {
  const int key = event.GetKeyCode();
  if (list_.Items().empty() && MovesInList(key)) return;  // else the focus would leave the list
  if (key == 'A' && event.GetModifiers() == wxMOD_CONTROL) {
    native_.SetItemState(-1, wxLIST_STATE_SELECTED, wxLIST_STATE_SELECTED);
    TakeSelection();
    return;
  }
  if (key != WXK_SPACE || event.HasAnyModifiers()) return event.Skip();
  // Not every system's list selects with it, or toggles a box, so both are done here.
  const long item = native_.GetNextItem(-1, wxLIST_NEXT_ALL, wxLIST_STATE_FOCUSED);
  if (item >= 0 && native_.GetSelectedItemCount() == 0) {
    native_.SetItemState(item, wxLIST_STATE_SELECTED, wxLIST_STATE_SELECTED);
  }
  if (TakeKey(L' ')) return;
  if (!list_.CheckBoxes()) return event.Skip();
  Toggle(item);
}

// What was selected in the window since the last time goes to the list, and what was not.
void ListWindow::TakeSelection() {
  take_selection_later_ = false;
  if (cleared_) return;  // the items that were selected are gone
  std::vector<std::size_t> now;
  for (long item = -1;
       (item = native_.GetNextItem(item, wxLIST_NEXT_ALL, wxLIST_STATE_SELECTED)) >= 0;) {
    now.push_back(static_cast<std::size_t>(item));
  }
  std::vector<std::size_t> different;
  std::set_symmetric_difference(selected_.begin(), selected_.end(), now.begin(), now.end(),
                                std::back_inserter(different));
  if (different.empty()) return;
  while (!different.empty() && different.back() >= list_.Items().size()) different.pop_back();
  selected_ = std::move(now);
  Tell([&] {
    for (const std::size_t index : different) {
      list_.Select(index, std::binary_search(selected_.begin(), selected_.end(), index));
    }
  });
  // Where the list refused, the window shows it as it was.
  changed_.insert(changed_.end(), different.begin(), different.end());
}

void ListWindow::TakeCheck(long item, bool checked) {
  const auto index = static_cast<std::size_t>(item);
  if (item < 0 || index >= list_.Items().size()) return;
  TakeSelection();
  Tell([&] { list_.Check(index, checked); });
  // The page may have cleared the list for it.
  if (index < list_.Items().size()) ItemChanged(index);
}

// Not every system's window knows which boxes are checked.
void ListWindow::Toggle(long item) {
  const auto index = static_cast<std::size_t>(item);
  if (item >= 0 && index < list_.Items().size()) TakeCheck(item, !list_.Item(index).checked);
}

bool ListWindow::TakeKey(wchar_t key) {
  TakeSelection();
  bool handled = true;  // a key that is dropped is not the window's either
  Tell([&] {
    handled = false;
    handled = list_.PressKey(key);
  });
  return handled;
}

}  // namespace wx_windows
