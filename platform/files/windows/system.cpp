// The program's folder and short paths on Windows.
#include <windows.h>

#include <array>
#include <system_error>
#include <vector>

#include "platform/files/file_error.h"
#include "platform/files/paths.h"
#include "platform/files/program_folder.h"

namespace files {

std::filesystem::path ProgramFolder() {
  constexpr std::size_t kLongestPath = 32768;
  std::vector<wchar_t> buffer(kLongestPath);
  const DWORD size = GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
  if (size == 0 || size == buffer.size()) throw FileError(kPathNotFound);
  const std::filesystem::path program(std::wstring(buffer.data(), size));
  std::error_code error;
  const std::filesystem::path resolved = std::filesystem::canonical(program, error);
  return (error ? program : resolved).parent_path();
}

std::wstring ShortPath(const std::wstring& path) {
  std::array<wchar_t, 255> buffer{};
  const DWORD size =
      GetShortPathNameW(path.c_str(), buffer.data(), static_cast<DWORD>(buffer.size()));
  return size < buffer.size() ? std::wstring(buffer.data(), size) : std::wstring();
}

}  // namespace files
