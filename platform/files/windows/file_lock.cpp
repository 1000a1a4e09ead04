// File locks by sharing: a handle beside which nobody else can open the file.
#include "platform/files/file_lock.h"

#include <utility>

#include "platform/files/windows/handle.h"

namespace files {
namespace {

constexpr DWORD kBetweenAttempts = 10;  // milliseconds

}  // namespace

FileLock::FileLock(const std::filesystem::path& path, MissingFile missing,
                   std::chrono::milliseconds patience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  const bool create = missing == MissingFile::kCreateEmpty;
  // The system refuses it as well, but not on every kind of drive and not to everybody.
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
    throw FileError(kPermissionDenied);
  }
  while (true) {
    // Deletion is shared so that a rename can put another file in this one's place.
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_DELETE, nullptr,
                    create ? OPEN_ALWAYS : OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
      native_ = FromHandle(file);
      return;
    }
    const DWORD error = GetLastError();
    const bool absent = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
    if (absent && !create) return;
    if (error != ERROR_SHARING_VIOLATION || std::chrono::steady_clock::now() >= deadline) {
      throw CallError(error, path);
    }
    Sleep(kBetweenAttempts);
  }
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
