// The classic numbers and texts of failures with files.
#pragma once

#include <cstdint>
#include <filesystem>

#include "platform/text/runtime_error.h"

namespace files {

inline constexpr std::int32_t kFileNotFound = 53;
inline constexpr std::int32_t kDeviceIoError = 57;
inline constexpr std::int32_t kDiskFull = 61;
inline constexpr std::int32_t kInputPastEnd = 62;
inline constexpr std::int32_t kPermissionDenied = 70;
inline constexpr std::int32_t kPathNotFound = 76;

// The error with this number (one of those above) and its classic description.
text::RuntimeError FileError(std::int32_t number);

// The error that explains why `path` could not be opened, judged from what is on the disk now: 76
// when its folder is missing, 53 when the file is (and had to exist), 70 otherwise.
text::RuntimeError OpenError(const std::filesystem::path& path, bool must_exist);

// The error for a failed read or write whose system error code is `code` (an errno value): 61 when
// the disk is full, 70 when access was denied, 57 otherwise.
text::RuntimeError TransferError(int code);

}  // namespace files
