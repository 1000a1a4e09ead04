// File locks by sharing: a handle beside which nobody else can open the file.
#include "platform/files/file_lock.h"

#include <algorithm>
#include <string>
#include <utility>

#include "platform/files/windows/call_path.h"
#include "platform/files/windows/handle.h"
#include "platform/files/windows/patience.h"

namespace files {

FileLock::FileLock(const std::filesystem::path& path, MissingFile missing,
                   std::chrono::milliseconds patience) {
  const std::wstring name = CallPath(path);
  const bool create = missing == MissingFile::kCreateEmpty;
  // The system refuses these as well, but not on every kind of drive and not to everybody, and with
  // an error that may pass.
  constexpr DWORD kRefused = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY;
  const DWORD attributes = GetFileAttributesW(name.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & kRefused) != 0) {
    throw FileError(kPermissionDenied);
  }
  const FileStamp before = StampOf(name);
  HANDLE file = INVALID_HANDLE_VALUE;
  const DWORD error = Patiently(std::max(patience, kReplacingPatience), [&] {
    // Deletion is shared so that a rename can put another file in this one's place.
    file = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_DELETE, nullptr,
                       create ? OPEN_ALWAYS : OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    return ErrorOf(file != INVALID_HANDLE_VALUE);
  });
  const bool absent = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
  if (absent && !create) return;
  if (error != ERROR_SUCCESS) throw CallError(error, path);
  // Whoever was waited for may have saved something, which the caller is about to replace unread.
  if (before != FileStamp() && StampOf(name) != before) {
    CloseHandle(file);
    throw FileError(kPermissionDenied);
  }
  native_ = FromHandle(file);
}

FileLock::FileLock(FileLock&& other) noexcept : native_(std::exchange(other.native_, kNothing)) {}

FileLock& FileLock::operator=(FileLock&& other) noexcept {
  std::swap(native_, other.native_);
  return *this;
}

FileLock::~FileLock() { Release(); }

void FileLock::Release() {
  if (native_ != kNothing) CloseHandle(ToHandle(native_));
  native_ = kNothing;
}

}  // namespace files
