// Keeps every other owner out of a file for a while.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>

namespace files {

// What to do when there is no file to lock.
enum class MissingFile { kHoldNothing, kCreateEmpty };

// While it lives, nobody else can take such a lock on the file or open it as a database, and a file
// that somebody else holds so cannot be locked: on Windows through a handle that shares nothing but
// deletion, so that nobody can open the file at all; elsewhere through an advisory lock (flock)
// that belongs to this object alone. The lock is on the file, not on the path: a file put in its
// place by a rename is not locked. Ends with the object or with the process, however that ends.
class FileLock {
 public:
  // Waits up to `patience` for another holder; on Windows at least two seconds, for whoever looks
  // at the file for a moment (platform/files/windows/patience.h). Throws text::RuntimeError 70 when
  // the file is still held then, may not be written or is no file, on Windows also when whoever was
  // waited for has written to it; 76 when its folder is missing and the file is to be created; 61
  // or 57 when it cannot be created.
  FileLock(const std::filesystem::path& path, MissingFile missing,
           std::chrono::milliseconds patience = {});
  FileLock(FileLock&& other) noexcept;
  FileLock& operator=(FileLock&& other) noexcept;
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  ~FileLock();

  // Whether there is a file that it keeps others out of.
  bool Holds() const { return native_ != kNothing; }

  // Ends it early.
  void Release();

 private:
  static constexpr std::intptr_t kNothing = -1;

  std::intptr_t native_ = kNothing;  // the system's descriptor or handle
};

}  // namespace files
