// Recordsets: a cursor over a selection, and the row being added or changed.
#include "platform/database/recordset.h"

#include <utility>
#include <vector>

#include "platform/database/errors.h"
#include "platform/database/row_cursor.h"
#include "platform/database/value_conversion.h"

namespace database {

struct Recordset::Impl {
  enum class Editing { kNone, kChange, kNew };

  // The open session; 3704 when the connection or the recordset is closed.
  Session& RequireOpen() const;
  RowCursor& RequireCursor() const;
  // The table to change; 3251 when this recordset cannot be changed.
  jet::Table& RequireTable() const;
  // Calls `work` on the cursor; engine errors leave translated.
  template <class Work>
  decltype(auto) With(Work&& work) const {
    const Session& session = RequireOpen();
    return Translated(session.path(), [&]() -> decltype(auto) { return work(RequireCursor()); });
  }

  const jet::Value& Read(std::size_t field) const;
  void Write(std::size_t field, const text::Variant& value);
  void BeginNew();
  void Save();
  void Discard();

  std::shared_ptr<ConnectionState> connection;
  std::unique_ptr<RowCursor> cursor;  // empty when closed
  CursorType cursor_type = CursorType::kForwardOnly;
  bool read_only = true;

  Editing editing = Editing::kNone;
  jet::Row edited;           // one value a column of the table
  std::vector<bool> is_set;  // which of them were set
};

Session& Recordset::Impl::RequireOpen() const {
  if (cursor == nullptr || connection->session == nullptr) Fail(Failure::kClosed);
  return *connection->session;
}

RowCursor& Recordset::Impl::RequireCursor() const {
  RequireOpen();
  return *cursor;
}

jet::Table& Recordset::Impl::RequireTable() const {
  SessionTable* table = RequireCursor().table();
  if (read_only || table == nullptr) Fail(Failure::kNotUpdatable);
  return table->jet();
}

const jet::Value& Recordset::Impl::Read(std::size_t field) const {
  return With([&](RowCursor& rows) -> const jet::Value& {
    if (editing != Editing::kNone) {
      const std::size_t column = rows.ColumnOf(field);
      if (editing == Editing::kNew || is_set[column]) return edited[column];
    }
    return rows.FieldValue(field);
  });
}

void Recordset::Impl::Write(std::size_t field, const text::Variant& value) {
  With([&](RowCursor& rows) {
    const jet::Table& table = RequireTable();
    const std::size_t column = rows.ColumnOf(field);
    if (editing == Editing::kNone) rows.Values();  // there must be a row to change
    jet::Value converted = ToColumnValue(value, table.columns()[column]);
    if (editing == Editing::kNone) {
      editing = Editing::kChange;
      edited.assign(table.columns().size(), jet::Null{});
      is_set.assign(table.columns().size(), false);
    }
    edited[column] = std::move(converted);
    is_set[column] = true;
  });
}

void Recordset::Impl::BeginNew() {
  const jet::Table& table = RequireTable();
  editing = Editing::kNew;
  edited.clear();
  for (const jet::ColumnDefinition& column : table.columns()) {
    const bool is_boolean = column.type == jet::ColumnType::kBoolean;
    edited.push_back(is_boolean ? jet::Value(false) : jet::Value(jet::Null{}));
  }
  is_set.assign(edited.size(), false);
}

void Recordset::Impl::Save() {
  With([&](RowCursor& rows) {
    if (editing == Editing::kNone) return;
    jet::Table& table = RequireTable();
    if (editing == Editing::kNew) {
      jet::Row row = edited;
      for (std::size_t column = 0; column < row.size(); ++column)
        if (!is_set[column]) row[column] = jet::Null{};
      const jet::RowId id = table.Insert(row, is_set);
      rows.RowAdded(id, std::move(row));
    } else {
      // What was not set keeps the value that it has by now.
      jet::Row row = rows.Values();
      for (std::size_t column = 0; column < row.size(); ++column)
        if (is_set[column]) row[column] = edited[column];
      table.Update(rows.Id(), row);
      rows.RowUpdated(std::move(row));
    }
    Discard();
  });
}

void Recordset::Impl::Discard() { editing = Editing::kNone; }

const std::wstring& Field::Name() const {
  return recordset_.impl_->RequireCursor().fields()[column_].name;
}

text::Variant Field::Value() const { return ToVariant(recordset_.impl_->Read(column_)); }

void Field::SetValue(const text::Variant& value) { recordset_.impl_->Write(column_, value); }

Recordset::Recordset() : impl_(std::make_unique<Impl>()) {}

Recordset::~Recordset() = default;

void Recordset::Open(const std::wstring& source, Connection& connection, CursorType cursor,
                     LockType lock, int /*options*/) {
  if (IsOpen()) Fail(Failure::kAlreadyOpen);
  const std::shared_ptr<Session> session = connection.session();
  impl_->connection = connection.state_;
  impl_->cursor_type = cursor;
  impl_->read_only = lock == LockType::kReadOnly;
  impl_->Discard();
  Translated(session->path(), [&] {
    const bool snapshot = cursor == CursorType::kStatic && impl_->read_only;
    auto rows = std::make_unique<RowCursor>(session, Select(*session, source), snapshot);
    // The rows of a keyset are those that are there now.
    if (cursor == CursorType::kKeyset || cursor == CursorType::kStatic) rows->Count();
    impl_->cursor = std::move(rows);
  });
}

void Recordset::Close() {
  if (impl_->cursor == nullptr) Fail(Failure::kClosed);
  impl_->cursor.reset();
  impl_->connection.reset();
  impl_->Discard();
}

bool Recordset::IsOpen() const { return impl_->cursor != nullptr; }

bool Recordset::Eof() const {
  return impl_->With(
      [&](RowCursor& rows) { return impl_->editing != Impl::Editing::kNew && rows.AtEnd(); });
}

bool Recordset::Bof() const {
  return impl_->With(
      [&](RowCursor& rows) { return impl_->editing != Impl::Editing::kNew && rows.IsEmpty(); });
}

void Recordset::MoveFirst() {
  impl_->With([&](RowCursor& rows) {
    impl_->Discard();
    rows.MoveFirst();
  });
}

void Recordset::MoveNext() {
  impl_->With([&](RowCursor& rows) {
    impl_->Discard();
    rows.MoveNext();
  });
}

void Recordset::Find(const std::wstring& criterion) {
  impl_->With([&](RowCursor& rows) {
    impl_->Discard();
    rows.Find(criterion);
  });
}

Field Recordset::Fields(const std::wstring& name) {
  const std::optional<std::size_t> field = FindField(impl_->RequireCursor().fields(), name);
  if (!field) Fail(Failure::kNoSuchItem, {name});
  return {*this, *field};
}

std::size_t Recordset::FieldCount() const { return impl_->RequireCursor().fields().size(); }

Field Recordset::FieldAt(std::size_t position) {
  if (position >= FieldCount()) Fail(Failure::kNoSuchItem, {std::to_wstring(position)});
  return {*this, position};
}

void Recordset::AddNew() { impl_->BeginNew(); }

void Recordset::Update() { impl_->Save(); }

void Recordset::CancelUpdate() {
  impl_->RequireOpen();
  impl_->Discard();
}

void Recordset::Delete() {
  impl_->With([&](RowCursor& rows) {
    jet::Table& table = impl_->RequireTable();
    const bool is_new = impl_->editing == Impl::Editing::kNew;
    impl_->Discard();
    if (is_new) return;
    table.Delete(rows.Id());
    rows.RowDeleted();
  });
}

std::int64_t Recordset::RecordCount() const {
  return impl_->With([&](RowCursor& rows) -> std::int64_t {
    if (impl_->cursor_type == CursorType::kForwardOnly) return -1;
    return static_cast<std::int64_t>(rows.Count());
  });
}

Connection& Recordset::ActiveConnection() const {
  impl_->RequireOpen();
  return *impl_->connection->connection;
}

}  // namespace database
