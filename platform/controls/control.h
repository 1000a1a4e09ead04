// What all controls have in common, and the two that have nothing more than a caption.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>

namespace controls {

// Sizes and places in twips, 1,440 an inch: 15 are a pixel of a display at its normal scale.
struct Size {
  std::int32_t width = 0;
  std::int32_t height = 0;

  bool operator==(const Size&) const = default;
};

// Where a control stands on its form, from the upper left corner.
struct Bounds {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;

  bool operator==(const Bounds&) const = default;
};

// A part of a page as the page sees it: a plain object that works the same with a real window
// behind it and without one.
//
// Setters are for the program. A setter that changes something tells the observer, and raises no
// event. What the user does has operations of its own (Press, Toggle, Type ...), called by the
// window or by a test: they do nothing while the control, or one that contains it, is disabled or
// hidden; otherwise they change the control, tell the observer and then raise the control's event,
// a function that the page may have set.
//
// One thread. Not copied: a control has identity.
class Control {
 public:
  // Shows the control somewhere, as a rule in a real window. It must not change the control while
  // it is being told.
  class Observer {
   public:
    virtual ~Observer() = default;
    // A property is no longer what it was; which one, the control itself tells.
    virtual void ControlChanged() = 0;
  };

  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  // From now on this observer is told, until it is replaced; nullptr for nobody. It must live as
  // long as it is told.
  void Observe(Observer* observer) { observer_ = observer; }

  // From now on these controls stand on this one, which must live as long as they are used: a
  // page's controls on the page, a group's on its frame. Their own properties stay what they are.
  void Contain(std::initializer_list<Control*> parts) {
    for (Control* part : parts) part->container_ = this;
  }

  bool Enabled() const { return enabled_; }
  void SetEnabled(bool enabled) { Change(enabled_, enabled); }
  bool Visible() const { return visible_; }
  void SetVisible(bool visible) { Change(visible_, visible); }
  const std::wstring& ToolTip() const { return tool_tip_; }
  void SetToolTip(std::wstring tool_tip) { Change(tool_tip_, std::move(tool_tip)); }
  // Only for what stands on a form itself; a page's controls are placed by its Arrangement. The
  // form's window makes the width and height of a button larger where the caption needs it.
  const Bounds& Place() const { return place_; }
  void SetPlace(const Bounds& place) { Change(place_, place); }

 protected:
  Control() = default;

  // Whether the user can reach the control.
  bool TakesInput() const {
    const bool by_itself = enabled_ && visible_;
    return by_itself && (container_ == nullptr || container_->TakesInput());
  }

  // Gives a property a value and tells the observer if that made a difference.
  template <class Value>
  void Change(Value& property, Value value) {
    if (property == value) return;
    property = std::move(value);
    Changed();
  }

  // Tells the observer of a change that Change did not make.
  void Changed() {
    if (observer_ != nullptr) observer_->ControlChanged();
  }

 private:
  Observer* observer_ = nullptr;
  const Control* container_ = nullptr;
  bool enabled_ = true;
  bool visible_ = true;
  std::wstring tool_tip_;
  Bounds place_;
};

// A control with a text of its own. "&" in it marks the next character as the access key.
class CaptionedControl : public Control {
 public:
  const std::wstring& Caption() const { return caption_; }
  void SetCaption(std::wstring caption) { Change(caption_, std::move(caption)); }

 private:
  std::wstring caption_;
};

// A text that the user only reads. "&" has no meaning in it.
class Label final : public CaptionedControl {
 public:
  // The title of what stands below it, in larger letters. Set before the label is shown.
  bool Heading() const { return heading_; }
  void SetHeading(bool heading) { Change(heading_, heading); }

 private:
  bool heading_ = false;
};

// A group of controls, those that it contains, with an optional heading. Hiding it hides them.
class Frame final : public CaptionedControl {};

}  // namespace controls
