// Calls that somebody's short look at a file makes fail.
#include "platform/files/windows/patience.h"

#include "platform/files/windows/call_path.h"

namespace files {

FileStamp StampOf(const std::wstring& path) {
  constexpr int kHighHalf = 32;
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) == 0) return {};
  const FILETIME& written = data.ftLastWriteTime;
  return {std::uint64_t{written.dwHighDateTime} << kHighHalf | written.dwLowDateTime,
          std::uint64_t{data.nFileSizeHigh} << kHighHalf | data.nFileSizeLow};
}

DWORD MoveOverPatiently(const std::filesystem::path& file, const std::filesystem::path& target,
                        const FileStamp& known) {
  const std::wstring from = CallPath(file);
  const std::wstring to = CallPath(target);
  return Patiently(kReplacingPatience, [&]() -> DWORD {
    // Whoever had the target open may have written to it, which must not get lost.
    if (StampOf(to) != known) return ERROR_BUSY;
    return ErrorOf(
        MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
  });
}

}  // namespace files
