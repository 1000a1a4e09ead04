// Steps on whole files on POSIX systems, where names come and go while files are open.
#include "platform/jet/file_steps.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include "platform/jet/posix/descriptor.h"

namespace jet {
namespace {

constexpr mode_t kRightsMask = 0777;
constexpr mode_t kOwnerMayWrite = 0200;

[[noreturn]] void ThrowStep(int error, const std::filesystem::path& path) {
  const bool forbidden = error == EACCES || error == EPERM || error == EROFS;
  throw Error(forbidden ? ErrorKind::kCannotOpen : ErrorKind::kIo, {path.u16string()},
              std::generic_category().message(error));
}

// Makes a change of names last. File systems that cannot do so for folders refuse, and need no
// help.
void SyncFolderOf(const std::filesystem::path& file) {
  const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
  const Descriptor descriptor = TryOpen(folder, O_RDONLY | O_DIRECTORY);
  if (descriptor.is_open()) fsync(descriptor.get());
}

}  // namespace

std::filesystem::path FileItself(const std::filesystem::path& path) {
  std::error_code error;
  std::filesystem::path file = std::filesystem::canonical(path, error);
  return error ? path : file;
}

bool TryPatiently(const std::function<bool()>& step) { return step(); }

void RemoveLeftover(const std::filesystem::path& path) {
  while (true) {
    const Descriptor file = TryOpen(path, O_RDWR | O_NOFOLLOW);
    if (!file.is_open()) {
      if (errno == ENOENT || errno == ENOTDIR) return;
      ThrowStep(errno, path);
    }
    struct stat status {};
    if (fstat(file.get(), &status) != 0) ThrowStep(errno, path);
    if (!S_ISREG(status.st_mode))
      throw Error(ErrorKind::kCannotOpen, {path.u16string()}, "not a file");
    // A second name of a file that is complete (see MoveToFreeName) is not in use, whoever has the
    // file open under its first one.
    if (status.st_nlink == 1) {
      if (Retry([&] { return flock(file.get(), LOCK_EX | LOCK_NB); }) != 0)
        throw Error(ErrorKind::kInUse, {path.u16string()}, "somebody else is writing it");
      if (!IsFileAt(status, path)) continue;
    }
    if (unlink(path.c_str()) != 0 && errno != ENOENT) ThrowStep(errno, path);
    return;
  }
}

void GiveRights(const std::filesystem::path& file, const std::filesystem::path& like) noexcept {
  struct stat status {};
  if (stat(like.c_str(), &status) != 0) return;
  if (status.st_uid != geteuid() || status.st_gid != getegid())
    static_cast<void>(!chown(file.c_str(), status.st_uid, status.st_gid));
  static_cast<void>(!chmod(file.c_str(), (status.st_mode & kRightsMask) | kOwnerMayWrite));
}

void MoveToFreeName(const std::filesystem::path& file, const std::filesystem::path& name) {
  // A second name, unlike a rename, never takes the place of a file.
  if (link(file.c_str(), name.c_str()) == 0) {
    unlink(file.c_str());
  } else {
    const int error = errno;
    struct stat status {};
    if (error == EEXIST || stat(name.c_str(), &status) == 0)
      throw Error(ErrorKind::kDatabaseExists, {name.u16string()});
    // A file system without second names.
    if (std::rename(file.c_str(), name.c_str()) != 0) ThrowStep(errno, name);
  }
  SyncFolderOf(name);
}

void MoveOver(const std::filesystem::path& file, const std::filesystem::path& target,
              std::unique_ptr<PageStore> held_target) {
  if (std::rename(file.c_str(), target.c_str()) != 0) ThrowStep(errno, target);
  SyncFolderOf(target);
  held_target.reset();
}

}  // namespace jet
