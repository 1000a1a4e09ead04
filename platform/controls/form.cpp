// A form's state and what its window is told of it.
#include "platform/controls/form.h"

#include <utility>

namespace controls {

void Form::SetCaption(std::wstring caption) {
  caption_ = std::move(caption);
  Changed();
}

void Form::SetState(WindowState state) {
  state_ = state;
  Changed();
}

void Form::Show() {
  shown_ = true;
  Changed();
}

void Form::Move(std::int32_t left, std::int32_t top) {
  left_ = left;
  top_ = top;
  Changed();
}

void Form::SetWidth(std::int32_t outer_width) {
  if (outer_.width == outer_width) return;
  outer_.width = outer_width;
  Changed();
}

void Form::Unload() {
  if (std::exchange(unloaded_, true)) return;
  if (window_ != nullptr) window_->FormUnloaded();
}

void Form::Resized(Size outer, Size inner) {
  outer_ = outer;
  inner_ = inner;
  if (Resize) Resize();
}

bool Form::Close() {
  if (MayBeClosed()) Unload();
  return unloaded_;
}

void Form::Changed() const {
  if (window_ != nullptr) window_->FormChanged();
}

}  // namespace controls
