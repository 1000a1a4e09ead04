// The host product at work, as far as its product table can tell.
#pragma once

#include <cstdint>
#include <filesystem>

namespace walks {

// Must begin before this process has threads or windows.
class HostProduct {
 public:
  // Another program now has the product table open. Throws std::runtime_error when it cannot.
  explicit HostProduct(const std::filesystem::path& product_table);
  // Ends it.
  ~HostProduct();
  HostProduct(const HostProduct&) = delete;
  HostProduct& operator=(const HostProduct&) = delete;

 private:
  std::intptr_t native_;  // the system's own name of what has it open
};

}  // namespace walks
