// What the windows of all controls have in common.
#include "platform/wx/control_window.h"

#include <wx/control.h>
#include <wx/sizer.h>
#include <wx/tooltip.h>

#include <utility>

#include "platform/wx/conversion.h"
#include "platform/wx/scoped_value.h"

namespace wx_windows {

ControlWindow::ControlWindow(controls::Control& control, wxWindow& window, WorkGate& gate)
    : control_(control), window_(window), gate_(gate) {
  control_.Observe(this);
  window_.Bind(wxEVT_DPI_CHANGED, [this](wxDPIChangedEvent& event) {
    event.Skip();
    PlaceAnew();
  });
}

ControlWindow::~ControlWindow() { control_.Observe(nullptr); }

void ControlWindow::ControlChanged() {
  const bool appears = control_.Visible() && !window_.IsShown();
  bool needs_size = window_.IsShown() != control_.Visible();
  {
    const ScopedValue mirroring(mirroring_, true);
    if (window_.IsThisEnabled() != control_.Enabled()) window_.Enable(control_.Enabled());
    MirrorToolTip();
    if (MirrorKind()) needs_size = true;
    if (window_.IsShown() != control_.Visible()) window_.Show(control_.Visible());
  }
  if (window_.GetContainingSizer() == nullptr && control_.Place() != place_) {
    place_ = control_.Place();
    window_.SetSize(ToPixels(window_, place_));
  }
  if (needs_size) Arrange();
  if (appears && appeared) appeared();
}

// The toolkit has scaled fonts, sizers and smallest sizes, but no place that was given in pixels.
void ControlWindow::PlaceAnew() {
  if (window_.GetContainingSizer() != nullptr) return;
  window_.SetSize(ToPixels(window_, place_));
  window_.Layout();
}

void ControlWindow::Tell(const std::function<void()>& user_action) {
  if (mirroring_) return;
  gate_.Work(user_action);
  ControlChanged();
}

void ControlWindow::Later(std::function<void()> code) {
  window_.CallAfter([this, code = std::move(code)] { gate_.Guard(code); });
}

void ControlWindow::SetFallbackToolTip(const wxString& text) {
  fallback_tool_tip_ = text;
  MirrorToolTip();
}

void ControlWindow::MirrorToolTip() {
  const wxString wanted =
      control_.ToolTip().empty() ? fallback_tool_tip_ : ToToolkit(control_.ToolTip());
  if (wanted == tool_tip_) return;
  tool_tip_ = wanted;
  if (wanted.empty()) {
    window_.UnsetToolTip();
  } else {
    window_.SetToolTip(wanted);
  }
}

// A window inside others may change the size that these need, too.
void ControlWindow::Arrange() {
  window_.InvalidateBestSize();
  if (window_.GetContainingSizer() == nullptr) {
    if (size_changed) size_changed();
    return;
  }
  for (wxWindow* around = window_.GetParent(); around != nullptr && around->GetSizer() != nullptr;
       around = around->GetParent()) {
    around->InvalidateBestSize();
    around->Layout();
  }
}

wxString CaptionWithKey(const controls::CaptionedControl& control) {
  return ToToolkit(control.Caption());
}

wxString PlainCaption(const controls::CaptionedControl& control) {
  return wxControl::EscapeMnemonics(ToToolkit(control.Caption()));
}

}  // namespace wx_windows
