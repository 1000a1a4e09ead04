// The window of a form.
#include "platform/wx/form_frame.h"

#include <wx/app.h>
#include <wx/radiobut.h>
#include <wx/settings.h>
#include <wx/statline.h>
#include <wx/textctrl.h>

#include <algorithm>
#include <utility>
#include <variant>

#include "platform/wx/conversion.h"
#include "platform/wx/dialogs.h"

namespace wx_windows {
namespace {

constexpr std::int32_t kSmallestHeight = 6600;  // twips
constexpr std::chrono::seconds kAppearing{1};

// Gives the focus to the first of these windows, or of those on them, that takes it. Of a group of
// option buttons that is the one that is on: the focus would turn on another one.
bool FocusFirst(const wxWindow& parent) {
  for (wxWindow* const child : parent.GetChildren()) {
    if (!child->IsShown() || !child->IsThisEnabled()) continue;
    if (dynamic_cast<wxPanel*>(child) != nullptr) {
      if (FocusFirst(*child)) return true;
      continue;
    }
    const auto* const radio = dynamic_cast<wxRadioButton*>(child);
    if (!child->AcceptsFocus() || (radio != nullptr && !radio->GetValue())) continue;
    child->SetFocus();
    return true;
  }
  return false;
}

bool TakesFocus(const wxWindow* window) {
  return window != nullptr && window->IsEnabled() && window->IsShownOnScreen();
}

// Whether Alt with this key, a capital letter or a digit, is for this window.
bool TakesAccessKey(const wxWindow& window, int key) {
  if (!window.IsShown() || !window.IsEnabled()) return false;
  const wxString label = window.GetLabel();
  for (std::size_t at = label.find('&'); at + 1 < label.size(); at = label.find('&', at + 2)) {
    if (label[at + 1] != '&') return wxToupper(label[at + 1]) == static_cast<wchar_t>(key);
  }
  return false;
}

bool TakesAccessKeyInside(const wxWindow& parent, int key) {
  const wxWindowList& children = parent.GetChildren();
  return std::any_of(children.begin(), children.end(), [key](const wxWindow* child) {
    return child->IsShown() && (TakesAccessKey(*child, key) || TakesAccessKeyInside(*child, key));
  });
}

}  // namespace

FormFrame::FormFrame(controls::Form& form, WorkGate& gate, const wxIconBundle& icons)
    : wxFrame(nullptr, wxID_ANY, ToToolkit(form.Caption()), wxDefaultPosition, wxDefaultSize,
              wxDEFAULT_FRAME_STYLE & ~wxMAXIMIZE_BOX),
      form_(form),
      gate_(gate),
      windows_(gate),
      root_(*new wxPanel(this)) {
  SetIcons(icons);
  SetSize(ToPixels(*this, form_.Outer().width), ToPixels(*this, form_.Outer().height));
  FixWidth();
  ReportSize();  // pages and buttons have their places now
  MakeControls();
  ReportSize();
  form_.ShowIn(this);
  gate_.before_work = [this] { focus_before_ = FindFocus(); };
  gate_.after_work = [this] { AfterWork(); };
  Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    event.Skip();
    // Some toolkits first tell a size that no window has.
    if (GetSize().y >= GetMinSize().y) ReportSize();
  });
  Bind(wxEVT_MOVE, [this](wxMoveEvent& event) {
    event.Skip();
    KeepPlace();
  });
  Bind(wxEVT_SYS_COLOUR_CHANGED, [this](wxSysColourChangedEvent& event) {
    event.Skip();
    ColourHeader();
  });
  Bind(wxEVT_DPI_CHANGED, [this](wxDPIChangedEvent& event) {
    event.Skip();
    width_ = 0;
    CallAfter([this] { FixWidth(); });
    ReportSizeLater();
  });
  Bind(wxEVT_CLOSE_WINDOW, &FormFrame::OnClose, this);
  Bind(wxEVT_CHAR_HOOK, &FormFrame::OnKey, this);
}

// The windows go while what their events come to is still there.
FormFrame::~FormFrame() {
  form_.ShowIn(nullptr);
  gate_.before_work = nullptr;
  gate_.after_work = nullptr;
  DestroyChildren();
}

