// A window of its own: what stands on it, its title, place and size, and how it ends.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/controls/layout.h"

namespace controls {

// A form as the program sees it: a plain object that works the same with a real window behind it
// and without one. Like a control's, its setters tell the window and raise no event, while what the
// user does has operations of its own, which raise the form's events.
//
// A form is loaded by the program's start (what Load does), shown, and in the end unloaded, once.
// The window must not outlive the form. One thread.
class Form {
 public:
  enum class WindowState { kNormal, kMinimized };

  // Shows the form. It must not change the form while it is being told.
  class Window {
   public:
    virtual ~Window() = default;
    // It is shown now, or the caption, state, place or width that the program wants is no longer
    // what it was.
    virtual void FormChanged() = 0;
    // The form is unloaded: the window must go. Told once, maybe from inside an event of a control
    // that stands on the form.
    virtual void FormUnloaded() = 0;
  };

  // `outer` is the size to begin with.
  explicit Form(Size outer) : outer_(outer) {}
  virtual ~Form() = default;
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  // What stands on the form itself, in the order in which the keyboard reaches it. A window makes
  // the places of its buttons larger where their captions need it, before it reports its size, and
  // reports it again when a caption has changed. What stands above the pages is the form's header.
  virtual std::vector<AnyControl> Controls() = 0;
  // The button that Enter presses, and that which Escape presses; neither does while it takes no
  // input. nullptr for none.
  virtual Button* DefaultButton() { return nullptr; }
  virtual Button* CancelButton() { return nullptr; }

  // As Control::Observe.
  void ShowIn(Window* window) { window_ = window; }

  const std::wstring& Caption() const { return caption_; }
  void SetCaption(std::wstring caption);
  WindowState State() const { return state_; }
  void SetState(WindowState state);
  bool Shown() const { return shown_; }
  void Show();
  // Its upper left corner on the screen.
  std::int32_t Left() const { return left_; }
  std::int32_t Top() const { return top_; }
  void Move(std::int32_t left, std::int32_t top);
  // The window with its frame, and what it has room for inside. The program may ask for a width,
  // which then is the only one that the window can have.
  Size Outer() const { return outer_; }
  Size Inner() const { return inner_; }
  Size Screen() const { return screen_; }
  void SetWidth(std::int32_t outer_width);

  // Ends the form. What the user may not close, the program may.
  void Unload();
  bool Unloaded() const { return unloaded_; }

  // By the window: the screen that it is on; its sizes, which raise Resize.
  void SetScreen(Size screen) { screen_ = screen; }
  void Resized(Size outer, Size inner);
  // Whether the user may close it now.
  bool MayBeClosed() const { return !MayClose || MayClose(); }
  // The user wants to close it: unloads the form unless it may not be closed. Whether it is
  // unloaded.
  bool Close();

  std::function<void()> Resize;
  std::function<bool()> MayClose;  // none: it may

 private:
  void Changed() const;

  Window* window_ = nullptr;
  std::wstring caption_;
  WindowState state_ = WindowState::kNormal;
  std::int32_t left_ = 0;
  std::int32_t top_ = 0;
  Size outer_;
  Size inner_;
  Size screen_;
  bool shown_ = false;
  bool unloaded_ = false;
};

}  // namespace controls
