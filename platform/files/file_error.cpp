// The classic numbers and texts of failures with files.
#include "platform/files/file_error.h"

#include <cerrno>
#include <system_error>

namespace files {
namespace {

const wchar_t* DescriptionOf(std::int32_t number) {
  switch (number) {
    case kFileNotFound:
      return L"File not found";
    case kDiskFull:
      return L"Disk full";
    case kInputPastEnd:
      return L"Input past end of file";
    case kPermissionDenied:
      return L"Permission denied";
    case kPathNotFound:
      return L"Path not found";
    default:
      return L"Device I/O error";
  }
}

bool FolderOfExists(const std::filesystem::path& path) {
  std::error_code ignored;
  const std::filesystem::path folder = path.parent_path();
  return folder.empty() || std::filesystem::is_directory(folder, ignored);
}

}  // namespace

text::RuntimeError FileError(std::int32_t number) { return {number, DescriptionOf(number)}; }

text::RuntimeError OpenError(const std::filesystem::path& path, bool must_exist) {
  std::error_code error;
  const bool exists = std::filesystem::exists(path, error);
  // A folder that may not be looked into gives an error here, not "does not exist".
  if (error) return FileError(kPermissionDenied);
  if (exists) return FileError(kPermissionDenied);
  if (!FolderOfExists(path)) return FileError(kPathNotFound);
  return FileError(must_exist ? kFileNotFound : kPermissionDenied);
}

text::RuntimeError TransferError(int code) {
  switch (code) {
    case ENOSPC:
    case EFBIG:
#ifdef EDQUOT
    case EDQUOT:
#endif
      return FileError(kDiskFull);
    case EACCES:
    case EPERM:
    case EROFS:
      return FileError(kPermissionDenied);
    default:
      return FileError(kDeviceIoError);
  }
}

}  // namespace files
