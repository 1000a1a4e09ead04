// The program's folder and the forms of a path on systems with /proc and without short names.
#include <system_error>

#include "platform/files/file_error.h"
#include "platform/files/paths.h"
#include "platform/files/program_folder.h"

namespace files {

std::filesystem::path ProgramFolder() {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) throw FileError(kPathNotFound);
  return program.parent_path();
}

bool IsAbsolute(const std::wstring& path) { return ToPath(path).is_absolute(); }

std::wstring AbsolutePath(const std::wstring& path) {
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(ToPath(path), error);
  if (error) throw FileError(kPathNotFound);
  return ToText(absolute);
}

std::filesystem::path FollowLink(const std::filesystem::path& path) {
  std::error_code error;
  if (!std::filesystem::is_symlink(std::filesystem::symlink_status(path, error))) return path;
  std::filesystem::path file = std::filesystem::canonical(path, error);
  return error ? path : file;
}

std::wstring ShortPath(const std::wstring& path) { return path; }

}  // namespace files
