// The temporary neighbour as a file that is locked from its creation to its rename.
#include "platform/files/temporary_neighbour.h"

#include <sys/file.h>

#include <cstdio>

#include "platform/files/posix/descriptor.h"

namespace files {
namespace {

constexpr mode_t kPrivateMode = 0600;  // until it has the rights of the file it replaces
constexpr mode_t kRightsMask = 0777;
constexpr mode_t kOwnerMayWrite = 0200;

// Best effort: rights that cannot be given must not make the replacement fail.
void GiveRights(int file, const std::filesystem::path& like) {
  struct stat status {};
  if (stat(like.c_str(), &status) != 0) return;
  if (status.st_uid != geteuid() || status.st_gid != getegid()) {
    static_cast<void>(!fchown(file, status.st_uid, status.st_gid));
  }
  fchmod(file, (status.st_mode & kRightsMask) | kOwnerMayWrite);
}

// Makes the rename itself last. File systems that cannot do so for folders refuse, and need no
// help.
void SyncFolderOf(const std::filesystem::path& file) {
  const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
  const Descriptor descriptor = TryOpen(folder, O_RDONLY | O_DIRECTORY);
  if (descriptor.is_open()) fsync(descriptor.get());
}

}  // namespace

TemporaryNeighbour::TemporaryNeighbour(std::filesystem::path target)
    : target_(std::move(target)), path_(NeighbourOf(target_)) {
  while (native_ == kClosed) {
    Descriptor file = TryOpen(path_, O_RDWR | O_CREAT | O_NOFOLLOW, kPrivateMode);
    if (!file.is_open()) throw OpenFailure(errno, path_);
    if (!IsRegularFile(file)) throw FileError(kPermissionDenied);
    if (Retry([&] { return flock(file.get(), LOCK_EX | LOCK_NB); }) != 0) {
      throw FileError(kPermissionDenied);
    }
    // Its last user may have moved it over the target in the meantime: that one must not be
    // touched.
    if (!IsFileAt(file, path_)) continue;
    if (Retry([&] { return ftruncate(file.get(), 0); }) != 0) throw TransferError(errno);
    native_ = file.Release();
  }
}

TemporaryNeighbour::~TemporaryNeighbour() {
  if (native_ == kClosed) return;
  unlink(path_.c_str());  // while it is still locked, so that it cannot be another's
  close(static_cast<int>(native_));
}

// NOLINTNEXTLINE(readability-make-member-function-const): it changes the file
void TemporaryNeighbour::Write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t put =
        Retry([&] { return write(static_cast<int>(native_), bytes.data(), bytes.size()); });
    if (put <= 0) throw TransferError(put < 0 ? errno : ENOSPC);
    bytes.remove_prefix(static_cast<std::size_t>(put));
  }
}

void TemporaryNeighbour::MoveOver(FileLock target_lock, const std::filesystem::path& rights_of) {
  const int file = static_cast<int>(native_);
  GiveRights(file, rights_of);
  if (Retry([&] { return fsync(file); }) != 0) throw TransferError(errno);
  if (std::rename(path_.c_str(), target_.c_str()) != 0) throw OpenFailure(errno, target_);
  native_ = kClosed;
  SyncFolderOf(target_);
  close(file);
  target_lock.Release();
}

}  // namespace files
