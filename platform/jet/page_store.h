// The database file as numbered pages, held by one owner; the seam at which tests make I/O fail.
#pragma once

#include <filesystem>
#include <memory>
#include <span>

#include "platform/jet/page_view.h"

namespace jet {

// Raw pages: no cache, no decoding. Errors: kDiskFull, kIo.
class PageStore {
 public:
  virtual ~PageStore() = default;

  virtual PageNumber page_count() const = 0;
  virtual bool read_only() const = 0;
  virtual void Read(PageNumber number, std::span<std::byte, kPageSize> into) const = 0;
  // Writing the page behind the last one makes the file grow by it.
  virtual void Write(PageNumber number, std::span<const std::byte, kPageSize> page) = 0;
  virtual void Truncate(PageNumber page_count) = 0;
  // Hands everything written so far to the disk.
  virtual void Sync() = 0;
};

// kMend is kReadWrite for a file that may end within a page, as a process can leave it that was
// killed while the file grew: that page counts as not there.
enum class OpenMode { kReadWrite, kReadOnly, kCreate, kMend };

// Opens the file as its only owner. On Windows others may read it meanwhile (our own backups do),
// elsewhere an advisory whole-file lock keeps other owners out; no lock file is made, but one of
// the database's own kind beside it that somebody holds means "in use". The lock goes with the
// object and with the process, however that ends.
//
// Throws kFileNotFound, kPathNotFound, kInUse, kCannotOpen, kDatabaseExists (kCreate over an
// existing file), kNotADatabase (size not a whole number of pages, or above 2 GiB).
std::unique_ptr<PageStore> OpenPageStore(const std::filesystem::path& path, OpenMode mode);

}  // namespace jet
