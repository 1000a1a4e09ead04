// A new version of a file, written beside it and put in its place in one step.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

#include "platform/files/file_lock.h"

namespace files {

// Whoever looks at the target sees the old file or the whole new one, also when this process or the
// machine stops at any moment. What such a stop leaves behind is at most one neighbour for each
// target (its name is made from the target's), which the next attempt uses again.
class TemporaryNeighbour {
 public:
  // Creates the neighbour, empty, in the target's folder, which must exist. `target` must be no
  // link. Throws text::RuntimeError 76 when that folder is missing, 70 when it may not be written
  // or somebody else is replacing the same target, 61 or 57 otherwise.
  explicit TemporaryNeighbour(std::filesystem::path target);
  // Removes the neighbour unless it was moved.
  ~TemporaryNeighbour();
  TemporaryNeighbour(const TemporaryNeighbour&) = delete;
  TemporaryNeighbour& operator=(const TemporaryNeighbour&) = delete;

  // Adds bytes. Throws RuntimeError 61 when the disk is full, 57 otherwise.
  void Write(std::string_view bytes);

  // Hands everything to the disk and puts the neighbour in the target's place, with the access
  // rights of `rights_of` as far as they may be given; on Windows also with its marks (hidden ...)
  // and compressed if that one is. `target_lock` is the caller's lock on the target; it is held
  // until the step is done, except on the Windows file systems that platform/files/file_copy.h
  // tells of. Throws as Write does, or 70 when the target cannot be replaced; the target is then as
  // it was.
  void MoveOver(FileLock target_lock, const std::filesystem::path& rights_of);

 private:
  static constexpr std::intptr_t kClosed = -1;

  std::filesystem::path target_;
  std::filesystem::path path_;
  std::intptr_t native_ = kClosed;  // the system's descriptor or handle
};

// The neighbour's path: the same at every attempt for the same target, and short enough for every
// folder whatever the target's name.
std::filesystem::path NeighbourOf(const std::filesystem::path& target);

}  // namespace files
