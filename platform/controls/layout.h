// How the controls of a page stand to each other, without any sizes: these are the window's.
#pragma once

#include <utility>
#include <variant>
#include <vector>

#include "platform/controls/buttons.h"
#include "platform/controls/control.h"
#include "platform/controls/list_view.h"
#include "platform/controls/progress_bar.h"
#include "platform/controls/text_box.h"

namespace controls {

class Page;

// Every kind of control that a window can show.
using AnyControl = std::variant<Label*, Frame*, Button*, CheckBox*, OptionButton*, TextBox*,
                                ProgressBar*, ListView*, Page*>;

// A control or a group of them. A part takes the size that its contents need along the row or
// column that it stands in, and all the width of a column, or fills its row's height where it
// stretches; the parts that stretch share what the others leave. What is hidden takes no room.
struct Layout {
  enum class Kind {
    kControl,
    kRow,     // side by side, centred on each other
    kColumn,  // below each other
    kGroup,   // a column on a frame
    kSpace,   // nothing, which stretches
  };

  Kind kind = Kind::kSpace;
  AnyControl control{};         // of kControl; the frame of kGroup
  std::vector<Layout> parts{};  // of the others
  bool stretch = false;
};

inline Layout Show(AnyControl control) {
  return {.kind = Layout::Kind::kControl, .control = control};
}
inline Layout Row(std::vector<Layout> parts) {
  return {.kind = Layout::Kind::kRow, .parts = std::move(parts)};
}
inline Layout Column(std::vector<Layout> parts) {
  return {.kind = Layout::Kind::kColumn, .parts = std::move(parts)};
}
inline Layout Group(Frame& frame, std::vector<Layout> parts) {
  return {.kind = Layout::Kind::kGroup, .control = &frame, .parts = std::move(parts)};
}
inline Layout Space() { return {.kind = Layout::Kind::kSpace, .stretch = true}; }
inline Layout Stretched(Layout layout) {
  layout.stretch = true;
  return layout;
}

// A control that other controls stand on: a page of a form.
class Page : public Control {
 public:
  // How its controls stand on it, in the order in which the keyboard reaches them. Asked once, by
  // the window, before it is shown.
  virtual Layout Arrangement() = 0;
};

}  // namespace controls
