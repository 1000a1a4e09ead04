// A list of several columns, as a page sees it.
#include "platform/controls/list_view.h"

#include <utility>

#include "platform/text/runtime_error.h"

namespace controls {
namespace {

text::RuntimeError IndexOutOfBounds() {
  return {ListView::kIndexOutOfBounds, L"Index out of bounds"};
}

}  // namespace

void ListView::SetColumns(std::vector<std::wstring> captions) {
  if (columns_ == captions) return;
  columns_ = std::move(captions);
  if (item_observer_ != nullptr) item_observer_->ColumnsChanged();
}

std::size_t ListView::AddItem(ListItem item) {
  const std::size_t index = items_.size();
  const std::wstring key = item.key;
  items_.push_back(std::move(item));
  if (!key.empty() && !positions_.emplace(key, index).second) {
    items_.pop_back();
    throw text::RuntimeError(kKeyNotUnique, L"Key is not unique in collection");
  }
  if (item_observer_ != nullptr) item_observer_->ItemAdded(index);
  return index;
}

void ListView::Clear() {
  if (items_.empty()) return;
  items_.clear();
  positions_.clear();
  if (item_observer_ != nullptr) item_observer_->ItemsCleared();
}

const ListItem& ListView::Item(std::size_t index) const {
  if (index >= items_.size()) throw IndexOutOfBounds();
  return items_[index];
}

ListItem& ListView::At(std::size_t index) {
  if (index >= items_.size()) throw IndexOutOfBounds();
  return items_[index];
}

std::optional<std::size_t> ListView::Find(const std::wstring& key) const {
  const auto found = positions_.find(key);
  return found == positions_.end() ? std::nullopt : std::optional(found->second);
}

void ListView::SetText(std::size_t index, std::wstring text) {
  ChangeItem(index, &ListItem::text, std::move(text));
}

void ListView::SetSubItem(std::size_t index, std::size_t number, std::wstring text) {
  std::vector<std::wstring>& sub_items = At(index).sub_items;
  if (number == 0) throw IndexOutOfBounds();
  if (number <= sub_items.size() && sub_items[number - 1] == text) return;
  if (number > sub_items.size()) sub_items.resize(number);
  sub_items[number - 1] = std::move(text);
  ItemChanged(index);
}

void ListView::SetChecked(std::size_t index, bool checked) {
  ChangeItem(index, &ListItem::checked, checked);
}

void ListView::SetSelected(std::size_t index, bool selected) {
  ChangeItem(index, &ListItem::selected, selected);
}

void ListView::SetColour(std::size_t index, Colour colour) {
  ChangeItem(index, &ListItem::colour, colour);
}

void ListView::EnsureVisible(std::size_t index) {
  At(index);
  if (item_observer_ != nullptr) item_observer_->ScrollIntoView(index);
}

void ListView::Check(std::size_t index, bool checked) {
  if (!TakesInput() || !check_boxes_ || At(index).checked == checked) return;
  SetChecked(index, checked);
  if (ItemCheck) ItemCheck(index);
}

void ListView::Select(std::size_t index, bool selected) {
  if (TakesInput()) SetSelected(index, selected);
}

bool ListView::PressKey(wchar_t key) { return TakesInput() && KeyPress && KeyPress(key); }

template <class Value>
void ListView::ChangeItem(std::size_t index, Value ListItem::*property, Value value) {
  Value& changing = At(index).*property;
  if (changing == value) return;
  changing = std::move(value);
  ItemChanged(index);
}

void ListView::ItemChanged(std::size_t index) {
  if (item_observer_ != nullptr) item_observer_->ItemChanged(index);
}

}  // namespace controls
