// Makes the windows of controls, and arranges those of a page.
#pragma once

#include <wx/sizer.h>

#include <functional>
#include <memory>
#include <vector>

#include "platform/controls/layout.h"
#include "platform/wx/control_window.h"

namespace wx_windows {

// All windows of a form's controls.
class ControlWindows {
 public:
  // The gate must outlive it.
  explicit ControlWindows(WorkGate& gate) : gate_(gate) {}
  ControlWindows(const ControlWindows&) = delete;
  ControlWindows& operator=(const ControlWindows&) = delete;

  // A page or a group in this window has appeared.
  std::function<void(wxWindow&)> appeared;

  // Makes the window of a control, and of everything that stands on it.
  ControlWindow& Make(controls::AnyControl control, wxWindow& parent);

  // nullptr for a control that has none.
  wxWindow* Find(const controls::Control& control) const;

 private:
  template <class Window, class... Arguments>
  Window& Add(Arguments&&... arguments);
  ControlWindow& MakeOptionButton(controls::OptionButton& button, wxWindow& parent);
  ControlWindow& MakePage(controls::Page& page, wxWindow& parent);
  void Appeared(wxWindow& window) const;

  // Adds the parts of a layout to the sizer of what they stand on.
  void AddColumn(const std::vector<controls::Layout>& parts, wxWindow& parent,
                 wxFlexGridSizer& sizer);
  void AddRow(const std::vector<controls::Layout>& parts, wxWindow& parent, wxFlexGridSizer& sizer);
  void AddPart(const controls::Layout& part, wxWindow& parent, wxSizer& sizer, wxSizerFlags flags,
               bool shrinks);
  wxWindow& MakeGroup(const controls::Layout& group, wxWindow& parent);

  WorkGate& gate_;
  std::vector<std::unique_ptr<ControlWindow>> windows_;
  const controls::OptionGroup* last_group_ = nullptr;
};

}  // namespace wx_windows
