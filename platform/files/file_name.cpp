// Whether a name from elsewhere may be used as a file's.
#include "platform/files/file_name.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "platform/text/strings.h"

namespace files {
namespace {

constexpr std::size_t kLongest =
    255;  // characters; bytes on some systems, which refuse by themselves

bool IsForbidden(wchar_t character) {
  constexpr wchar_t kLastControl = 0x1F;
  constexpr wchar_t kDelete = 0x7F;
  constexpr wchar_t kLastHighControl = 0x9F;
  if (character <= kLastControl) return true;
  if (character >= kDelete && character <= kLastHighControl) return true;
  return std::wstring_view(L"/\\:*?\"<>|").find(character) != std::wstring_view::npos;
}

// The digits that Windows takes in a device's name; the raised ones too.
bool IsDeviceDigit(wchar_t character) {
  return std::wstring_view(L"0123456789\u00B9\u00B2\u00B3").find(character) !=
         std::wstring_view::npos;
}

// Windows takes a device's name for the device whatever extension follows.
bool IsDevice(std::wstring_view name) {
  const std::wstring stem = text::ToUpper(text::TrimRight(name.substr(0, name.find(L'.'))));
  constexpr std::wstring_view kDevices[] = {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"};
  if (std::find(std::begin(kDevices), std::end(kDevices), stem) != std::end(kDevices)) return true;
  return stem.size() == 4 && (stem.starts_with(L"COM") || stem.starts_with(L"LPT")) &&
         IsDeviceDigit(stem[3]);
}

}  // namespace

bool IsPlainFileName(std::wstring_view name) {
  if (name.empty() || name.size() > kLongest) return false;
  if (name.ends_with(L'.') || name.ends_with(L' ')) return false;  // "." and ".." among them
  return std::none_of(name.begin(), name.end(), IsForbidden) && !IsDevice(name);
}

}  // namespace files
