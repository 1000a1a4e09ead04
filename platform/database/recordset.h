// Rows selected from a connection's tables: walked, searched, added, changed and deleted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/database/connection.h"
#include "platform/text/variant.h"

namespace database {

// The classic numbers of cursor and lock types.
enum class CursorType { kForwardOnly = 0, kKeyset = 1, kDynamic = 2, kStatic = 3 };
enum class LockType { kReadOnly = 1, kPessimistic = 2, kOptimistic = 3 };

class Recordset;

// One column of the current row; reads the pending value while a row is being added or changed. A
// light handle that the recordset must outlive.
class Field {
 public:
  const std::wstring& Name() const;
  text::Variant Value() const;
  // Converts to the column's type as the database does: 3421 when it cannot, 3349 for a number that
  // the column cannot hold. A text that is too long is refused at Update (3163). On a recordset
  // that cannot be changed: 3251.
  void SetValue(const text::Variant& value);
  Field& operator=(const text::Variant& value) {
    SetValue(value);
    return *this;
  }
  Field(const Field&) = default;
  Field& operator=(const Field&) = delete;

 private:
  friend class Recordset;
  Field(Recordset& recordset, std::size_t column) : recordset_(recordset), column_(column) {}
  Recordset& recordset_;
  std::size_t column_;
};

// A table, or the result of a SELECT statement (see docs/sql.md for the statements understood and
// for what each cursor type sees of later changes).
//
// A recordset of one table can be changed (unless opened read-only); one of a join cannot. Every
// Update and Delete is committed when it returns. Rows added through this recordset are seen at its
// end and found by its Find. Once its connection is closed every operation but Close fails with
// 3704; the file is released all the same. One thread only.
//
// Failures are text::RuntimeError, among them 3021 (no current row), 3167 (current row deleted),
// 3251 (cannot be changed), 3704 (closed), 3705 (open already), 3265 (no such field).
class Recordset {
 public:
  Recordset();
  ~Recordset();  // discards a change that was not saved
  Recordset(const Recordset&) = delete;
  Recordset& operator=(const Recordset&) = delete;

  // `source` is a SELECT statement or a bare table name. `options` -1 is "unspecified".
  // A row is current at once unless nothing was selected.
  void Open(const std::wstring& source, Connection& connection,
            CursorType cursor = CursorType::kForwardOnly, LockType lock = LockType::kReadOnly,
            int options = -1);
  void Close();
  bool IsOpen() const;

  bool Eof() const;  // behind the last row, or no rows
  bool Bof() const;  // no rows: nothing moves before the first one
  void MoveFirst();  // 3021 when there are no rows
  void MoveNext();   // 3021 when already at the end

  // Moves to the first row at or behind the current one for which `criterion` ("Code = 'X'",
  // "fkArticle = 5": one column compared with a constant) holds; to the end (Eof) when none does.
  // On an empty recordset or at the end nothing happens. Constant time for equality on average,
  // whatever the number of rows. 3001 for a criterion that is not understood, 3265 for an unknown
  // column, 3464 when the constant is of another kind than the column.
  void Find(const std::wstring& criterion);

  Field Fields(const std::wstring& name);  // without case; 3265
  Field operator()(const std::wstring& name) { return Fields(name); }
  std::size_t FieldCount() const;
  Field FieldAt(std::size_t position);

  // Begins a new row, which becomes current; Update saves it, with its default in every column that
  // was not set (a Null that was set stays). Moving, searching, another AddNew and
  // closing discard what was set but not saved, in a new row as in one that is there, so that a
  // row that failed half-way never reaches the file. The autonumber can be read after Update.
  void AddNew();
  void Update();        // saves what was set; no effect when nothing was. Keeps it when it fails
  void CancelUpdate();  // discards what was set
  // The deleted row stays current, without readable fields, until a move. Discards a new row.
  void Delete();

  std::int64_t RecordCount() const;  // -1 for forward-only cursors

  // The connection it was opened on; 3704 when closed. Same object as passed to Open.
  Connection& ActiveConnection() const;

 private:
  friend class Field;
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace database
