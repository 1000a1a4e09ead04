// File identity from the file's device and number.
#include "platform/database/file_identity.h"

#include <sys/stat.h>

namespace database {

std::optional<FileIdentity> IdentityOf(const std::filesystem::path& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  return FileIdentity{static_cast<std::uint64_t>(status.st_dev),
                      {static_cast<std::uint64_t>(status.st_ino), 0},
                      {}};
}

}  // namespace database
