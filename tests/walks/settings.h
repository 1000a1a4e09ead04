// The settings of a demo installation, where the program finds them on this system.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "platform/registry/registry.h"

namespace walks {

class Settings {
 public:
  // Begins with what is in `registry_file`, which the program itself may or may not use, and
  // without anything from an earlier walk.
  explicit Settings(const std::filesystem::path& registry_file);

  registry::Registry& Registry() { return *registry_; }
  // What another program reads below the current user's key: a text in UTF-8.
  std::optional<std::string> UserText(const std::string& key, const std::string& name) const;

 private:
  std::unique_ptr<registry::Registry> registry_;
};

}  // namespace walks
