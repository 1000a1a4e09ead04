// Paths as the calls of Windows take and give them.
#include "platform/files/windows/call_path.h"

#include <string_view>

namespace files {
namespace {

// A folder's path may have 247 characters, so that a short name fits behind it.
constexpr std::size_t kLongestUnmarked = 247;

constexpr std::wstring_view kMark = L"\\\\?\\";
constexpr std::wstring_view kServerMark = L"\\\\?\\UNC\\";
constexpr std::wstring_view kDevice = L"\\\\.\\";
constexpr std::wstring_view kServer = L"\\\\";

}  // namespace

std::wstring CallPath(const std::filesystem::path& path) {
  const std::wstring full = FullPath(path.wstring());
  if (full.size() <= kLongestUnmarked || full.starts_with(kMark) || full.starts_with(kDevice)) {
    return path.wstring();
  }
  if (full.starts_with(kServer)) return std::wstring(kServerMark) + full.substr(kServer.size());
  return std::wstring(kMark) + full;
}

std::wstring FullPath(const std::wstring& path) {
  return FilledText([&](wchar_t* buffer, DWORD size) {
    return GetFullPathNameW(path.c_str(), size, buffer, nullptr);
  });
}

std::wstring WithoutMark(const std::wstring& path) {
  if (path.starts_with(kServerMark)) {
    return std::wstring(kServer) + path.substr(kServerMark.size());
  }
  return path.starts_with(kMark) ? path.substr(kMark.size()) : path;
}

}  // namespace files
