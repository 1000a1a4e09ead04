// Open files of POSIX systems: descriptors that are closed, calls that are not interrupted.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <utility>

namespace jet {

// A descriptor, closed with the object; locks on it go with it.
class Descriptor {
 public:
  explicit Descriptor(int value = -1) : value_(value) {}
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

inline constexpr mode_t kNewFileMode = 0666;

// Opens without waiting for anybody (a pipe), and without becoming a terminal's process.
inline Descriptor TryOpen(const std::filesystem::path& path, int flags) {
  static constexpr int kAlways = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  return Descriptor(Retry([&] { return open(path.c_str(), flags | kAlways, kNewFileMode); }));
}

// Whether the path still leads to this file, and not to one that has since been put in its place.
inline bool IsFileAt(const struct stat& file, const std::filesystem::path& path) {
  struct stat at_path {};
  return stat(path.c_str(), &at_path) == 0 && at_path.st_dev == file.st_dev &&
         at_path.st_ino == file.st_ino;
}

}  // namespace jet
