// One settings file that several programs share.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>

#include "platform/registry/reg_file.h"

namespace registry {

// Reads and changes are each one step for everybody else: a change locks the file, reads it, and
// puts a new file in its place. Failures are text::RuntimeError as registry.h lists them, and their
// texts name the file.
class TextStore {
 public:
  explicit TextStore(std::filesystem::path path) : path_(std::move(path)) {}

  // Nothing when there is no such file.
  std::optional<RegFile> Read() const;

  // Lets `change` change the file, which is made, with its folder, where it is missing. What is
  // damaged stays as it is.
  void Change(const std::function<void(RegFile&)>& change) const;

 private:
  std::filesystem::path path_;
};

}  // namespace registry
