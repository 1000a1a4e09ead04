// Keys by SendInput.
#include "tests/walks/keyboard.h"

#include <windows.h>

#include <map>
#include <sstream>
#include <stdexcept>

namespace walks {
namespace {

constexpr DWORD kDelay = 40;  // milliseconds

WORD CodeOf(const std::string& name) {
  static const std::map<std::string, WORD> codes = {
      {"alt", VK_MENU},      {"shift", VK_SHIFT}, {"space", VK_SPACE}, {"Return", VK_RETURN},
      {"Escape", VK_ESCAPE}, {"Home", VK_HOME},   {"End", VK_END},     {"Up", VK_UP},
      {"Down", VK_DOWN},     {"Tab", VK_TAB},
  };
  if (const auto found = codes.find(name); found != codes.end()) return found->second;
  if (name.size() == 1 && name[0] >= 'a' && name[0] <= 'z') {
    return static_cast<WORD>(name[0] - 'a' + 'A');
  }
  throw std::runtime_error("no key " + name);
}

void Send(WORD code, DWORD flags) {
  INPUT input{};
  input.type = INPUT_KEYBOARD;
  input.ki.wVk = code;
  input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(code, MAPVK_VK_TO_VSC));
  input.ki.dwFlags = flags;
  if (SendInput(1, &input, sizeof(input)) != 1) throw std::runtime_error("no keyboard");
  Sleep(kDelay);
}

// The last one is pressed while the others are held down.
void PressTogether(const std::string& names) {
  const std::size_t plus = names.find('+');
  const WORD code = CodeOf(names.substr(0, plus));
  Send(code, 0);
  if (plus != std::string::npos) PressTogether(names.substr(plus + 1));
  Send(code, KEYEVENTF_KEYUP);
}

}  // namespace

void PressKeys(const std::string& keys) {
  std::istringstream stream(keys);
  for (std::string names; stream >> names;) PressTogether(names);
}

}  // namespace walks
