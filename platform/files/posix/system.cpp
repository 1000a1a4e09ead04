// The program's folder and short paths on systems with /proc and without short names.
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

std::wstring ShortPath(const std::wstring& path) { return path; }

}  // namespace files
