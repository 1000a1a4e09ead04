// The database file on Windows: one handle that lets others read but not write.
#include "platform/jet/page_store.h"

#include <windows.h>

#include <string>
#include <utility>

#include "platform/files/windows/call_path.h"
#include "platform/files/windows/patience.h"
#include "platform/jet/usage_map_format.h"
#include "platform/text/code_page.h"
#include "platform/text/windows/error_text.h"

namespace jet {
namespace {

// The header, the global maps and the catalog's definition: no file has fewer.
constexpr PageNumber kFewestPages = 3;

// Sharing modes alone let two owners in that only read. Each owner also locks this byte, far behind
// any page, so that nobody's reading is disturbed.
constexpr DWORD kOwnerByteHigh = 0x40000000;

// ERROR_DISK_QUOTA_EXCEEDED, which not every set of headers has.
constexpr DWORD kDiskQuotaExceeded = 1295;

// A handle, closed with the object; locks on it go with it.
class Handle {
 public:
  explicit Handle(HANDLE value = INVALID_HANDLE_VALUE) : value_(value) {}
  Handle(Handle&& other) noexcept : value_(std::exchange(other.value_, INVALID_HANDLE_VALUE)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    if (is_open()) CloseHandle(value_);
  }
  HANDLE get() const { return value_; }
  bool is_open() const { return value_ != INVALID_HANDLE_VALUE; }

 private:
  HANDLE value_;
};

std::string SystemText(DWORD error) { return text::WideToUtf8(text::SystemErrorText(error)); }

[[noreturn]] void ThrowIo(DWORD error, PageNumber page = kNoPage) {
  const bool full = error == ERROR_DISK_FULL || error == ERROR_HANDLE_DISK_FULL ||
                    error == kDiskQuotaExceeded || error == ERROR_FILE_TOO_LARGE;
  throw Error(full ? ErrorKind::kDiskFull : ErrorKind::kIo, SystemText(error), page);
}

// A place in the file, as synchronous reads and writes take it.
OVERLAPPED PlaceOf(PageNumber number, DWORD within) {
  const std::uint64_t offset = std::uint64_t{number} * kPageSize + within;
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(offset & 0xffffffff);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return place;
}

class FilePageStore final : public PageStore {
 public:
  FilePageStore(Handle file, PageNumber page_count, bool read_only)
      : file_(std::move(file)), page_count_(page_count), read_only_(read_only) {}

  PageNumber page_count() const override { return page_count_; }
  bool read_only() const override { return read_only_; }

  void Read(PageNumber number, std::span<std::byte, kPageSize> into) const override {
    DWORD done = 0;
    while (done < kPageSize) {
      OVERLAPPED place = PlaceOf(number, done);
      DWORD got = 0;
      const BOOL read = ReadFile(file_.get(), into.data() + done,
                                 static_cast<DWORD>(kPageSize) - done, &got, &place);
      const DWORD error = read != 0 ? ERROR_SUCCESS : GetLastError();
      if (error == ERROR_HANDLE_EOF || (error == ERROR_SUCCESS && got == 0))
        throw Error(ErrorKind::kDamaged, "page behind the end of the file", number);
      if (error != ERROR_SUCCESS) ThrowIo(error, number);
      done += got;
    }
  }

  void Write(PageNumber number, std::span<const std::byte, kPageSize> page) override {
    if (number > page_count_) throw Error(ErrorKind::kIo, "a page far behind the end", number);
    if (number >= usage_map::kMaxPages)
      throw Error(ErrorKind::kDiskFull, "the file has reached its largest size", number);
    DWORD done = 0;
    while (done < kPageSize) {
      OVERLAPPED place = PlaceOf(number, done);
      DWORD put = 0;
      const BOOL written = WriteFile(file_.get(), page.data() + done,
                                     static_cast<DWORD>(kPageSize) - done, &put, &place);
      if (written == 0 || put == 0) {
        const DWORD error = written == 0 ? GetLastError() : ERROR_DISK_FULL;
        if (number == page_count_) CutTo(page_count_);
        ThrowIo(error, number);
      }
      done += put;
    }
    if (number == page_count_) ++page_count_;
  }

  void Truncate(PageNumber page_count) override {
    if (!CutTo(page_count)) ThrowIo(GetLastError());
    page_count_ = page_count;
  }

  void Sync() override {
    if (FlushFileBuffers(file_.get()) == 0) ThrowIo(GetLastError());
  }

