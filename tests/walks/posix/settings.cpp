// Settings in the file of the installation, as a folder that is carried around has them.
#include "tests/walks/settings.h"

#include "platform/registry/posix/system_registry.h"
#include "platform/text/code_page.h"

namespace walks {

Settings::Settings(const std::filesystem::path& registry_file)
    : registry_(std::make_unique<registry::FileRegistry>([registry_file] {
        return registry::StoreLocation{.user = registry_file, .machine = registry_file};
      })) {}

std::optional<std::string> Settings::UserText(const std::string& key,
                                              const std::string& name) const {
  const auto value = registry_->Read(registry::RootKey::kCurrentUser, text::Utf8ToWide(key),
                                     text::Utf8ToWide(name));
  if (!value) return std::nullopt;
  return text::WideToUtf8(std::get<std::wstring>(*value));
}

}  // namespace walks
