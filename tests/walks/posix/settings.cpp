// Settings in the file of the installation, as a folder that is carried around has them.
#include "tests/walks/settings.h"

#include "platform/registry/posix/system_registry.h"

namespace walks {

std::unique_ptr<registry::Registry> FreshSettings(const std::filesystem::path& registry_file) {
  return std::make_unique<registry::FileRegistry>([registry_file] {
    return registry::StoreLocation{.user = registry_file, .machine = registry_file};
  });
}

}  // namespace walks