 private:
  bool CutTo(PageNumber page_count) {
    LARGE_INTEGER end{};
    end.QuadPart = static_cast<LONGLONG>(page_count) * static_cast<LONGLONG>(kPageSize);
    return SetFilePointerEx(file_.get(), end, nullptr, FILE_BEGIN) != 0 &&
           SetEndOfFile(file_.get()) != 0;
  }

  Handle file_;
  PageNumber page_count_;
  bool read_only_;
};

[[noreturn]] void ThrowOpen(DWORD error, const std::filesystem::path& path) {
  ErrorKind kind = ErrorKind::kIo;
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
      kind = ErrorKind::kFileNotFound;
      break;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_FILENAME_EXCED_RANGE:
      kind = ErrorKind::kPathNotFound;
      break;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      kind = ErrorKind::kInUse;
      break;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      kind = ErrorKind::kDatabaseExists;
      break;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
      kind = ErrorKind::kCannotOpen;
      break;
    case ERROR_DISK_FULL:
      kind = ErrorKind::kDiskFull;
      break;
    default:
      break;
  }
  throw Error(kind, {path.u16string()}, SystemText(error));
}

Handle TryOpen(const std::filesystem::path& path, DWORD access, DWORD sharing, DWORD creation) {
  return Handle(CreateFileW(files::CallPath(path).c_str(), access, sharing, nullptr, creation,
                            FILE_ATTRIBUTE_NORMAL, nullptr));
}

// Waits a moment for whoever only looks at the file. Returns an error code. That access is denied
// passes for new files alone, whose deleted predecessor somebody may still have open.
DWORD OpenPatiently(Handle& file, const std::filesystem::path& path, DWORD access, DWORD creation) {
  DWORD error = ERROR_SUCCESS;
  files::Patiently(files::kOpeningPatience, [&]() -> DWORD {
    file = TryOpen(path, access, FILE_SHARE_READ, creation);
    error = files::ErrorOf(file.is_open());
    const bool final = error == ERROR_ACCESS_DENIED && creation != CREATE_NEW;
    return final ? ERROR_SUCCESS : error;
  });
  return error;
}

// The database's own kind of lock file lives while users have the database open; nobody can then
// delete it. Asking for the right to delete it tells, without doing so.
bool LockFileIsHeld(std::filesystem::path path) {
  path.replace_extension(L".ldb");
  const Handle file =
      TryOpen(path, DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, OPEN_EXISTING);
  if (file.is_open()) return false;
  const DWORD error = GetLastError();
  return error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND;
}

}  // namespace

std::unique_ptr<PageStore> OpenPageStore(const std::filesystem::path& path, OpenMode mode) {
  const bool create = mode == OpenMode::kCreate;
  bool read_only = mode == OpenMode::kReadOnly;
  Handle file;
  if (!read_only) {
    const DWORD error = OpenPatiently(file, path, GENERIC_READ | GENERIC_WRITE,
                                      create ? CREATE_NEW : OPEN_EXISTING);
    read_only = !create && (error == ERROR_ACCESS_DENIED || error == ERROR_WRITE_PROTECT);
    if (error != ERROR_SUCCESS && !read_only) ThrowOpen(error, path);
  }
  if (read_only) {
    const DWORD error = OpenPatiently(file, path, GENERIC_READ, OPEN_EXISTING);
    if (error != ERROR_SUCCESS) ThrowOpen(error, path);
  }
  if (GetFileType(file.get()) != FILE_TYPE_DISK)
    throw Error(ErrorKind::kCannotOpen, {path.u16string()}, "not a file");
  OVERLAPPED owner_byte{};
  owner_byte.OffsetHigh = kOwnerByteHigh;
  if (LockFileEx(file.get(), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                 &owner_byte) == 0) {
    const DWORD error = GetLastError();
    ThrowOpen(error == ERROR_IO_PENDING ? ERROR_LOCK_VIOLATION : error, path);
  }
  if (LockFileIsHeld(path))
    throw Error(ErrorKind::kInUse, {path.u16string()}, "somebody holds its lock file");

  LARGE_INTEGER size{};
  if (GetFileSizeEx(file.get(), &size) == 0) ThrowOpen(GetLastError(), path);
  const auto bytes = static_cast<std::uint64_t>(size.QuadPart);
  const std::uint64_t pages = bytes / kPageSize;
  const bool ends_well = bytes % kPageSize == 0 || mode == OpenMode::kMend;
  if (!create && (!ends_well || pages < kFewestPages || pages > usage_map::kMaxPages))
    throw Error(ErrorKind::kNotADatabase, {path.u16string()}, "not a whole number of pages");
  return std::make_unique<FilePageStore>(std::move(file), static_cast<PageNumber>(pages),
                                         read_only);
}

}  // namespace jet
