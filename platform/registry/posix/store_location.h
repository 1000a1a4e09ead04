// Where the settings files are on systems without a registry.
#pragma once

#include <filesystem>

namespace registry {

// Explained in docs/settings.md. Where the program's folder holds a file of its own, that is both.
struct StoreLocation {
  std::filesystem::path user;     // empty when the user has no home
  std::filesystem::path machine;  // the file of all users
};

// `config_home` and `home` are the environment variables XDG_CONFIG_HOME and HOME, null when unset.
StoreLocation LocateStores(const std::filesystem::path& program_folder, const char* config_home,
                           const char* home);

}  // namespace registry
