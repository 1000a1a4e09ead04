// The window of a list: showing it. What the user does there is in list_window_events.cpp.
#include "platform/wx/list_window.h"

#include <wx/panel.h>
#include <wx/settings.h>
#include <wx/sizer.h>

#include <algorithm>
#include <numeric>
#include <utility>

#include "platform/wx/conversion.h"

namespace wx_windows {
namespace {

constexpr controls::Colour kSystemColour = 0x80000000;
constexpr int kLighter = 140;  // per cent, of a colour on a dark background
// In pixels at the normal scale.
constexpr int kSmallestHeight = 80;
constexpr int kNarrowestWide = 160;  // of a column that gives room to others

// A colour that can be read on the background that lists have now.
wxColour ToToolkitColour(controls::Colour colour) {
  if (colour == controls::kGrayText) return wxSystemSettings::GetColour(wxSYS_COLOUR_GRAYTEXT);
  if ((colour & kSystemColour) != 0) return wxSystemSettings::GetColour(wxSYS_COLOUR_LISTBOXTEXT);
  const wxColour plain(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF);
  return wxSystemSettings::GetAppearance().IsUsingDarkBackground() ? plain.ChangeLightness(kLighter)
                                                                   : plain;
}

// A cell has one line, and not every system draws a line end in it as nothing.
wxString OneLine(const std::wstring& text) {
  wxString shown = ToToolkit(text);
  shown.Replace("\n", " ");
  return shown;
}

}  // namespace

NativeList::NativeList(const controls::ListView& list, wxWindow& parent)
    : wxListCtrl(&parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                 wxLC_REPORT | wxLC_VIRTUAL | wxBORDER_NONE),
      list_(list) {}

// The window may ask for an item that has gone since it was told how many there are.
const controls::ListItem* NativeList::Item(long item) const {
  const auto index = static_cast<std::size_t>(item);
  return item >= 0 && index < list_.Items().size() ? &list_.Items()[index] : nullptr;
}

wxWindow& NativeList::Canvas() {
  wxWindowList& children = GetChildren();
  return children.empty() ? *this : *children.GetFirst()->GetData();
}

wxString NativeList::OnGetItemText(long item, long column) const {
  const controls::ListItem* const shown = Item(item);
  if (shown == nullptr) return {};
  if (column == 0) return OneLine(shown->text);
  const auto number = static_cast<std::size_t>(column);
  return number <= shown->sub_items.size() ? OneLine(shown->sub_items[number - 1]) : wxString();
}

bool NativeList::OnGetItemIsChecked(long item) const {
  const controls::ListItem* const shown = Item(item);
  return shown != nullptr && shown->checked;
}

wxItemAttr* NativeList::OnGetItemAttr(long item) const {
  const controls::ListItem* const shown = Item(item);
  if (shown == nullptr || shown->colour == controls::kWindowText) return nullptr;
  wxItemAttr& look = looks_[shown->colour];
  look.SetTextColour(ToToolkitColour(shown->colour));
  return &look;
}

// The list stands on a panel that shows around it as a line: it has no border on some systems.
ListWindow::ListWindow(controls::ListView& list, wxWindow& parent, WorkGate& gate)
    : ControlWindow(list, *new wxPanel(&parent), gate),
      list_(list),
      native_(*new NativeList(list, Window())),
      widths_(native_) {
  ColourLine();
  Window().Bind(wxEVT_SYS_COLOUR_CHANGED, [this](wxSysColourChangedEvent& event) {
    event.Skip();
    ColourLine();
  });
  auto* const around = new wxBoxSizer(wxVERTICAL);
  around->Add(&native_, wxSizerFlags(1).Expand().Border(wxALL, 1));
  Window().SetSizer(around);
  native_.SetMinSize(native_.FromDIP(wxSize(-1, kSmallestHeight)));
  list_.ObserveItems(this);
  for (std::size_t index = 0; index < list_.Items().size(); ++index) changed_.push_back(index);
  BindEvents();
  ControlChanged();
}

ListWindow::~ListWindow() { list_.ObserveItems(nullptr); }

void ListWindow::ColourLine() {
  Window().SetBackgroundColour(wxSystemSettings::GetColour(wxSYS_COLOUR_BTNSHADOW));
  Window().Refresh();
}

bool ListWindow::MirrorKind() {
  if (native_.HasCheckBoxes() != list_.CheckBoxes()) {
    native_.EnableCheckBoxes(list_.CheckBoxes());
    columns_changed_ = true;
  }
  ShowLater();
  return false;
}

void ListWindow::ColumnsChanged() {
  columns_changed_ = true;
  dragged_.clear();
  ShowLater();
}

void ListWindow::ItemAdded(std::size_t index) {
  Measure(index);
  if (list_.Item(index).selected) changed_.push_back(index);
  ShowLater();
}

void ListWindow::ItemChanged(std::size_t index) {
  Measure(index);
  if (changed_.empty() || changed_.back() != index) changed_.push_back(index);
  ShowLater();
}

void ListWindow::ItemsCleared() {
  changed_.clear();
  scroll_to_.reset();
  cleared_ = true;
  columns_changed_ = true;
  ShowLater();
}

void ListWindow::ScrollIntoView(std::size_t index) {
  scroll_to_ = index;
  ShowLater();
}

void ListWindow::ShowLater() {
  if (show_later_) return;
  show_later_ = true;
  Later([this] { ShowNow(); });
}

void ListWindow::ShowNow() {
  show_later_ = false;
  if (columns_changed_) ShowColumns();
  if (cleared_) {
    for (const std::size_t index : selected_) {
      native_.SetItemState(static_cast<long>(index), 0, wxLIST_STATE_SELECTED);
    }
    selected_.clear();
  }
  const auto count = static_cast<long>(list_.Items().size());
  if (cleared_ || native_.GetItemCount() != count) {
    native_.SetItemCount(count);
    native_.Refresh();
  }
  cleared_ = false;
  // Keys move on from the current item. Without one, the arrow keys would leave the list.
  constexpr long kCurrent = wxLIST_STATE_FOCUSED;
  if (count > 0 && native_.GetNextItem(-1, wxLIST_NEXT_ALL, kCurrent) < 0) {
    native_.SetItemState(0, kCurrent, kCurrent);
  }
  for (const std::size_t index : changed_) ShowSelection(index);
  if (!changed_.empty() && count > 0) {
    const long top = native_.GetTopItem();
    const long bottom = std::min(count - 1, top + native_.GetCountPerPage());
    if (bottom >= top) native_.RefreshItems(top, bottom);
  }
  changed_.clear();
  SetWidths();
  if (scroll_to_ && *scroll_to_ < list_.Items().size()) {
    native_.EnsureVisible(static_cast<long>(*scroll_to_));
  }
  scroll_to_.reset();
  PlaceEmptyText();
}

void ListWindow::ShowSelection(std::size_t index) {
  if (index >= list_.Items().size()) return;  // the page has cleared the list meanwhile
  const auto item = static_cast<long>(index);
  const bool selected = list_.Item(index).selected;
  const bool shown = native_.GetItemState(item, wxLIST_STATE_SELECTED) != 0;
  if (selected == shown) return;
  native_.SetItemState(item, selected ? wxLIST_STATE_SELECTED : 0, wxLIST_STATE_SELECTED);
  const auto place = std::lower_bound(selected_.begin(), selected_.end(), index);
  const bool known = place != selected_.end() && *place == index;
  if (selected && !known) selected_.insert(place, index);
  if (!selected && known) selected_.erase(place);
}

void ListWindow::ShowColumns() {
  columns_changed_ = false;
  const std::vector<std::wstring>& columns = list_.Columns();
  if (native_.GetColumnCount() != static_cast<int>(columns.size())) {
    native_.DeleteAllColumns();
    for (const std::wstring& caption : columns) native_.AppendColumn(ToToolkit(caption));
  } else {
    for (std::size_t column = 0; column < columns.size(); ++column) {
      wxListItem heading;
      heading.SetMask(wxLIST_MASK_TEXT);
      heading.SetText(ToToolkit(columns[column]));
      native_.SetColumn(static_cast<int>(column), heading);
    }
  }
  widths_.Begin(columns, list_.CheckBoxes());
  for (std::size_t index = 0; index < list_.Items().size(); ++index) Measure(index);
}

void ListWindow::Measure(std::size_t index) {
  const controls::ListItem& item = list_.Item(index);
  widths_.Add(0, item.text);
  for (std::size_t column = 0; column < item.sub_items.size(); ++column) {
    widths_.Add(column + 1, item.sub_items[column]);
  }
}

// The last column takes what the others leave; where that is not enough, the widest of those in the
// middle gives what it has to. A column that the user has dragged stays as it is.
void ListWindow::SetWidths() {
  std::vector<int> widths = widths_.Widths();
  if (widths.empty()) return;
  for (const int column : dragged_) {
    const auto index = static_cast<std::size_t>(column);
    if (index < widths.size()) widths[index] = native_.GetColumnWidth(column);
  }
  const int spare = native_.GetClientSize().x - std::accumulate(widths.begin(), widths.end(), 0);
  if (spare > 0) {
    if (!dragged_.contains(static_cast<int>(widths.size()) - 1)) widths.back() += spare;
  } else if (widths.size() > 2) {
    const auto widest = std::max_element(widths.begin() + 1, widths.end() - 1);
    const int narrowest = std::min(*widest, native_.FromDIP(kNarrowestWide));
    if (!dragged_.contains(static_cast<int>(widest - widths.begin()))) {
      *widest = std::max(narrowest, *widest + spare);
    }
  }
  for (int column = 0; column < static_cast<int>(widths.size()); ++column) {
    const int width = widths[static_cast<std::size_t>(column)];
    if (native_.GetColumnWidth(column) != width) native_.SetColumnWidth(column, width);
  }
}

// The text is a window on the list, there only as long as it is needed: what is hidden on a list
// disturbs its scrolling.
void ListWindow::PlaceEmptyText() {
  if (empty_text_ != nullptr) std::exchange(empty_text_, nullptr)->Destroy();
  if (!list_.Items().empty() || list_.EmptyText().empty()) return;
  wxWindow& canvas = native_.Canvas();
  empty_text_ =
      new wxStaticText(&canvas, wxID_ANY, wxControl::EscapeMnemonics(ToToolkit(list_.EmptyText())),
                       wxDefaultPosition, wxDefaultSize, wxALIGN_CENTRE_HORIZONTAL);
  empty_text_->SetBackgroundColour(native_.GetBackgroundColour());
  empty_text_->SetForegroundColour(wxSystemSettings::GetColour(wxSYS_COLOUR_GRAYTEXT));
  const wxSize room = canvas.GetClientSize();
  empty_text_->Wrap(room.x * 3 / 4);
  const wxSize size = empty_text_->GetBestSize();
  empty_text_->SetSize((room.x - size.x) / 2, (room.y - size.y) / 2, size.x, size.y);
}

}  // namespace wx_windows
