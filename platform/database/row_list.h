// The rows of a recordset in their order, found as far as somebody has looked.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <unordered_set>
#include <vector>

#include "platform/jet/table.h"

namespace database {

// A place in a RowList. Places of rows never change; a removed row leaves a gap.
using Position = std::uint64_t;
inline constexpr Position kEndPosition = std::numeric_limits<Position>::max();

// Rows selected at the beginning come first, rows appended later follow. The rows of a whole table
// are found while walking, so that opening a large table costs nothing; the table must then outlive
// every call but the destructor's.
class RowList {
 public:
  explicit RowList(std::vector<jet::RowId> rows);
  explicit RowList(const jet::Table& whole_table);

  Position First();
  // The first row behind `position`, which may be that of a removed row.
  Position After(Position position);
  // Null (RowPointer::is_null) for a removed row.
  jet::RowId IdAt(Position position) const;
  // The values of the row that First or After has just found in the table, if it read them.
  std::optional<jet::Row> TakeFoundValues();

  Position Append(jet::RowId id);
  void Remove(Position position);
  bool IsEmpty();
  // Finds all rows; how many there are.
  std::size_t Count();

 private:
  // Finds the next row of the whole table. Returns false when there is none.
  bool FindNext();
  Position Present(Position position);

  std::vector<jet::RowId> selected_;
  std::vector<jet::RowId> appended_;
  std::size_t first_present_ = 0;  // no row is present in `selected_` before this one
  std::size_t present_ = 0;        // rows found and not removed
  std::optional<jet::Table::Scan> scan_;
  std::unordered_set<jet::RowId> not_to_find_;  // appended while `scan_` goes on
  std::optional<jet::Row> found_values_;
};

}  // namespace database
