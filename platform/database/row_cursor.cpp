// Walking and searching the rows of a selection.
#include "platform/database/row_cursor.h"

#include <utility>

#include "platform/database/comparison.h"
#include "platform/database/errors.h"
#include "platform/database/sql_parser.h"
#include "platform/database/value_conversion.h"

namespace database {
namespace {

RowList RowsOf(Selection& selection) {
  if (selection.whole_table) return RowList(selection.table->jet());
  return RowList(std::move(selection.rows));
}

}  // namespace

RowCursor::RowCursor(const std::shared_ptr<Session>& session, Selection selection, bool snapshot)
    : shared_session_(session),
      session_(session.get()),
      selection_(std::move(selection)),
      rows_(RowsOf(selection_)) {
  if (snapshot && table() != nullptr) TakeSnapshot();
  MoveTo(First());
}

void RowCursor::TakeSnapshot() {
  for (Position position = First(); position != kEndPosition; position = After(position)) {
    std::optional<jet::Row> row = rows_.TakeFoundValues();
    if (!row) row = Read(position);
    if (!row) continue;
    jet::Row& values = selection_.values.emplace_back();
    for (const std::size_t column : selection_.columns) values.push_back((*row)[column]);
  }
  selection_.table = nullptr;
}

Position RowCursor::First() {
  if (table() != nullptr) return rows_.First();
  return selection_.values.empty() ? kEndPosition : 0;
}

Position RowCursor::After(Position position) {
  if (table() != nullptr) return rows_.After(position);
  return position + 1 < selection_.values.size() ? position + 1 : kEndPosition;
}

void RowCursor::MoveTo(Position position) {
  position_ = position;
  current_.reset();
  if (table() == nullptr || AtEnd()) return;
  current_ = rows_.TakeFoundValues();
  current_as_of_ = session_->change_count();
}

bool RowCursor::IsEmpty() {
  return table() != nullptr ? rows_.IsEmpty() : selection_.values.empty();
}

std::size_t RowCursor::Count() {
  return table() != nullptr ? rows_.Count() : selection_.values.size();
}

void RowCursor::MoveFirst() {
  if (IsEmpty()) Fail(Failure::kNoCurrentRow);
  MoveTo(First());
}

void RowCursor::MoveNext() {
  if (AtEnd()) Fail(Failure::kNoCurrentRow);
  MoveTo(After(position_));
}

void RowCursor::Find(std::wstring_view criterion) {
  const sql::Criterion test = sql::ParseCriterion(criterion);
  const std::optional<std::size_t> field = FindField(fields(), test.column);
  if (!field) Fail(Failure::kNoSuchItem, {test.column});
  const FieldInfo& info = fields()[*field];
  if (KindOf(info.type) != KindOf(test.constant)) Fail(Failure::kCriterionMismatch);
  if (AtEnd()) return;

  const Comparable wanted = ComparableOf(ConstantValue(test.constant), info.collation);
  if (test.op == sql::Operator::kEqual) {
    MoveTo(IndexOn(*field).Find(wanted, position_));
    return;
  }
  for (Position position = position_; position != kEndPosition; position = After(position)) {
    const std::optional<jet::Row> row = Read(position);
    if (!row) continue;
    const Comparable value = ComparableOf(ValueOf(*row, *field), info.collation);
    if (Holds(value, test.op, wanted)) return MoveTo(position);
  }
  MoveTo(kEndPosition);
}

FindIndex& RowCursor::IndexOn(std::size_t field) {
  std::unique_ptr<FindIndex>& slot = find_indexes_[field];
  if (slot != nullptr) return *slot;

  auto index = table() == nullptr ? std::make_unique<FindIndex>()
                                  : std::make_unique<FindIndex>(shared_session_.lock(),
                                                                table()->jet(), ColumnOf(field));
  for (Position position = First(); position != kEndPosition; position = After(position)) {
    if (table() == nullptr) {
      const jet::Row& row = selection_.values[position];
      index->Add(position, ComparableOf(row[field], fields()[field].collation));
      continue;
    }
    std::optional<jet::Row> row = rows_.TakeFoundValues();
    if (!row) row = Read(position);
    if (row) index->Add(position, rows_.IdAt(position), *row);
  }
  slot = std::move(index);
  return *slot;
}

std::optional<jet::Row> RowCursor::Read(Position position) const {
  if (table() == nullptr) return selection_.values[position];
  const jet::RowId id = rows_.IdAt(position);
  if (id.is_null()) return std::nullopt;
  return table()->jet().Read(id);
}

const jet::Row& RowCursor::Values() {
  if (AtEnd()) Fail(Failure::kNoCurrentRow);
  if (table() == nullptr) return selection_.values[position_];
  if (current_ && current_as_of_ == session_->change_count()) return *current_;
  current_ = Read(position_);
  current_as_of_ = session_->change_count();
  if (!current_) Fail(Failure::kRecordDeleted);
  return *current_;
}

const jet::Value& RowCursor::ValueOf(const jet::Row& row, std::size_t field) const {
  return row[table() != nullptr ? ColumnOf(field) : field];
}

const jet::Value& RowCursor::FieldValue(std::size_t field) { return ValueOf(Values(), field); }

jet::RowId RowCursor::Id() const {
  if (AtEnd()) Fail(Failure::kNoCurrentRow);
  const jet::RowId id = rows_.IdAt(position_);
  if (id.is_null()) Fail(Failure::kRecordDeleted);
  return id;
}

void RowCursor::RowAdded(jet::RowId id, jet::Row values) {
  const Position position = rows_.Append(id);
  for (const auto& [field, index] : find_indexes_) index->Add(position, id, values);
  position_ = position;
  RowUpdated(std::move(values));
}

void RowCursor::RowUpdated(jet::Row values) {
  session_->CountChange();
  current_ = std::move(values);
  current_as_of_ = session_->change_count();
}

void RowCursor::RowDeleted() {
  session_->CountChange();
  rows_.Remove(position_);
  current_.reset();
}

}  // namespace database
