// Tells a press from its repetitions.
#include "platform/wx/repeated_input.h"

#include <wx/button.h>
#include <wx/settings.h>
#include <wx/textctrl.h>
#include <wx/utils.h>

namespace wx_windows {
namespace {

// In milliseconds. The longest that a system waits before a held key repeats itself, and a pause
// between two presses that no hand is quick enough for.
constexpr long kLongestWait = 1100;
constexpr long kQuickest = 100;
// Between two clicks, where the system has no setting of its own.
constexpr long kDoubleClick = 500;

// Whether events tell that a held key repeats itself. Their times do not where they tell: there
// some events have the time of the one before.
#ifdef __WXMSW__
constexpr bool kRepetitionIsTold = true;
#else
constexpr bool kRepetitionIsTold = false;
#endif

// Whether a key is up now for certain: not every system tells.
bool IsUp(int key) {
#ifdef __WXGTK__
  if (wxGetDisplayInfo().type != wxDisplayX11) return false;
#endif
  return !wxGetKeyState(static_cast<wxKeyCode>(key));
}

// Whether a key would press a button or answer a question. Where text is written it may repeat.
bool Presses(const wxKeyEvent& key) {
  const auto* const text = dynamic_cast<const wxTextCtrl*>(key.GetEventObject());
  const bool writes = text != nullptr && text->IsEditable();
  switch (key.GetKeyCode()) {
    case WXK_SPACE:
      return !writes;
    case WXK_RETURN:
    case WXK_NUMPAD_ENTER:
      return !writes || !text->IsMultiLine();
    default:
      return key.GetKeyCode() == WXK_ESCAPE || key.GetModifiers() == wxMOD_ALT;
  }
}

}  // namespace

bool RepeatedInput::Drops(const wxEvent& event) {
  for (auto& [key, press] : down_) {
    if (!press.let_go) press.let_go = IsUp(key);
  }
  if (const auto* const key = dynamic_cast<const wxKeyEvent*>(&event)) {
    return Repeats(*key) && Presses(*key);
  }
  const auto* const mouse = dynamic_cast<const wxMouseEvent*>(&event);
  return mouse != nullptr && IsSecondClick(*mouse);
}

// One press is several events of the same time. That a key is let go may be told to nobody, where
// no window has the focus; and events of a key that is held may wait until it is let go.
bool RepeatedInput::Repeats(const wxKeyEvent& key) {
  const wxEventType type = key.GetEventType();
  if (type == wxEVT_KEY_UP) down_.erase(key.GetKeyCode());
  if (type != wxEVT_CHAR_HOOK && type != wxEVT_KEY_DOWN) return false;
  if (kRepetitionIsTold) return key.IsAutoRepeat();
  const long time = key.GetTimestamp();
  const auto [place, pressed] = down_.try_emplace(key.GetKeyCode(), Press{.time = time});
  Press& last = place->second;
  if (pressed || last.time == time) return last.repeated;
  const long since = time - last.time;
  last = {.time = time, .repeated = since < (last.let_go ? kQuickest : kLongestWait)};
  return last.repeated;
}

// Some systems tell a second press before they call it a double click.
bool RepeatedInput::IsSecondClick(const wxMouseEvent& mouse) {
  if (dynamic_cast<const wxButton*>(mouse.GetEventObject()) == nullptr) return false;
  if (mouse.LeftDClick()) return true;
  if (!mouse.LeftDown()) return false;
  const long time = mouse.GetTimestamp();
  if (mouse.GetEventObject() == clicked_) {
    const long setting = wxSystemSettings::GetMetric(wxSYS_DCLICK_MSEC);
    const long since = time - clicked_at_;
    if (since > 0 && since < (setting > 0 ? setting : kDoubleClick)) return true;
  }
  clicked_ = mouse.GetEventObject();
  clicked_at_ = time;
  return false;
}

}  // namespace wx_windows
