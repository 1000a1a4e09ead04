// The window of a form.
#pragma once

#include <wx/button.h>
#include <wx/frame.h>
#include <wx/iconbndl.h>
#include <wx/panel.h>
#include <wx/weakref.h>

#include <chrono>
#include <functional>
#include <optional>

#include "platform/controls/form.h"
#include "platform/wx/page_window.h"
#include "platform/wx/work_gate.h"

namespace wx_windows {

// A frame of fixed width that can be made taller. What stands above the form's pages is its header,
// on a background of its own.
//
// The form and the gate must outlive it. It destroys itself when the form is unloaded, after the
// work that unloaded it.
class FormFrame final : public wxFrame, private controls::Form::Window {
 public:
  FormFrame(controls::Form& form, WorkGate& gate, const wxIconBundle& icons);
  ~FormFrame() override;
  FormFrame(const FormFrame&) = delete;
  FormFrame& operator=(const FormFrame&) = delete;

  // Ends the work in hand and unloads the form, without asking anybody.
  void End();

  // Told when it is about to go.
  std::function<void()> gone;

  // The window that shows a control of the form; nullptr for a control of something else.
  wxWindow* WindowOf(const controls::Control& control) const { return windows_.Find(control); }

 private:
  using Clock = std::chrono::steady_clock;

  void FormChanged() override;
  void FormUnloaded() override;

  void MakeControls();
  void MakeHeader();
  void PlaceHeader();
  void ColourHeader();
  std::int32_t HeaderHeight();
  void FixWidth();
  void ShowForm();
  wxPoint Place() const;
  void KeepPlace();
  // Makes room for the captions of the form's own buttons, then tells the form its size.
  void ReportSize();
  void ReportSizeLater();
  void GrowButtons();

  void AfterWork();
  void KeepFocus();
  void OnClose(wxCloseEvent& event);
  void OnKey(wxKeyEvent& event);
  controls::Button* ButtonOf(const wxKeyEvent& event);
  bool EnterIsTaken() const;
  void Press(controls::Button* button);

  controls::Form& form_;
  WorkGate& gate_;
  ControlWindows windows_;
  wxPanel& root_;
  wxPanel* header_ = nullptr;
  wxWindow* header_line_ = nullptr;
  std::int32_t header_height_ = 0;  // in twips
  std::int32_t width_ = 0;          // as fixed last, in twips
  std::int32_t left_ = 0;           // as moved to last
  std::int32_t top_ = 0;
  controls::Form::WindowState state_ = controls::Form::WindowState::kNormal;  // as mirrored last
  std::optional<Clock::time_point> appeared_at_;  // until the window is in its place
  wxSize appearing_size_;
  wxWindow* focus_in_ = nullptr;  // a page or group that has appeared
  wxWindowRef focus_before_;      // what had the focus when the work began
  bool report_later_ = false;
  bool show_later_ = false;
  bool press_later_ = false;
};

}  // namespace wx_windows
