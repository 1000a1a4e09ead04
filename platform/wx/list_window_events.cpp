// The window of a list: what the user does there.
#include "platform/wx/list_window.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace wx_windows {

void ListWindow::BindEvents() {
  const auto selection_changes = [this](wxListEvent& event) {
    event.Skip();
    if (Mirroring() || take_selection_later_) return;
    take_selection_later_ = true;  // selecting all of a long list is an event an item
    native_.CallAfter([this] { TakeSelection(); });
  };
  for (const auto& kind :
       {wxEVT_LIST_ITEM_SELECTED, wxEVT_LIST_ITEM_DESELECTED, wxEVT_LIST_ITEM_FOCUSED}) {
    native_.Bind(kind, selection_changes);
  }
  native_.Bind(wxEVT_LIST_ITEM_CHECKED,
               [this](wxListEvent& event) { TakeCheck(event.GetIndex(), true); });
  native_.Bind(wxEVT_LIST_ITEM_UNCHECKED,
               [this](wxListEvent& event) { TakeCheck(event.GetIndex(), false); });
  // The space when the key goes down, before the list makes something of it. Not every system's
  // list toggles a box with it, so that is done here.
  native_.Bind(wxEVT_KEY_DOWN, [this](wxKeyEvent& event) {
    const bool space = event.GetKeyCode() == WXK_SPACE && !event.HasAnyModifiers();
    if (!space) return event.Skip();
    if (TakeKey(L' ')) return;
    if (!list_.CheckBoxes()) return event.Skip();
    Toggle(native_.GetNextItem(-1, wxLIST_NEXT_ALL, wxLIST_STATE_FOCUSED));
  });
  native_.Bind(wxEVT_CHAR, [this](wxKeyEvent& event) {
    const auto key = static_cast<wchar_t>(event.GetUnicodeKey());
    if (key == WXK_NONE || key == L' ' || !TakeKey(key)) event.Skip();
  });
  native_.Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    event.Skip();
    ShowLater();
  });
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
  ItemChanged(index);
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
