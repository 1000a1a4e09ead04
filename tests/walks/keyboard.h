// Keys pressed on the keyboard, which take their way through the window system.
#pragma once

#include <string>

namespace walks {

// Keys as xdotool names them, one after the other: "alt+n Home shift+End space Return". Throws
// std::runtime_error when there is no such key or no keyboard.
void PressKeys(const std::string& keys);

}  // namespace walks
