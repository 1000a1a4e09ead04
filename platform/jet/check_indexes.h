// The part of a file check that walks index trees and compares them with the rows.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/jet/check_state.h"

namespace jet::check {

// The entries that the rows of a table ask of one of its indexes.
class ExpectedEntries {
 public:
  struct Item {
    RowId row;
    bool has_key = false;   // else only the row's address is known
    bool has_null = false;  // in a column of the index
    bool optional = false;  // the row could not be read: it may have an entry or none
    bool found = false;
    std::size_t key_end = 0;  // in `keys_`
  };

  // Rows come in ascending order.
  void Add(RowId row, std::span<const std::byte> key, bool has_null);
  void AddWithoutKey(RowId row, bool has_null);
  void AddOptional(RowId row);

  Item* Find(RowId row);
  std::span<const std::byte> KeyOf(const Item& item) const;
  const std::vector<Item>& items() const { return items_; }

 private:
  void Append(Item item);

  std::vector<Item> items_;
  Bytes keys_;
};

// The tree of a physical index: its pages, their order and links, its map, and that its entries are
// those of the rows.
void CheckIndex(State& state, const CheckedTable& table, std::size_t physical,
                ExpectedEntries& expected);

}  // namespace jet::check
