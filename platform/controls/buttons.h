// What the user clicks: buttons, check boxes and option buttons.
#pragma once

#include <functional>
#include <vector>

#include "platform/controls/control.h"

namespace controls {

class Button final : public CaptionedControl {
 public:
  std::function<void()> Click;

  // The user clicked it.
  void Press() {
    if (TakesInput() && Click) Click();
  }
};

class CheckBox final : public CaptionedControl {
 public:
  std::function<void()> Click;

  bool Value() const { return value_; }
  void SetValue(bool value) { Change(value_, value); }

  // The user clicked it: it has the other value now.
  void Toggle();

 private:
  bool value_ = false;
};

class OptionButton;

// The option buttons of which at most one is on. It must outlive its buttons, and so stands before
// them in a page.
class OptionGroup {
 private:
  friend OptionButton;
  std::vector<OptionButton*> buttons_;
};

class OptionButton final : public CaptionedControl {
 public:
  explicit OptionButton(OptionGroup& group);
  ~OptionButton() override;

  std::function<void()> Click;

  const OptionGroup& Group() const { return group_; }

  // Turning a button on turns the group's others off, and their observers are told too.
  bool Value() const { return value_; }
  void SetValue(bool value);

  // The user clicked it: it is on now. Clicking the one that is on already is no event.
  void Choose();

 private:
  OptionGroup& group_;
  bool value_ = false;
};

}  // namespace controls
