// File identity from the volume's serial number and the file's index.
#include "platform/database/file_identity.h"

#include <windows.h>

namespace database {

std::optional<FileIdentity> IdentityOf(const std::filesystem::path& path) {
  // Without any access right asked for, this succeeds while somebody holds the file exclusively.
  const HANDLE handle =
      CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return std::nullopt;
  BY_HANDLE_FILE_INFORMATION information{};
  const bool known = GetFileInformationByHandle(handle, &information) != 0;
  CloseHandle(handle);
  if (!known) return std::nullopt;
  const auto file = std::uint64_t{information.nFileIndexHigh} << 32 | information.nFileIndexLow;
  return FileIdentity{information.dwVolumeSerialNumber, file};
}

}  // namespace database
