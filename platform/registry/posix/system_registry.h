// The registry of systems that have none: settings files.
#pragma once

#include <functional>

#include "platform/registry/posix/store_location.h"
#include "platform/registry/registry.h"

namespace registry {

// Reads look into the user's file, then into the machine's. Writes below kCurrentUser go to the
// user's file, all others to the machine's.
class FileRegistry final : public Registry {
 public:
  // `locate` tells at every access where the files are.
  explicit FileRegistry(std::function<StoreLocation()> locate) : locate_(std::move(locate)) {}

  std::optional<Value> Read(RootKey root, const std::wstring& key,
                            const std::wstring& name) const override;
  void WriteText(RootKey root, const std::wstring& key, const std::wstring& name,
                 const std::wstring& text) override;

 private:
  std::function<StoreLocation()> locate_;
};

}  // namespace registry
