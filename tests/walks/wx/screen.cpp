// What stands on the screen, as the toolkit's own windows have it, and what a user does there.
#include "tests/walks/wx/screen.h"

#include <wx/app.h>
#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/dialog.h>
#include <wx/evtloop.h>
#include <wx/frame.h>
#include <wx/gauge.h>
#include <wx/listctrl.h>
#include <wx/radiobut.h>
#include <wx/settings.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include <algorithm>
#include <functional>
#include <stdexcept>

#include "tests/walks/keyboard.h"
#include "tests/walks/wx/robot.h"

namespace walks {
namespace {

std::string Utf8(const wxString& text) { return text.utf8_string(); }

void Visit(wxWindow& window, const std::function<void(wxWindow&)>& visitor) {
  if (!window.IsShown()) return;
  visitor(window);
  for (wxWindow* const child : window.GetChildren()) {
    if (!child->IsTopLevel()) Visit(*child, visitor);
  }
}

wxDialog* FrontDialog() {
  wxDialog* front = nullptr;
  for (wxWindow* const window : wxTopLevelWindows) {
    auto* const dialog = dynamic_cast<wxDialog*>(window);
    if (dialog != nullptr && dialog->IsShown() && dialog->IsModal()) front = dialog;
  }
  return front;
}

wxWindow* FrontWindow() {
  wxDialog* const dialog = FrontDialog();
  return dialog != nullptr ? dialog : wxTheApp->GetTopWindow();
}

// The shown windows of this kind in a window, in the order of the keyboard.
template <class Kind>
std::vector<Kind*> All(wxWindow* in) {
  std::vector<Kind*> all;
  if (in == nullptr) return all;
  Visit(*in, [&all](wxWindow& window) {
    if (auto* const one = dynamic_cast<Kind*>(&window)) all.push_back(one);
  });
  return all;
}

template <class Kind>
Kind* Find(const std::string& caption) {
  for (Kind* const one : All<Kind>(FrontWindow())) {
    if (Utf8(one->GetLabelText()) == caption) return one;
  }
  return nullptr;
}

template <class Kind>
Kind* FindEnabled(const std::string& caption) {
  Kind* const found = Find<Kind>(caption);
  return found != nullptr && found->IsEnabled() ? found : nullptr;
}

// The last one, which is the one that its page is about; throws where there is none.
template <class Kind>
Kind& Last() {
  const std::vector<Kind*> all = All<Kind>(wxTheApp->GetTopWindow());
  if (all.empty()) throw std::logic_error("nothing of that kind is on the screen");
  return *all.back();
}

std::string Label(std::size_t number) {
  const std::vector<wxStaticText*> all = All<wxStaticText>(wxTheApp->GetTopWindow());
  return number < all.size() ? Utf8(all[number]->GetLabelText()) : "";
}

// What a list asks for when it draws: not every system's can tell how it looks.
class Asked : public wxListCtrl {
 public:
  using wxListCtrl::OnGetItemAttr;
  using wxListCtrl::OnGetItemIsChecked;
};
bool IsChecked(const wxListCtrl& list, long row) { return (list.*&Asked::OnGetItemIsChecked)(row); }
wxColour TextColour(const wxListCtrl& list, long row) {
  const wxItemAttr* const look = (list.*&Asked::OnGetItemAttr)(row);
  return look != nullptr && look->HasTextColour() ? look->GetTextColour() : wxColour();
}

std::vector<std::string> RowsOf(wxListCtrl& list) {
  const wxColour grey = wxSystemSettings::GetColour(wxSYS_COLOUR_GRAYTEXT);
  std::vector<std::string> rows;
  for (int row = 0; row < list.GetItemCount(); ++row) {
    std::string line;
    if (list.HasCheckBoxes()) line += IsChecked(list, row) ? "x " : "  ";
    const wxColour colour = TextColour(list, row);
    if (colour == *wxRED) line += "!";
    if (colour == grey) line += "-";
    for (int column = 0; column < list.GetColumnCount(); ++column) {
      line += (column == 0 ? "" : "|") + Utf8(list.GetItemText(row, column));
    }
    rows.push_back(line);
  }
  return rows;
}

std::string Describe(wxWindow& window) {
  std::string line = Utf8(window.GetClassInfo()->GetClassName());
  line += " \"" + Utf8(wxControl::RemoveMnemonics(window.GetLabel())) + "\"";
  if (!window.IsEnabled()) line += " (disabled)";
  if (window.HasFocus()) line += " (focus)";
  if (auto* const text = dynamic_cast<wxTextCtrl*>(&window)) line += " " + Utf8(text->GetValue());
  if (auto* const list = dynamic_cast<wxListCtrl*>(&window)) {
    for (const std::string& row : RowsOf(*list)) line += "\n  " + row;
  }
  return line;
}

// Has the event handled as if it were the user's, once the windows' thread handles events.
void Post(wxControl& control, wxEventType type) {
  auto* const event = new wxCommandEvent(type, control.GetId());
  event->SetEventObject(&control);
  control.GetEventHandler()->QueueEvent(event);
}

}  // namespace

std::string Title() { return Label(0); }
std::string Status() { return Label(1); }

std::string Buttons() {
  std::string buttons;
  for (const wxButton* const button : All<wxButton>(FrontWindow())) {
    const std::string caption = Utf8(button->GetLabelText());
    if (!buttons.empty()) buttons += " ";
    buttons += button->IsEnabled() ? caption : "(" + caption + ")";
  }
  return buttons;
}

std::vector<std::string> Rows() { return RowsOf(Last<wxListCtrl>()); }

std::string EmptyText() {
  const std::vector<wxStaticText*> texts = All<wxStaticText>(&Last<wxListCtrl>());
  return texts.empty() ? "" : Utf8(texts.back()->GetLabelText());
}

std::string Text() { return Utf8(Last<wxTextCtrl>().GetValue()); }

double Progress() {
  const wxGauge& bar = Last<wxGauge>();
  return static_cast<double>(bar.GetValue()) / bar.GetRange();
}

bool IsOn(const std::string& caption) {
  if (const auto* const box = Find<wxCheckBox>(caption)) return box->GetValue();
  if (const auto* const option = Find<wxRadioButton>(caption)) return option->GetValue();
  throw std::logic_error("not on the screen: " + caption);
}

std::string Message() {
  wxDialog* const dialog = FrontDialog();
  std::string text;
  for (const wxStaticText* const label : All<wxStaticText>(dialog)) {
    text += Utf8(label->GetLabelText());
  }
  for (const wxTextCtrl* const box : All<wxTextCtrl>(dialog)) text += Utf8(box->GetValue());
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

std::string Everything() {
  std::string all;
  for (wxWindow* const top : wxTopLevelWindows) {
    Visit(*top, [&all](wxWindow& window) { all += Describe(window) + "\n"; });
  }
  return all.empty() ? "no window" : all;
}

bool AtRest() {
  const wxEventLoopBase* const loop = wxEventLoopBase::GetActive();
  return loop != nullptr && !loop->IsYielding() && !wxTheApp->HasPendingEvents();
}

void AwaitRest() { Await("the end of the work in hand", AtRest); }

void Begin(const std::string& button) {
  Await("'" + button + "', enabled", [&] {
    auto* const found = FindEnabled<wxButton>(button);
    if (found != nullptr) Post(*found, wxEVT_BUTTON);
    return found != nullptr;
  });
}

void Press(const std::string& button) {
  Begin(button);
  AwaitRest();
}

void Switch(const std::string& check_box_or_option) {
  Await("'" + check_box_or_option + "', enabled", [&] {
    if (auto* const option = FindEnabled<wxRadioButton>(check_box_or_option)) {
      option->SetValue(true);
      Post(*option, wxEVT_RADIOBUTTON);
      return true;
    }
    auto* const box = FindEnabled<wxCheckBox>(check_box_or_option);
    if (box == nullptr) return false;
    box->SetValue(!box->GetValue());
    Post(*box, wxEVT_CHECKBOX);
    return true;
  });
  AwaitRest();
}

void Check(std::size_t row, bool checked) {
  AwaitRest();
  OnWindows([&] {
    wxListCtrl& list = Last<wxListCtrl>();
    auto* const event = new wxListEvent(
        checked ? wxEVT_LIST_ITEM_CHECKED : wxEVT_LIST_ITEM_UNCHECKED, list.GetId());
    event->SetEventObject(&list);
    event->m_itemIndex = static_cast<long>(row);
    list.GetEventHandler()->QueueEvent(event);
  });
  AwaitRest();
}

void Type(const std::string& text) {
  AwaitRest();
  OnWindows([&] { Last<wxTextCtrl>().SetValue(wxString::FromUTF8(text)); });
  AwaitRest();
}

void ClickCloseBox() { wxTheApp->GetTopWindow()->Close(); }

void Keys(const std::string& keys) {
  // Without a window manager nobody else gives the keyboard to a window that has appeared.
  OnWindows([] { FrontWindow()->Raise(); });
  AwaitRest();
  PressKeys(keys);
}

}  // namespace walks
