// Tells a press from its repetitions.
#pragma once

#include <wx/event.h>

#include <unordered_map>

namespace wx_windows {

// Sees every event before any window does, and finds those that would press a button again for one
// movement of the user's: a key that is held down, the second half of a double click. Otherwise
// they would walk through the form, and answer questions that come up on the way.
class RepeatedInput {
 public:
  // Whether no window must see it.
  bool Drops(const wxEvent& event);

 private:
  bool Repeats(const wxKeyEvent& key);
  bool IsSecondClick(const wxMouseEvent& mouse);

  struct Press {
    long time = 0;  // of the event, in milliseconds
    bool repeated = false;
    bool let_go = false;  // as the system says, even if no event has
  };
  std::unordered_map<int, Press> down_;  // keys of which no event has told that they are up
  const wxObject* clicked_ = nullptr;    // the last button, only to compare
  long clicked_at_ = 0;
};

}  // namespace wx_windows
