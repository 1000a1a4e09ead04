// The database file on POSIX systems: one descriptor, held under an advisory whole-file lock.
//
// A write beyond the process's file size limit ends in kDiskFull only where SIGXFSZ is ignored; its
// default action ends the process, like any kill.
#include "platform/jet/page_store.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include "platform/jet/posix/descriptor.h"
#include "platform/jet/usage_map_format.h"

namespace jet {
namespace {

// The header, the global maps and the catalog's definition: no file has fewer.
constexpr PageNumber kFewestPages = 3;

std::string SystemText(int error) { return std::generic_category().message(error); }

[[noreturn]] void ThrowIo(int error, PageNumber page = kNoPage) {
  const bool full = error == ENOSPC || error == EDQUOT || error == EFBIG;
  throw Error(full ? ErrorKind::kDiskFull : ErrorKind::kIo, SystemText(error), page);
}

class FilePageStore final : public PageStore {
 public:
  FilePageStore(Descriptor file, PageNumber page_count, bool read_only)
      : file_(std::move(file)), page_count_(page_count), read_only_(read_only) {}

  PageNumber page_count() const override { return page_count_; }
  bool read_only() const override { return read_only_; }

  void Read(PageNumber number, std::span<std::byte, kPageSize> into) const override {
    std::size_t done = 0;
    while (done < kPageSize) {
      const ssize_t got = Retry([&] {
        return pread(file_.get(), into.data() + done, kPageSize - done, OffsetOf(number, done));
      });
      if (got < 0) ThrowIo(errno, number);
      if (got == 0) throw Error(ErrorKind::kDamaged, "page behind the end of the file", number);
      done += static_cast<std::size_t>(got);
    }
  }

  void Write(PageNumber number, std::span<const std::byte, kPageSize> page) override {
    if (number > page_count_) throw Error(ErrorKind::kIo, "a page far behind the end", number);
    if (number >= usage_map::kMaxPages)
      throw Error(ErrorKind::kDiskFull, "the file has reached its largest size", number);
    std::size_t done = 0;
    while (done < kPageSize) {
      const ssize_t put = Retry([&] {
        return pwrite(file_.get(), page.data() + done, kPageSize - done, OffsetOf(number, done));
      });
      if (put <= 0) {
        const int error = put < 0 ? errno : ENOSPC;
        if (number == page_count_) CutTo(page_count_);
        ThrowIo(error, number);
      }
      done += static_cast<std::size_t>(put);
    }
    if (number == page_count_) ++page_count_;
  }

  void Truncate(PageNumber page_count) override {
    if (CutTo(page_count) != 0) ThrowIo(errno);
    page_count_ = page_count;
  }

  void Sync() override {
    if (Retry([this] { return fsync(file_.get()); }) != 0) ThrowIo(errno);
  }

 private:
  static off_t OffsetOf(PageNumber number, std::size_t within) {
    return static_cast<off_t>(number) * static_cast<off_t>(kPageSize) + static_cast<off_t>(within);
  }
  int CutTo(PageNumber page_count) {
    return Retry([&] { return ftruncate(file_.get(), OffsetOf(page_count, 0)); });
  }

  Descriptor file_;
  PageNumber page_count_;
  bool read_only_;
};

[[noreturn]] void ThrowOpen(int error, const std::filesystem::path& path) {
  ErrorKind kind = ErrorKind::kIo;
  switch (error) {
    case ENOENT: {
      std::error_code ignored;
      const std::filesystem::path folder = std::filesystem::absolute(path, ignored).parent_path();
      kind = std::filesystem::is_directory(folder, ignored) ? ErrorKind::kFileNotFound
                                                            : ErrorKind::kPathNotFound;
      break;
    }
    case ENOTDIR:
    case ENAMETOOLONG:
    case ELOOP:
      kind = ErrorKind::kPathNotFound;
      break;
    case EEXIST:
      kind = ErrorKind::kDatabaseExists;
      break;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ENXIO:
    case ETXTBSY:
      kind = ErrorKind::kCannotOpen;
      break;
    case ENOSPC:
    case EDQUOT:
      kind = ErrorKind::kDiskFull;
      break;
    default:
      break;
  }
  throw Error(kind, {path.u16string()}, SystemText(error));
}

bool ForbidsWriting(int error) {
  return error == EACCES || error == EPERM || error == EROFS || error == ETXTBSY;
}

// The database's own kind of lock file lives while users have the database open, each with a byte
// range of it locked; left behind by a crash it has no locks and means nothing.
bool LockFileIsHeld(std::filesystem::path path) {
  path.replace_extension(".ldb");
  const Descriptor file = TryOpen(path, O_RDONLY);
  if (!file.is_open()) return errno != ENOENT && errno != ENOTDIR;
  struct flock range {};
  range.l_type = F_WRLCK;
  range.l_whence = SEEK_SET;
  return fcntl(file.get(), F_OFD_GETLK, &range) == 0 && range.l_type != F_UNLCK;
}

}  // namespace

std::unique_ptr<PageStore> OpenPageStore(const std::filesystem::path& path, OpenMode mode) {
  while (true) {
    bool read_only = mode == OpenMode::kReadOnly;
    Descriptor file;
    if (!read_only) {
      file = TryOpen(path, mode == OpenMode::kCreate ? O_RDWR | O_CREAT | O_EXCL : O_RDWR);
      read_only = !file.is_open() && mode != OpenMode::kCreate && ForbidsWriting(errno);
    }
    if (read_only) file = TryOpen(path, O_RDONLY);
    if (!file.is_open()) ThrowOpen(errno, path);

    struct stat status {};
    if (fstat(file.get(), &status) != 0) ThrowOpen(errno, path);
    if (!S_ISREG(status.st_mode))
      throw Error(ErrorKind::kCannotOpen, {path.u16string()}, "not a file");
    if (Retry([&] { return flock(file.get(), LOCK_EX | LOCK_NB); }) != 0) {
      if (errno == EWOULDBLOCK)
        throw Error(ErrorKind::kInUse, {path.u16string()}, "another owner has it open");
      ThrowOpen(errno, path);
    }
    if (!IsFileAt(status, path)) continue;
    if (LockFileIsHeld(path))
      throw Error(ErrorKind::kInUse, {path.u16string()}, "somebody holds its lock file");

    // The size as it is now that nobody else may change it.
    if (fstat(file.get(), &status) != 0) ThrowOpen(errno, path);
    const auto size = static_cast<std::uintmax_t>(status.st_size);
    const std::uintmax_t pages = size / kPageSize;
    const bool ends_well = size % kPageSize == 0 || mode == OpenMode::kMend;
    if (mode != OpenMode::kCreate &&
        (!ends_well || pages < kFewestPages || pages > usage_map::kMaxPages))
      throw Error(ErrorKind::kNotADatabase, {path.u16string()}, "not a whole number of pages");
    return std::make_unique<FilePageStore>(std::move(file), static_cast<PageNumber>(pages),
                                           read_only);
  }
}

}  // namespace jet
