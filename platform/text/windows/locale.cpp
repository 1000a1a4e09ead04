// The user's regional settings.
#include <windows.h>

#include <array>

#include "platform/text/system_locale.h"

namespace text {
namespace {

std::wstring Ask(LCTYPE what) {
  std::array<wchar_t, 16> buffer{};  // both marks have at most 4 characters
  const int size =
      GetLocaleInfoW(LOCALE_USER_DEFAULT, what, buffer.data(), static_cast<int>(buffer.size()));
  return size > 1 ? std::wstring(buffer.data()) : std::wstring();
}

}  // namespace

SystemMarks AskSystemMarks() { return {Ask(LOCALE_SDECIMAL), Ask(LOCALE_STHOUSAND)}; }

}  // namespace text
