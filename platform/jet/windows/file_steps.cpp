// Steps on whole files on Windows, where an open file keeps its name.
#include "platform/jet/file_steps.h"

#include <windows.h>

#include <string>

#include "platform/text/code_page.h"
#include "platform/text/windows/error_text.h"

namespace jet {
namespace {

[[noreturn]] void ThrowStep(DWORD error, const std::filesystem::path& path) {
  ErrorKind kind = ErrorKind::kIo;
  if (error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION)
    kind = ErrorKind::kInUse;
  else if (error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS)
    kind = ErrorKind::kDatabaseExists;
  else if (error == ERROR_ACCESS_DENIED || error == ERROR_WRITE_PROTECT)
    kind = ErrorKind::kCannotOpen;
  throw Error(kind, {path.u16string()}, text::WideToUtf8(text::SystemErrorText(error)));
}

}  // namespace

void RemoveLeftover(const std::filesystem::path& path) {
  if (DeleteFileW(path.c_str()) != 0) return;
  const DWORD error = GetLastError();
  // A missing folder is told when the file is created.
  if (error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND) ThrowStep(error, path);
}

// A new file has the rights that its folder gives.
void GiveRights(const std::filesystem::path&, const std::filesystem::path&) noexcept {}

void MoveToFreeName(const std::filesystem::path& file, const std::filesystem::path& name) {
  if (MoveFileExW(file.c_str(), name.c_str(), MOVEFILE_WRITE_THROUGH) == 0)
    ThrowStep(GetLastError(), name);
}

void MoveOver(const std::filesystem::path& file, const std::filesystem::path& target,
              std::unique_ptr<PageStore> held_target) {
  // Only closed files are replaced. Whoever opens the target now makes it fail, no more.
  held_target.reset();
  if (MoveFileExW(file.c_str(), target.c_str(),
                  MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == 0)
    ThrowStep(GetLastError(), target);
}

}  // namespace jet
