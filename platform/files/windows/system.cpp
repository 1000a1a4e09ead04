// The program's folder and the forms of a path on Windows.
#include <windows.h>

#include <array>
#include <vector>

#include "platform/files/file_error.h"
#include "platform/files/paths.h"
#include "platform/files/program_folder.h"
#include "platform/files/windows/call_path.h"

namespace files {
namespace {

std::wstring FinalPath(HANDLE file) {
  // The second form needs no right to look into the folders on the way.
  for (const DWORD form : {FILE_NAME_NORMALIZED, FILE_NAME_OPENED}) {
    const std::wstring path = FilledText([&](wchar_t* buffer, DWORD size) {
      return GetFinalPathNameByHandleW(file, buffer, size, form | VOLUME_NAME_DOS);
    });
    if (!path.empty()) return WithoutMark(path);
  }
  return {};
}

}  // namespace

std::filesystem::path ProgramFolder() {
  constexpr std::size_t kLongestPath = 32768;
  std::vector<wchar_t> buffer(kLongestPath);
  const DWORD size = GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
  if (size == 0 || size == buffer.size()) throw FileError(kPathNotFound);
  return FollowLink(std::wstring(buffer.data(), size)).parent_path();
}

// The library of some compilers knows nothing of \\server\share, hence none of its words here.
bool IsAbsolute(const std::wstring& path) {
  if (path.size() < 2) return false;
  const auto is_separator = [&](std::size_t at) { return path[at] == L'\\' || path[at] == L'/'; };
  if (is_separator(0)) return is_separator(1);
  return path.size() > 2 && path[1] == L':' && is_separator(2);
}

std::wstring AbsolutePath(const std::wstring& path) {
  std::wstring full = FullPath(path);
  if (full.empty()) throw FileError(kPathNotFound);
  return full;
}

std::filesystem::path FollowLink(const std::filesystem::path& path) {
  const std::wstring name = CallPath(path);
  const DWORD attributes = GetFileAttributesW(name.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
    return path;
  }
  const HANDLE file =
      CreateFileW(name.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return path;
  std::wstring resolved = FinalPath(file);
  CloseHandle(file);
  return resolved.empty() ? path : std::filesystem::path(std::move(resolved));
}

std::wstring ShortPath(const std::wstring& path) {
  std::array<wchar_t, 255> buffer{};
  const DWORD size =
      GetShortPathNameW(path.c_str(), buffer.data(), static_cast<DWORD>(buffer.size()));
  if (size != 0 && size < buffer.size()) return {buffer.data(), size};
  return FileExists(path) || FolderExists(path) ? path : std::wstring();
}

}  // namespace files
