// The windows of all controls but lists and pages.
#pragma once

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/gauge.h>
#include <wx/panel.h>
#include <wx/radiobut.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include "platform/controls/buttons.h"
#include "platform/controls/progress_bar.h"
#include "platform/controls/text_box.h"
#include "platform/wx/control_window.h"

namespace wx_windows {

// A caption too long for its place ends in an ellipsis, with all of it as the tool tip.
class LabelWindow final : public ControlWindow {
 public:
  LabelWindow(controls::Label& label, wxWindow& parent, WorkGate& gate);

 private:
  bool MirrorKind() override;
  void MirrorWholeText();

  const controls::Label& label_;
  wxStaticText& text_;
};

// Its caption stands in bold above what it contains; none takes no room.
class FrameWindow final : public ControlWindow {
 public:
  FrameWindow(controls::Frame& frame, wxWindow& parent, WorkGate& gate);

  wxStaticText& Heading() const { return heading_; }

 private:
  bool MirrorKind() override;

  const controls::Frame& frame_;
  wxStaticText& heading_;
};

class ButtonWindow final : public ControlWindow {
 public:
  ButtonWindow(controls::Button& button, wxWindow& parent, WorkGate& gate);

 private:
  bool MirrorKind() override;

  const controls::Button& button_;
  wxButton& native_;
};

class CheckBoxWindow final : public ControlWindow {
 public:
  CheckBoxWindow(controls::CheckBox& box, wxWindow& parent, WorkGate& gate);

 private:
  bool MirrorKind() override;

  const controls::CheckBox& box_;
  wxCheckBox& native_;
};

class OptionButtonWindow final : public ControlWindow {
 public:
  // `begins_group`: it does not belong to the option buttons that stand before it.
  OptionButtonWindow(controls::OptionButton& button, bool begins_group, wxWindow& parent,
                     WorkGate& gate);

  // The user has chosen it, and maybe was refused: the others of its group may show it wrongly.
  std::function<void()> chosen;

 private:
  bool MirrorKind() override;
  void Choose();

  controls::OptionButton& button_;
  wxRadioButton& native_;
};

class TextBoxWindow final : public ControlWindow {
 public:
  TextBoxWindow(controls::TextBox& box, wxWindow& parent, WorkGate& gate);

 private:
  bool MirrorKind() override;

  const controls::TextBox& box_;
  wxTextCtrl& native_;
  wxString shown_;
};

// The window's bar has a thousand steps, so that it is only told of what can be seen.
class ProgressBarWindow final : public ControlWindow {
 public:
  ProgressBarWindow(controls::ProgressBar& bar, wxWindow& parent, WorkGate& gate);

 private:
  bool MirrorKind() override;

  const controls::ProgressBar& bar_;
  wxGauge& native_;
};

}  // namespace wx_windows
