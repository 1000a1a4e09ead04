// A box with a text that the user may edit.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "platform/controls/control.h"

namespace controls {

// Lines are separated by CR LF, whatever the window uses itself.
class TextBox final : public Control {
 public:
  // The user changed the text.
  std::function<void()> Change;

  const std::wstring& Text() const { return text_; }
  void SetText(std::wstring text) { Control::Change(text_, std::move(text)); }

  // For reading only: the user can select and copy, but not type.
  bool Locked() const { return locked_; }
  void SetLocked(bool locked) { Control::Change(locked_, locked); }

  // Of several lines, wrapped at blanks. Set before the box is shown.
  bool MultiLine() const { return multi_line_; }
  void SetMultiLine(bool multi_line) { Control::Change(multi_line_, multi_line); }

  // The user edited the text; this is what it is now.
  void Type(std::wstring text) {
    if (!TakesInput() || locked_ || text == text_) return;
    SetText(std::move(text));
    if (Change) Change();
  }

 private:
  std::wstring text_;
  bool locked_ = false;
  bool multi_line_ = false;
};

}  // namespace controls
