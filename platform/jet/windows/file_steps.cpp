// Steps on whole files on Windows, where an open file keeps its name.
#include "platform/jet/file_steps.h"

#include <windows.h>

#include <string>
#include <utility>

#include "platform/files/paths.h"
#include "platform/files/windows/call_path.h"
#include "platform/files/windows/patience.h"
#include "platform/files/windows/rights.h"
#include "platform/text/code_page.h"
#include "platform/text/windows/error_text.h"

namespace jet {
namespace {

[[noreturn]] void ThrowStep(DWORD error, const std::filesystem::path& path) {
  ErrorKind kind = ErrorKind::kIo;
  if (error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION || error == ERROR_BUSY)
    kind = ErrorKind::kInUse;
  else if (error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS)
    kind = ErrorKind::kDatabaseExists;
  else if (error == ERROR_ACCESS_DENIED || error == ERROR_WRITE_PROTECT)
    kind = ErrorKind::kCannotOpen;
  throw Error(kind, {path.u16string()}, text::WideToUtf8(text::SystemErrorText(error)));
}

}  // namespace

std::filesystem::path FileItself(const std::filesystem::path& path) {
  std::wstring file = files::FullPath(files::FollowLink(path).wstring());
  if (file.empty()) return path;
  const std::wstring name = files::CallPath(file);
  std::wstring without_short_names = files::WithoutMark(files::FilledText(
      [&](wchar_t* buffer, DWORD size) { return GetLongPathNameW(name.c_str(), buffer, size); }));
  return std::move(without_short_names.empty() ? file : without_short_names);
}

bool TryPatiently(const std::function<bool()>& step) {
  return files::Patiently(files::kOpeningPatience, [&]() -> DWORD {
           return step() ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
         }) == ERROR_SUCCESS;
}

void RemoveLeftover(const std::filesystem::path& path) {
  const std::wstring name = files::CallPath(path);
  const DWORD error = files::Patiently(files::kOpeningPatience,
                                       [&] { return files::ErrorOf(DeleteFileW(name.c_str())); });
  // A missing folder is told when the file is created.
  if (error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND)
    ThrowStep(error, path);
}

void GiveRights(const std::filesystem::path& file, const std::filesystem::path& like) noexcept {
  files::GiveRights(file, like);
}

void MoveToFreeName(const std::filesystem::path& file, const std::filesystem::path& name) {
  const std::wstring from = files::CallPath(file);
  const std::wstring to = files::CallPath(name);
  const DWORD error = files::Patiently(files::kReplacingPatience, [&] {
    return files::ErrorOf(MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH));
  });
  if (error != ERROR_SUCCESS) ThrowStep(error, name);
}

void MoveOver(const std::filesystem::path& file, const std::filesystem::path& target,
              std::unique_ptr<PageStore> held_target) {
  // Only closed files are replaced. Whoever opens the target now and keeps it, or writes to it,
  // makes it fail, no more.
  const files::FileStamp known = files::StampOf(files::CallPath(target));
  held_target.reset();
  const DWORD error = files::MoveOverPatiently(file, target, known);
  if (error != ERROR_SUCCESS) ThrowStep(error, target);
}

}  // namespace jet
