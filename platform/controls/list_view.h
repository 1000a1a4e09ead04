// A list of several columns, as a page sees it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/controls/control.h"

namespace controls {

// A colour as classic desktop programs number it: 0x00BBGGRR, or with the highest bit set the
// system's own colour of that number.
using Colour = std::uint32_t;
inline constexpr Colour kRed = 255;
inline constexpr Colour kWindowText = 0x80000008;  // what a list's text has by itself
inline constexpr Colour kGrayText = 0x80000011;    // what disabled text has

struct ListItem {
  std::wstring key{};   // unique in the list, or empty for none
  std::wstring text{};  // in the first column
  // In the further columns; those that are missing are empty.
  std::vector<std::wstring> sub_items{};
  std::wstring tag{};    // what the page likes to keep with the item; not shown
  bool checked = false;  // shown in a list with check boxes
  bool selected = false;
  Colour colour = kWindowText;  // of the text and of all sub-items
};

// A list in report style, of which any number of items may be selected. Items are known by their
// position from 0 and stay in the order in which they were added; adding one, finding one by its
// key and changing one take constant time. A position outside the list, or a key that is there
// already, is a text::RuntimeError with the numbers below and leaves the list as it was.
class ListView final : public Control {
 public:
  static constexpr std::int32_t kIndexOutOfBounds = 35600;
  static constexpr std::int32_t kKeyNotUnique = 35602;

  // What is told besides the properties of every control, so that showing a change costs no more
  // than the change. It must not change the list while it is being told.
  class ItemObserver {
   public:
    virtual ~ItemObserver() = default;
    virtual void ColumnsChanged() = 0;
    virtual void ItemAdded(std::size_t index) = 0;    // at the end
    virtual void ItemChanged(std::size_t index) = 0;  // anything of it
    virtual void ItemsCleared() = 0;
    virtual void ScrollIntoView(std::size_t index) = 0;
  };

  // As Observe.
  void ObserveItems(ItemObserver* observer) { item_observer_ = observer; }

  // The captions of the columns. A window makes a column as wide as its contents need.
  const std::vector<std::wstring>& Columns() const { return columns_; }
  void SetColumns(std::vector<std::wstring> captions);

  bool CheckBoxes() const { return check_boxes_; }
  void SetCheckBoxes(bool check_boxes) { Change(check_boxes_, check_boxes); }

  // What stands in grey where the items would be while there is none: why the list is empty.
  const std::wstring& EmptyText() const { return empty_text_; }
  void SetEmptyText(std::wstring text) { Change(empty_text_, std::move(text)); }

  // Returns the position of the new item, the last.
  std::size_t AddItem(ListItem item);
  void Clear();

  // Every item, in order; and single ones.
  const std::vector<ListItem>& Items() const { return items_; }
  const ListItem& Item(std::size_t index) const;
  std::optional<std::size_t> Find(const std::wstring& key) const;

  void SetText(std::size_t index, std::wstring text);
  // Sub-items count from 1; 0 is refused as a position outside. Those before it appear, empty.
  void SetSubItem(std::size_t index, std::size_t number, std::wstring text);
  void SetChecked(std::size_t index, bool checked);
  void SetSelected(std::size_t index, bool selected);
  void SetColour(std::size_t index, Colour colour);
  void EnsureVisible(std::size_t index);

  // What the user does. A click on a check box is an event, selecting is none. A key press is given
  // to the page before the window makes anything of it: where KeyPress, and so PressKey, is true,
  // the page has dealt with the key, and the window must leave it alone.
  std::function<void(std::size_t index)> ItemCheck;
  std::function<bool(wchar_t key)> KeyPress;
  void Check(std::size_t index, bool checked);
  void Select(std::size_t index, bool selected);
  bool PressKey(wchar_t key);

 private:
  ListItem& At(std::size_t index);
  template <class Value>
  void ChangeItem(std::size_t index, Value ListItem::*property, Value value);
  void ItemChanged(std::size_t index);

  ItemObserver* item_observer_ = nullptr;
  std::vector<std::wstring> columns_;
  bool check_boxes_ = false;
  std::wstring empty_text_;
  std::vector<ListItem> items_;
  std::unordered_map<std::wstring, std::size_t> positions_;  // by key
};

}  // namespace controls
