// The ANSI code page of Windows.
#include "platform/text/code_page.h"

#include <windows.h>

#include <climits>

#include "platform/text/runtime_error.h"

namespace text {
namespace {

int Length(std::size_t size) {
  if (size > INT_MAX) Raise(kOutOfMemory);
  return static_cast<int>(size);
}

}  // namespace

std::wstring AnsiToWide(std::string_view bytes) {
  if (bytes.empty()) return {};
  // No code page makes more wide characters than there are bytes.
  const int size = Length(bytes.size());
  std::wstring text(bytes.size(), L'\0');
  const int made = MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, text.data(), size);
  text.resize(static_cast<std::size_t>(made));
  return text;
}

std::string WideToAnsi(std::wstring_view text) {
  if (text.empty()) return {};
  const int size = Length(text.size());
  const int needed =
      WideCharToMultiByte(CP_ACP, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(CP_ACP, 0, text.data(), size, bytes.data(), needed, nullptr, nullptr);
  return bytes;
}

}  // namespace text
