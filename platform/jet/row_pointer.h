// Addresses of rows: the identity of a row, and the pointers that the file keeps to rows.
#pragma once

#include <compare>
#include <cstdint>
#include <functional>

#include "platform/jet/error.h"

namespace jet {

// A row's slot: page << 8 | row in the file. As the identity of a table's row it is the home slot,
// which a row keeps for life, also when its data have moved to another page.
struct RowPointer {
  PageNumber page = 0;
  std::uint8_t row = 0;

  static RowPointer FromStored(std::uint32_t stored) {
    return {stored >> 8, static_cast<std::uint8_t>(stored & 0xff)};
  }
  std::uint32_t ToStored() const { return page << 8 | row; }
  bool is_null() const { return page == 0 && row == 0; }

  auto operator<=>(const RowPointer&) const = default;
};

using RowId = RowPointer;

}  // namespace jet

template <>
struct std::hash<jet::RowPointer> {
  std::size_t operator()(const jet::RowPointer& pointer) const noexcept {
    return std::hash<std::uint32_t>{}(pointer.ToStored());
  }
};
