// An open file of Windows, and the classic errors of its calls.
#pragma once

#include <windows.h>

#include <cstdint>
#include <filesystem>

#include "platform/files/file_error.h"

namespace files {

inline HANDLE ToHandle(std::intptr_t native) {
  return reinterpret_cast<HANDLE>(native);  // NOLINT(performance-no-int-to-ptr)
}

inline std::intptr_t FromHandle(HANDLE handle) { return reinterpret_cast<std::intptr_t>(handle); }

// The error for a failed call about `path`; `code` is its GetLastError().
inline text::RuntimeError CallError(DWORD code, const std::filesystem::path& path) {
  constexpr DWORD kDiskQuotaExceeded = 1295;  // not every set of headers has its name
  switch (code) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
      return OpenError(path, true);
    case ERROR_INVALID_NAME:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_FILENAME_EXCED_RANGE:
      return FileError(kPathNotFound);
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_USER_MAPPED_FILE:
    case ERROR_BUSY:
      return FileError(kPermissionDenied);
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case ERROR_FILE_TOO_LARGE:
    case kDiskQuotaExceeded:
      return FileError(kDiskFull);
    default:
      return FileError(kDeviceIoError);
  }
}

}  // namespace files
