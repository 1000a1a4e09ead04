// Calls that somebody's short look at a file makes fail.
#pragma once

#include <windows.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>

namespace files {

// Virus scanners, search indexes and backup programs open a file for a moment, most of all when it
// has just been written and closed. For this long calls are repeated that put a file in another's
// place, after much work and often with nobody to try again;
inline constexpr std::chrono::milliseconds kReplacingPatience{2000};
// and those that open one, where whoever learns that it is in use can try again.
inline constexpr std::chrono::milliseconds kOpeningPatience{300};

// Whether a call with this error may succeed when it is made again soon.
inline bool IsPassing(DWORD error) {
  return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ||
         error == ERROR_ACCESS_DENIED || error == ERROR_USER_MAPPED_FILE;
}

// Makes a call, which returns its error code, until it has succeeded, failed for good or been
// repeated as long as `patience` lasts. Returns the last code.
template <typename Call>
DWORD Patiently(std::chrono::milliseconds patience, Call call) {
  constexpr DWORD kBetweenAttempts = 10;  // milliseconds
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (true) {
    const DWORD error = call();
    if (!IsPassing(error) || std::chrono::steady_clock::now() >= deadline) return error;
    Sleep(kBetweenAttempts);
  }
}

// The error code of a call that returns whether it succeeded.
inline DWORD ErrorOf(BOOL succeeded) { return succeeded != 0 ? ERROR_SUCCESS : GetLastError(); }

// What shows that a file was written to: time and size, all zeros when there is no file.
struct FileStamp {
  std::uint64_t written = 0;
  std::uint64_t size = 0;
  bool operator==(const FileStamp&) const = default;
};

// `path` as CallPath gives it.
FileStamp StampOf(const std::wstring& path);

// Puts a closed file in the place of another one, or of none, and makes that last. Returns an error
// code, with both files as they were; ERROR_BUSY when somebody has written to the other one since
// it had the stamp `known`.
DWORD MoveOverPatiently(const std::filesystem::path& file, const std::filesystem::path& target,
                        const FileStamp& known);

}  // namespace files
