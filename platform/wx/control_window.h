// What the windows of all controls have in common.
#pragma once

#include <wx/string.h>
#include <wx/window.h>

#include <functional>
#include <string>

#include "platform/controls/control.h"
#include "platform/wx/work_gate.h"

namespace wx_windows {

// Shows a control in a window of the toolkit: what the program changes is mirrored there, and only
// that; what the user does there goes to the control, through the gate, and back where the control
// refuses it.
//
// The control must outlive it. The toolkit owns the window, which must live until this is gone: its
// events come here.
class ControlWindow : public controls::Control::Observer {
 public:
  ControlWindow(controls::Control& control, wxWindow& window, WorkGate& gate);
  ~ControlWindow() override;
  ControlWindow(const ControlWindow&) = delete;
  ControlWindow& operator=(const ControlWindow&) = delete;

  const controls::Control& Control() const { return control_; }
  wxWindow& Window() const { return window_; }

  // It may need another size: told where no page arranges it.
  std::function<void()> size_changed;
  // It is visible now and was not.
  std::function<void()> appeared;

  void ControlChanged() final;

 protected:
  // Mirrors what only this kind of control has. Whether the window may need another size now.
  virtual bool MirrorKind() { return false; }

  // Calls the program because of something that the user did, then shows what became of it.
  void Tell(const std::function<void()>& user_action);

  // Does it when the window system gets its turn, if the window is still there then; even while
  // the program works.
  void Later(std::function<void()> code);

  // Whether the window is being changed by the program: what it reports then is not the user's.
  bool Mirroring() const { return mirroring_; }

  // A text to show when the mouse rests on the window, where the control has none of its own.
  void SetFallbackToolTip(const wxString& text);

 private:
  void MirrorToolTip();
  void PlaceAnew();
  void Arrange();

  controls::Control& control_;
  wxWindow& window_;
  WorkGate& gate_;
  controls::Bounds place_;
  wxString fallback_tool_tip_;
  wxString tool_tip_;
  bool mirroring_ = false;
};

// The caption of a control in which "&" marks an access key, and of one in which it does not.
wxString CaptionWithKey(const controls::CaptionedControl& control);
wxString PlainCaption(const controls::CaptionedControl& control);

}  // namespace wx_windows
