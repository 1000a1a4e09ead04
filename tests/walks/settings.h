// The settings of a demo installation, where the program finds them on this system.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "platform/registry/registry.h"

namespace walks {

// Settings with what is in `registry_file`, which the program itself may or may not use, and
// without anything from an earlier walk.
std::unique_ptr<registry::Registry> FreshSettings(const std::filesystem::path& registry_file);

// A text among the current user's settings, in UTF-8; read by the system's own program, not by
// ours, where there is one.
std::optional<std::string> UserSetting(const registry::Registry& settings, const std::string& key,
                                       const std::string& name);

}  // namespace walks
