// Where the settings files are on systems without a registry.
#include "platform/registry/posix/store_location.h"

#include <system_error>

namespace registry {
namespace {

namespace fs = std::filesystem;

constexpr const char* kStoreFile = "registry.reg";
constexpr const char* kOurFolder = "orvpap";
constexpr const char* kMachineFolder = "/etc";

// A relative folder would be another one for every program that is started elsewhere.
bool IsFolderPath(const char* path) { return path != nullptr && fs::path(path).is_absolute(); }

}  // namespace

StoreLocation LocateStores(const fs::path& program_folder, const char* config_home,
                           const char* home) {
  const fs::path portable = program_folder / kStoreFile;
  std::error_code ignored;
  if (fs::exists(portable, ignored)) return {portable, portable};
  StoreLocation location;
  location.machine = fs::path(kMachineFolder) / kOurFolder / kStoreFile;
  if (IsFolderPath(config_home)) {
    location.user = fs::path(config_home) / kOurFolder / kStoreFile;
  } else if (IsFolderPath(home)) {
    location.user = fs::path(home) / ".config" / kOurFolder / kStoreFile;
  }
  return location;
}

}  // namespace registry