void FormFrame::MakeControls() {
  windows_.appeared = [this](wxWindow& window) { focus_in_ = &window; };
  header_height_ = HeaderHeight();
  if (header_height_ > 0) MakeHeader();
  for (const controls::AnyControl control : form_.Controls()) {
    const std::int32_t top = std::visit([](auto* one) { return one->Place().top; }, control);
    const bool is_page = std::holds_alternative<controls::Page*>(control);
    const bool on_header = !is_page && header_ != nullptr && top < header_height_;
    wxWindow& parent = on_header ? static_cast<wxWindow&>(*header_) : root_;
    ControlWindow& window = windows_.Make(control, parent);
    if (std::holds_alternative<controls::Button*>(control)) {
      window.size_changed = [this] { ReportSizeLater(); };
    }
  }
  ColourHeader();
  if (controls::Button* const button = form_.DefaultButton(); button != nullptr) {
    static_cast<wxButton*>(WindowOf(*button))->SetDefault();
  }
}

void FormFrame::MakeHeader() {
  header_ = new wxPanel(&root_);
  header_line_ = new wxStaticLine(header_);
  PlaceHeader();
}

// As wide as the frame is now, at the scale of the display that it is on.
void FormFrame::PlaceHeader() {
  if (header_ == nullptr) return;
  const int line = 1;
  const wxSize size(GetClientSize().x, ToPixels(*this, header_height_));
  header_->SetSize(0, 0, size.x, size.y);
  header_line_->SetSize(0, size.y - line, size.x, line);
}

// As the system's colours are now.
void FormFrame::ColourHeader() {
  if (header_ == nullptr) return;
  const wxColour background = wxSystemSettings::GetColour(wxSYS_COLOUR_WINDOW);
  header_->SetBackgroundColour(background);
  header_->SetForegroundColour(wxSystemSettings::GetColour(wxSYS_COLOUR_WINDOWTEXT));
  for (wxWindow* const child : header_->GetChildren()) {
    wxWindow& part = *child;
    if (&part != header_line_) part.SetBackgroundColour(background);
  }
  header_->Refresh();
}

// Where the form's pages begin; 0 for a form without pages.
std::int32_t FormFrame::HeaderHeight() {
  std::int32_t height = 0;
  for (const controls::AnyControl control : form_.Controls()) {
    if (controls::Page* const* const page = std::get_if<controls::Page*>(&control)) {
      height = std::max(height, (*page)->Place().top);
    }
  }
  return height;
}

void FormFrame::FixWidth() {
  if (form_.Outer().width == width_) return;
  width_ = form_.Outer().width;
  const int width = ToPixels(*this, width_);
  SetSizeHints(width, ToPixels(*this, kSmallestHeight), width, wxDefaultCoord);
  SetSize(width, GetSize().y);
}

void FormFrame::FormChanged() {
  const wxString caption = ToToolkit(form_.Caption());
  if (GetTitle() != caption) SetTitle(caption);
  FixWidth();
  if (form_.Left() != left_ || form_.Top() != top_) {
    left_ = form_.Left();
    top_ = form_.Top();
    SetPosition(Place());
  }
  if (!form_.Shown()) return;
  // Later: a program that begins minimized and goes on to the normal state at once does not
  // flicker, and a window appears in its place.
  if (std::exchange(show_later_, true)) return;
  CallAfter([this] {
    show_later_ = false;
    ShowForm();
  });
}

wxPoint FormFrame::Place() const { return {ToPixels(*this, left_), ToPixels(*this, top_)}; }

// A window manager may not care where and how large a window is to appear, but does when it is
// asked again.
void FormFrame::KeepPlace() {
  const bool appearing = appeared_at_ && Clock::now() - *appeared_at_ < kAppearing;
  if (!appearing || GetPosition() == Place()) return;
  appeared_at_.reset();
  CallAfter([this] { SetSize(wxRect(Place(), appearing_size_)); });
}

void FormFrame::ShowForm() {
  if (form_.Unloaded() || gate_.Ending()) return;
  // Only what the program has changed: what the user has minimized stays so.
  if (std::exchange(state_, form_.State()) != form_.State()) {
    Iconize(form_.State() == controls::Form::WindowState::kMinimized);
  }
  if (IsShown()) return;
  appeared_at_ = Clock::now();
  appearing_size_ = GetSize();
  Show();
}

void FormFrame::FormUnloaded() {
  Hide();
  if (!gate_.Working()) AfterWork();
}

void FormFrame::ReportSize() {
  gate_.Guard([this] {
    GrowButtons();
    form_.SetScreen(ToTwips(*this, wxGetDisplaySize()));
    form_.Resized(ToTwips(*this, GetSize()), ToTwips(*this, GetClientSize()));
  });
  PlaceHeader();
}

