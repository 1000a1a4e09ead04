// A place in a selection: walks its rows, reads the one it stands on, and searches.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/database/find_index.h"
#include "platform/database/row_list.h"
#include "platform/database/selection.h"

namespace database {

// Stands on a row, on the gap that a removed row left, or behind the last row. Does not keep the
// session open: no member but the destructor may be called once that has ended.
class RowCursor {
 public:
  // A snapshot takes all values at once and never changes; otherwise rows are read when they are
  // needed, so that changes by others show.
  RowCursor(const std::shared_ptr<Session>& session, Selection selection, bool snapshot);
  RowCursor(const RowCursor&) = delete;
  RowCursor& operator=(const RowCursor&) = delete;

  const FieldList& fields() const { return *selection_.fields; }
  // The table whose rows these are; nullptr for mere values.
  SessionTable* table() const { return selection_.table; }
  // The table's column that a field shows. REQUIRES table().
  std::size_t ColumnOf(std::size_t field) const { return selection_.columns[field]; }

  bool AtEnd() const { return position_ == kEndPosition; }
  bool IsEmpty();
  std::size_t Count();

  void MoveFirst();  // 3021 when empty
  void MoveNext();   // 3021 at the end
  // Moves to the first row at or behind this one for which the criterion holds, else to the end;
  // stays at the end. 3001, 3265, 3464.
  void Find(std::wstring_view criterion);

  // The row it stands on: one value a column of the table, or one a field when there is no table.
  // 3021 at the end, 3167 when the row was deleted. Good until the next call.
  const jet::Row& Values();
  const jet::Value& FieldValue(std::size_t field);
  // 3021 and 3167 likewise. REQUIRES table().
  jet::RowId Id() const;

  // What the owner has done to the table. REQUIRES table().
  void RowAdded(jet::RowId id, jet::Row values);  // and moves there
  void RowUpdated(jet::Row values);               // the row it stands on
  void RowDeleted();                              // the row it stands on, which leaves a gap

 private:
  void TakeSnapshot();
  Position First();
  Position After(Position position);
  void MoveTo(Position position);
  // The values of a row anywhere; nothing when it was deleted.
  std::optional<jet::Row> Read(Position position) const;
  const jet::Value& ValueOf(const jet::Row& row, std::size_t field) const;
  FindIndex& IndexOn(std::size_t field);

  std::weak_ptr<Session> shared_session_;
  Session* session_;
  Selection selection_;
  RowList rows_;  // rows of the table; unused for mere values
  Position position_ = kEndPosition;
  std::optional<jet::Row> current_;  // the values of the row it stands on, when known
  std::uint64_t current_as_of_ = 0;  // the session's change count when they were read
  std::map<std::size_t, std::unique_ptr<FindIndex>> find_indexes_;  // by field
};

}  // namespace database
