// Keys by xdotool.
#include "tests/walks/keyboard.h"

#include <cstdlib>
#include <stdexcept>

namespace walks {

void PressKeys(const std::string& keys) {
  if (std::system(("xdotool key --delay 40 " + keys).c_str()) != 0) {
    throw std::runtime_error("xdotool failed");
  }
}

}  // namespace walks
