// Where in a recordset a value of one column stands, so that searching it costs constant time.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "platform/database/comparison.h"
#include "platform/database/keyed_sets.h"
#include "platform/database/row_list.h"
#include "platform/database/session.h"

namespace database {

// Positions by the value of one column. For rows of a table it follows every change that is made
// to them through the session, in whatever recordset; it stops when the session ends.
class FindIndex final : private jet::TableObserver {
 public:
  FindIndex() = default;  // over rows that never change
  // Over rows of a table; `column` is the table's.
  FindIndex(const std::shared_ptr<Session>& session, jet::Table& table, std::size_t column);
  ~FindIndex() override;
  FindIndex(const FindIndex&) = delete;
  FindIndex& operator=(const FindIndex&) = delete;

  void Add(Position position, const Comparable& value);
  // The same for a row of the table, which is followed from now on.
  void Add(Position position, jet::RowId id, const jet::Row& row);

  // The first position at or behind `from` that has this value; kEndPosition when there is none.
  Position Find(const Comparable& value, Position from) const;

 private:
  void RowChanged(jet::RowId id, const jet::Row* old_row, const jet::Row* new_row) override;
  Comparable ValueIn(const jet::Row& row) const;

  std::weak_ptr<Session> session_;
  jet::Table* table_ = nullptr;  // belongs to the session
  std::size_t column_ = 0;
  KeyedSets<Position> positions_;
  std::unordered_map<jet::RowId, Position> position_of_row_;
};

}  // namespace database
