// File identity from the volume's serial number and the file's number on it.
#include "platform/database/file_identity.h"

#include <windows.h>

#include <cstring>

#include "platform/files/windows/call_path.h"
#include "platform/text/strings.h"

namespace database {
namespace {

// Zero or all ones: what file systems without numbers say.
bool IsNumber(const std::array<std::uint64_t, 2>& file) {
  constexpr std::uint64_t kUnknown = ~std::uint64_t{0};
  return file != std::array<std::uint64_t, 2>{} && file[0] != kUnknown;
}

// Without a path where the file has a number.
FileIdentity NumberOf(HANDLE file) {
  FileIdentity identity;
  FILE_ID_INFO whole{};
  if (GetFileInformationByHandleEx(file, FileIdInfo, &whole, sizeof(whole)) != 0) {
    static_assert(sizeof(whole.FileId) == sizeof(identity.file));
    identity.volume = whole.VolumeSerialNumber;
    std::memcpy(identity.file.data(), &whole.FileId, sizeof(identity.file));
    if (IsNumber(identity.file)) return identity;
  }
  BY_HANDLE_FILE_INFORMATION older{};
  if (GetFileInformationByHandle(file, &older) == 0) return {};
  identity.volume = older.dwVolumeSerialNumber;
  identity.file = {std::uint64_t{older.nFileIndexHigh} << 32 | older.nFileIndexLow, 0};
  return IsNumber(identity.file) ? identity : FileIdentity{};
}

}  // namespace

std::optional<FileIdentity> IdentityOf(const std::filesystem::path& path) {
  // Without any access right asked for, this succeeds while somebody holds the file exclusively.
  const HANDLE handle = CreateFileW(files::CallPath(path).c_str(), 0,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return std::nullopt;
  FileIdentity identity = NumberOf(handle);
  CloseHandle(handle);
  // Better the same file under two names taken for two than two files for one.
  if (identity == FileIdentity{}) identity.path = text::ToUpper(files::FullPath(path.wstring()));
  return identity;
}

}  // namespace database
