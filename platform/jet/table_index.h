// One physical index of an open table: which columns make its keys, and which rows are in it.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "platform/jet/index_tree.h"
#include "platform/jet/table_definition.h"
#include "platform/jet/value.h"

namespace jet {

// Keeps pointers into the definition, which must outlive it unchanged.
class TableIndex {
 public:
  TableIndex(Pager& pager, PageAllocator& allocator, const TableDefinition& table,
             std::size_t position);

  // Positions of its columns in a row, in index order.
  const std::vector<std::size_t>& columns() const { return positions_; }
  bool is_unique() const { return physical_->is_unique(); }
  bool ignores_nulls() const { return physical_->ignores_nulls(); }
  bool refuses_nulls() const { return refuses_nulls_; }
  bool is_primary() const { return is_primary_; }
  const std::u16string& name() const { return name_; }

  // Whether this engine can make its keys, and why not.
  bool is_understood() const { return refusal_.empty(); }
  const std::string& refusal() const { return refusal_; }

  bool HasNull(const Row& row) const { return CountNulls(row) > 0; }
  // Whether a row with these values stands in the index.
  bool HasEntry(const Row& row) const {
    return !ignores_nulls() || CountNulls(row) < positions_.size();
  }
  // Whether two rows have the same values in all its columns, bit by bit.
  bool SameValues(const Row& one, const Row& other) const;

  // The key of a row's entry. kNotSupported for a text without known weights.
  Bytes Key(const Row& row) const;
  Bytes KeyOf(std::span<const Value* const> values) const;  // one a column, in index order
  // The row's values of its columns, in index order. The row must outlive them.
  std::vector<const Value*> ValuesIn(const Row& row) const;
  // The key part of the first columns, one value each in index order, at its full length.
  Bytes Prefix(std::span<const Value* const> values) const;

  IndexTree& tree() { return tree_; }
  const IndexTree& tree() const { return tree_; }

  // Removes the row's entry: under its key, or wherever it stands when that is not known (empty).
  void Remove(RowId row, const Bytes& key);

 private:
  std::size_t CountNulls(const Row& row) const;  // a boolean is never null
  std::string FindRefusal() const;

  IndexTree tree_;
  const PhysicalIndex* physical_;
  std::vector<std::size_t> positions_;
  std::vector<const ColumnDefinition*> columns_;
  std::u16string name_;
  bool is_primary_ = false;
  bool refuses_nulls_ = false;
  std::string refusal_;
};

// Whether two values are stored alike: equal, but positive and negative zero differ.
bool Identical(const Value& one, const Value& other);

}  // namespace jet
