// The settings of a demo installation, where the program finds them on this system.
#pragma once

#include <filesystem>
#include <memory>

#include "platform/registry/registry.h"

namespace walks {

// Settings with what is in `registry_file`, which the program itself may or may not use, and
// without anything from an earlier walk.
std::unique_ptr<registry::Registry> FreshSettings(const std::filesystem::path& registry_file);

}  // namespace walks
