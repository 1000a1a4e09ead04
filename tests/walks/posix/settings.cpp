// Settings in the file of the installation, as a folder that is carried around has them.
#include "tests/walks/settings.h"

#include "platform/registry/posix/system_registry.h"
#include "platform/text/code_page.h"

namespace walks {

std::unique_ptr<registry::Registry> FreshSettings(const std::filesystem::path& registry_file) {
  return std::make_unique<registry::FileRegistry>([registry_file] {
    return registry::StoreLocation{.user = registry_file, .machine = registry_file};
  });
}

std::optional<std::string> UserSetting(const registry::Registry& settings, const std::string& key,
                                       const std::string& name) {
  const auto value =
      settings.Read(registry::RootKey::kCurrentUser, text::Utf8ToWide(key), text::Utf8ToWide(name));
  if (!value) return std::nullopt;
  return text::WideToUtf8(std::get<std::wstring>(*value));
}

}  // namespace walks
