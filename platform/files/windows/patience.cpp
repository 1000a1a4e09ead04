// Calls that somebody's short look at a file makes fail.
#include "platform/files/windows/patience.h"

#include <cstring>
#include <string>

#include "platform/files/windows/call_path.h"

namespace files {
namespace {

// What shows that a file was written to. All zeros when there is none.
struct Stamp {
  FILETIME written{};
  DWORD size_high = 0;
  DWORD size_low = 0;
};

Stamp StampOf(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) == 0) return {};
  return {data.ftLastWriteTime, data.nFileSizeHigh, data.nFileSizeLow};
}

}  // namespace

DWORD MoveOverPatiently(const std::filesystem::path& file, const std::filesystem::path& target) {
  const std::wstring from = CallPath(file);
  const std::wstring to = CallPath(target);
  const Stamp before = StampOf(to);
  return Patiently(kReplacingPatience, [&]() -> DWORD {
    // Whoever had the target open may have written to it, which must not get lost.
    const Stamp now = StampOf(to);
    if (std::memcmp(&now, &before, sizeof(Stamp)) != 0) return ERROR_BUSY;
    return ErrorOf(
        MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
  });
}

}  // namespace files