void FormFrame::ReportSizeLater() {
  if (std::exchange(report_later_, true)) return;
  CallAfter([this] {
    report_later_ = false;
    ReportSize();
  });
}

void FormFrame::GrowButtons() {
  for (const controls::AnyControl control : form_.Controls()) {
    controls::Button* const* const button = std::get_if<controls::Button*>(&control);
    const wxWindow* const window = button != nullptr ? WindowOf(**button) : nullptr;
    if (window == nullptr) continue;
    const controls::Size needed = ToTwips(*window, window->GetBestSize());
    controls::Bounds place = (*button)->Place();
    place.width = std::max(place.width, needed.width);
    place.height = std::max(place.height, needed.height);
    (*button)->SetPlace(place);
  }
}

void FormFrame::AfterWork() {
  if (gate_.Ending() && !form_.Unloaded()) {
    form_.Unload();
    return;
  }
  if (form_.Unloaded()) {
    if (gone) std::exchange(gone, nullptr)();
    Destroy();
    return;
  }
  wxWindow* const appeared = std::exchange(focus_in_, nullptr);
  if (appeared != nullptr && appeared->IsShownOnScreen() && FocusFirst(*appeared)) return;
  KeepFocus();
}

// Work may have disabled or hidden what had the focus: the keyboard must not be lost for it, nor be
// on the button beside it, where some systems put it.
void FormFrame::KeepFocus() {
  if (!IsActive()) return;
  const wxWindow* const focus = FindFocus();
  if (TakesFocus(focus) && (focus == focus_before_ || focus_before_ == nullptr)) return;
  if (TakesFocus(focus_before_)) {
    focus_before_->SetFocus();
  } else {
    FocusFirst(root_);
  }
}

void FormFrame::OnClose(wxCloseEvent& event) {
  if (!event.CanVeto()) {
    gate_.EndUnattended();
    return End();
  }
  if (!gate_.Working()) {
    gate_.Work([&] { form_.Close(); });
    if (!form_.Unloaded()) event.Veto();
    return;
  }
  event.Veto();
  bool permitted = false;
  gate_.Guard([&] { permitted = form_.MayBeClosed(); });
  if (permitted && !gate_.InDialog()) End();
}

void FormFrame::End() {
  gate_.End();
  LeaveMessageBoxes();
  Hide();
  if (!gate_.Working() && !gate_.InDialog()) AfterWork();
}

void FormFrame::OnKey(wxKeyEvent& event) {
  const int key = event.GetKeyCode();
  const bool enter = key == WXK_RETURN || key == WXK_NUMPAD_ENTER;
  if (key == WXK_ESCAPE) {
    Press(form_.CancelButton());
  } else if (enter && !event.HasAnyModifiers() && !EnterIsTaken()) {
    Press(form_.DefaultButton());
  } else if (controls::Button* const button = ButtonOf(event); button != nullptr) {
    Press(button);
  } else {
    event.Skip();
  }
}

// The form's own button with this access key. Windows looks for access keys only where the focus
// is, and that is mostly on a page; those there go first.
controls::Button* FormFrame::ButtonOf(const wxKeyEvent& event) {
  if (event.GetModifiers() != wxMOD_ALT) return nullptr;
  const int key = event.GetKeyCode();
  for (const wxWindow* const page : root_.GetChildren()) {
    if (page->IsShown() && TakesAccessKeyInside(*page, key)) return nullptr;
  }
  for (const controls::AnyControl control : form_.Controls()) {
    controls::Button* const* const button = std::get_if<controls::Button*>(&control);
    const wxWindow* const window = button != nullptr ? WindowOf(**button) : nullptr;
    if (window != nullptr && TakesAccessKey(*window, key)) return *button;
  }
  return nullptr;
}

// Whether what has the focus makes something of Enter itself.
bool FormFrame::EnterIsTaken() const {
  wxWindow* const focus = FindFocus();
  if (dynamic_cast<wxButton*>(focus) != nullptr) return true;
  const auto* const text = dynamic_cast<wxTextCtrl*>(focus);
  return text != nullptr && text->IsMultiLine() && text->IsEditable();
}

// After the key's own event, which some systems tell at a place where no window can open.
void FormFrame::Press(controls::Button* button) {
  if (button == nullptr || std::exchange(press_later_, true)) return;
  CallAfter([this, button] {
    press_later_ = false;
    gate_.Work([button] { button->Press(); });
  });
}

}  // namespace wx_windows
