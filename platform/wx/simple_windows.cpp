// The windows of all controls but lists and pages.
#include "platform/wx/simple_windows.h"

#include <wx/utils.h>

#include <algorithm>
#include <array>
#include <cstdint>

#include "platform/wx/conversion.h"

namespace wx_windows {
namespace {

constexpr float kHeadingScale = 1.35F;
constexpr int kProgressSteps = 1000;
// In pixels at the normal scale.
constexpr int kProgressHeight = 14;
constexpr int kTextMargin = 6;
constexpr int kTextIndent = 20;  // in tenths of a millimetre

wxStaticText& MakeLabel(const controls::Label& label, wxWindow& parent) {
  auto* const text = new wxStaticText(&parent, wxID_ANY, wxString(), wxDefaultPosition,
                                      wxDefaultSize, wxST_ELLIPSIZE_END | wxST_NO_AUTORESIZE);
  if (label.Heading()) text->SetFont(text->GetFont().Scale(kHeadingScale).Bold());
  return *text;
}

wxTextCtrl& MakeTextBox(const controls::TextBox& box, wxWindow& parent) {
  auto* const text = new wxTextCtrl(&parent, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                                    box.MultiLine() ? wxTE_MULTILINE | wxTE_BESTWRAP : 0);
  if (box.MultiLine()) {
    // Some systems know the one, some the other.
    text->SetMargins(text->FromDIP(wxPoint(kTextMargin, kTextMargin)));
    wxTextAttr look;
    const int indent = static_cast<int>(kTextIndent * text->GetContentScaleFactor());
    look.SetLeftIndent(indent);
    look.SetRightIndent(indent);
    text->SetDefaultStyle(look);
  }
  return *text;
}

bool ArrowKeyIsDown() {
  constexpr std::array kArrows = {WXK_UP, WXK_DOWN, WXK_LEFT, WXK_RIGHT};
  return std::ranges::any_of(kArrows, [](wxKeyCode key) { return wxGetKeyState(key); });
}

// Whether the label was another one.
template <class Window>
bool MirrorLabel(Window& window, const wxString& label) {
  if (window.GetLabel() == label) return false;
  window.SetLabel(label);
  return true;
}

}  // namespace

LabelWindow::LabelWindow(controls::Label& label, wxWindow& parent, WorkGate& gate)
    : ControlWindow(label, MakeLabel(label, parent), gate),
      label_(label),
      text_(static_cast<wxStaticText&>(Window())) {
  text_.Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    MirrorWholeText();
    event.Skip();
  });
  ControlChanged();
}

bool LabelWindow::MirrorKind() {
  if (!MirrorLabel(text_, PlainCaption(label_))) return false;
  MirrorWholeText();
  return true;
}

void LabelWindow::MirrorWholeText() {
  const wxString whole = ToToolkit(label_.Caption());
  const bool fits = text_.GetTextExtent(whole).x <= text_.GetClientSize().x;
  SetFallbackToolTip(fits ? wxString() : whole);
}

FrameWindow::FrameWindow(controls::Frame& frame, wxWindow& parent, WorkGate& gate)
    : ControlWindow(frame, *new wxPanel(&parent), gate),
      frame_(frame),
      heading_(*new wxStaticText(&Window(), wxID_ANY, wxString())) {
  heading_.SetFont(heading_.GetFont().Bold());
  heading_.Hide();
  ControlChanged();
}

bool FrameWindow::MirrorKind() {
  heading_.Show(!frame_.Caption().empty());
  return MirrorLabel(heading_, PlainCaption(frame_));
}

ButtonWindow::ButtonWindow(controls::Button& button, wxWindow& parent, WorkGate& gate)
    : ControlWindow(button, *new wxButton(&parent, wxID_ANY), gate),
      button_(button),
      native_(static_cast<wxButton&>(Window())) {
  native_.Bind(wxEVT_BUTTON, [this, &button](wxCommandEvent&) { Tell([&] { button.Press(); }); });
  ControlChanged();
}

