// What the user clicks: buttons, check boxes and option buttons.
#include "platform/controls/buttons.h"

namespace controls {

void CheckBox::Toggle() {
  if (!TakesInput()) return;
  SetValue(!value_);
  if (Click) Click();
}

OptionButton::OptionButton(OptionGroup& group) : group_(group) { group_.buttons_.push_back(this); }

OptionButton::~OptionButton() { std::erase(group_.buttons_, this); }

void OptionButton::SetValue(bool value) {
  if (value) {
    for (OptionButton* other : group_.buttons_) {
      if (other != this) other->Change(other->value_, false);
    }
  }
  Change(value_, value);
}

void OptionButton::Choose() {
  if (!TakesInput() || value_) return;
  SetValue(true);
  if (Click) Click();
}

}  // namespace controls
