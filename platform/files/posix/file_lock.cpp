// File locks by flock, which belong to one opening of the file and not to the whole process.
#include "platform/files/file_lock.h"

#include <sys/file.h>

#include <thread>

#include "platform/files/posix/descriptor.h"

namespace files {
namespace {

constexpr mode_t kNewFileMode = 0666;
constexpr std::chrono::milliseconds kBetweenAttempts{10};

// False while somebody else holds the file.
bool TryLock(const Descriptor& file) {
  if (Retry([&] { return flock(file.get(), LOCK_EX | LOCK_NB); }) == 0) return true;
  if (errno == EWOULDBLOCK) return false;
  throw TransferError(errno);
}

}  // namespace

FileLock::FileLock(const std::filesystem::path& path, MissingFile missing,
                   std::chrono::milliseconds patience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  const bool create = missing == MissingFile::kCreateEmpty;
  while (true) {
    Descriptor file = TryOpen(path, create ? O_RDWR | O_CREAT : O_RDWR, kNewFileMode);
    if (!file.is_open()) {
      if (!create && (errno == ENOENT || errno == ENOTDIR)) return;
      throw OpenFailure(errno, path);
    }
    if (!IsRegularFile(file)) throw FileError(kPermissionDenied);
    if (TryLock(file)) {
      // Whoever held it may have put another file in its place.
      if (!IsFileAt(file, path)) continue;
      native_ = file.Release();
      return;
    }
    if (std::chrono::steady_clock::now() >= deadline) throw FileError(kPermissionDenied);
    std::this_thread::sleep_for(kBetweenAttempts);
  }
}

FileLock::FileLock(FileLock&& other) noexcept : native_(std::exchange(other.native_, kNothing)) {}

FileLock& FileLock::operator=(FileLock&& other) noexcept {
  std::swap(native_, other.native_);
  return *this;
}

FileLock::~FileLock() { Release(); }

void FileLock::Release() {
  if (native_ != kNothing) close(static_cast<int>(native_));
  native_ = kNothing;
}

}  // namespace files
