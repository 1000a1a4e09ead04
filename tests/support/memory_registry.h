// A registry in memory, which can be told to fail.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <tuple>

#include "platform/registry/registry.h"
#include "platform/text/runtime_error.h"

namespace test_support {

class MemoryRegistry final : public registry::Registry {
 public:
  using Place = std::tuple<registry::RootKey, std::wstring, std::wstring>;  // root, key, name

  std::optional<registry::Value> Read(registry::RootKey root, const std::wstring& key,
                                      const std::wstring& name) const override {
    ThrowIfTold();
    const auto found = values.find({root, key, name});
    return found == values.end() ? std::nullopt : std::optional(found->second);
  }
  void WriteText(registry::RootKey root, const std::wstring& key, const std::wstring& name,
                 const std::wstring& text) override {
    ThrowIfTold();
    values[{root, key, name}] = text;
  }

  std::map<Place, registry::Value> values;
  std::optional<text::RuntimeError> failure;  // thrown by every access

 private:
  void ThrowIfTold() const {
    if (failure) throw text::RuntimeError(*failure);
  }
};

}  // namespace test_support
