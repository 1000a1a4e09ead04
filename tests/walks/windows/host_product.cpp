// The host product: a handle that is shared as its driver does. It counts for this process, too.
#include "tests/walks/host_product.h"

#include <windows.h>

#include <stdexcept>

namespace walks {

HostProduct::HostProduct(const std::filesystem::path& product_table)
    : native_(reinterpret_cast<std::intptr_t>(
          CreateFileW(product_table.c_str(), GENERIC_READ | GENERIC_WRITE,
                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr))) {
  if (reinterpret_cast<HANDLE>(native_) == INVALID_HANDLE_VALUE) {
    throw std::runtime_error("the product table cannot be held");
  }
}

HostProduct::~HostProduct() { CloseHandle(reinterpret_cast<HANDLE>(native_)); }

}  // namespace walks