bool ButtonWindow::MirrorKind() { return MirrorLabel(native_, CaptionWithKey(button_)); }

CheckBoxWindow::CheckBoxWindow(controls::CheckBox& box, wxWindow& parent, WorkGate& gate)
    : ControlWindow(box, *new wxCheckBox(&parent, wxID_ANY, wxString()), gate),
      box_(box),
      native_(static_cast<wxCheckBox&>(Window())) {
  native_.Bind(wxEVT_CHECKBOX, [this, &box](wxCommandEvent&) { Tell([&] { box.Toggle(); }); });
  ControlChanged();
}

bool CheckBoxWindow::MirrorKind() {
  if (native_.GetValue() != box_.Value()) native_.SetValue(box_.Value());
  return MirrorLabel(native_, CaptionWithKey(box_));
}

OptionButtonWindow::OptionButtonWindow(controls::OptionButton& button, bool begins_group,
                                       wxWindow& parent, WorkGate& gate)
    : ControlWindow(button,
                    *new wxRadioButton(&parent, wxID_ANY, wxString(), wxDefaultPosition,
                                       wxDefaultSize, begins_group ? wxRB_GROUP : 0),
                    gate),
      button_(button),
      native_(static_cast<wxRadioButton&>(Window())) {
  native_.Bind(wxEVT_RADIOBUTTON, [this](wxCommandEvent&) { Choose(); });
  // Not every system chooses the button that an arrow key gives the focus.
  native_.Bind(wxEVT_SET_FOCUS, [this](wxFocusEvent& event) {
    event.Skip();
    if (!ArrowKeyIsDown()) return;
    native_.CallAfter([this] {
      if (!native_.HasFocus() || native_.GetValue()) return;
      native_.SetValue(true);
      Choose();
    });
  });
  ControlChanged();
}

void OptionButtonWindow::Choose() {
  Tell([&] { button_.Choose(); });
  if (chosen) chosen();
}

bool OptionButtonWindow::MirrorKind() {
  // One that is off is turned off by turning the group's other one on.
  if (button_.Value() && !native_.GetValue()) native_.SetValue(true);
  return MirrorLabel(native_, CaptionWithKey(button_));
}

TextBoxWindow::TextBoxWindow(controls::TextBox& box, wxWindow& parent, WorkGate& gate)
    : ControlWindow(box, MakeTextBox(box, parent), gate),
      box_(box),
      native_(static_cast<wxTextCtrl&>(Window())) {
  native_.Bind(wxEVT_TEXT, [this, &box](wxCommandEvent&) {
    if (Mirroring()) return;
    shown_ = native_.GetValue();
    Tell([&] { box.Type(FromToolkit(shown_)); });
  });
  ControlChanged();
}

bool TextBoxWindow::MirrorKind() {
  if (native_.IsEditable() == box_.Locked()) native_.SetEditable(!box_.Locked());
  const wxString text = ToToolkit(box_.Text());
  if (text == shown_) return false;
  // A text that grows is read at its end.
  if (box_.MultiLine() && !shown_.empty() && text.StartsWith(shown_)) {
    native_.AppendText(text.substr(shown_.length()));
  } else {
    native_.ChangeValue(text);
  }
  shown_ = text;
  return false;
}

ProgressBarWindow::ProgressBarWindow(controls::ProgressBar& bar, wxWindow& parent, WorkGate& gate)
    : ControlWindow(bar,
                    *new wxGauge(&parent, wxID_ANY, kProgressSteps, wxDefaultPosition,
                                 parent.FromDIP(wxSize(-1, kProgressHeight)), wxGA_SMOOTH),
                    gate),
      bar_(bar),
      native_(static_cast<wxGauge&>(Window())) {
  ControlChanged();
}

bool ProgressBarWindow::MirrorKind() {
  const auto step = static_cast<int>(std::int64_t{bar_.Value()} * kProgressSteps / bar_.Max());
  if (native_.GetValue() != step) native_.SetValue(step);
  return false;
}

}  // namespace wx_windows
