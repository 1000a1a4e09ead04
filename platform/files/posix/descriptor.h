// An open file of the system, and the classic errors of its calls.
#pragma once

#include <cstdint>
#include <filesystem>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/files/file_error.h"

namespace files {

// A descriptor, closed with the object; locks on it go with it.
class Descriptor {
 public:
  explicit Descriptor(int value) : value_(value) {}
  Descriptor(Descriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (value_ >= 0) close(value_);
  }
  int get() const { return value_; }
  bool is_open() const { return value_ >= 0; }
  int Release() { return std::exchange(value_, -1); }

 private:
  int value_;
};

// Calls until it is not interrupted.
template <typename Call>
auto Retry(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

// Opens without waiting for anybody (a pipe), and without becoming a terminal's process.
inline Descriptor TryOpen(const std::filesystem::path& path, int flags, mode_t mode = 0) {
  static constexpr int kAlways = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  return Descriptor(Retry([&] { return open(path.c_str(), flags | kAlways, mode); }));
}

// Whether the path still leads to this open file, and not to one that has since been put in its
// place.
inline bool IsFileAt(const Descriptor& file, const std::filesystem::path& path) {
  struct stat mine {};
  struct stat at_path {};
  return fstat(file.get(), &mine) == 0 && stat(path.c_str(), &at_path) == 0 &&
         at_path.st_dev == mine.st_dev && at_path.st_ino == mine.st_ino;
}

inline bool IsRegularFile(const Descriptor& file) {
  struct stat status {};
  return fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
}

// The error for a failed attempt to open or create `path`; `code` is its errno.
inline text::RuntimeError OpenFailure(int code, const std::filesystem::path& path) {
  switch (code) {
    case ENOENT:
    case ENOTDIR:
    case ELOOP:
      return OpenError(path, true);
    case ENAMETOOLONG:
      return FileError(kPathNotFound);
    case EISDIR:
    case ENXIO:
    case ETXTBSY:
      return FileError(kPermissionDenied);
    default:
      return TransferError(code);
  }
}

}  // namespace files
