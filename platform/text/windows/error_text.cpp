// What Windows says about its error codes.
#include "platform/text/windows/error_text.h"

#include <windows.h>

#include <array>

namespace text {

std::wstring SystemErrorText(std::uint32_t code) {
  std::array<wchar_t, 512> buffer{};
  // The mask stands for "no line ends but those that must be"; the last one becomes a blank.
  const DWORD size = FormatMessageW(
      FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
      nullptr, code, 0, buffer.data(), static_cast<DWORD>(buffer.size()), nullptr);
  std::wstring text(buffer.data(), size);
  while (!text.empty() && (text.back() == L' ' || text.back() == L'.')) text.pop_back();
  return text.empty() ? L"error " + std::to_wstring(code) : text;
}

}  // namespace text
