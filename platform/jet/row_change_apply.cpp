// Doing a planned row change, in an order that a killed process cannot turn into an unreadable
// file.
#include <algorithm>

#include "platform/jet/database_impl.h"
#include "platform/jet/error.h"
#include "platform/jet/row_change.h"

namespace jet {

namespace {

// The longest uncompressed value that may be kept compressed; longer ones go into chains.
constexpr std::size_t kLongestToCompress = 3816;

// Puts the counters in memory back unless the change was committed.
class CounterGuard {
 public:
  explicit CounterGuard(const std::deque<PlannedRow>& rows) : rows_(rows) {
    for (const PlannedRow& row : rows_) row.table->KeepCounters();
  }
  ~CounterGuard() {
    if (committed_) return;
    for (const PlannedRow& row : rows_) row.table->RestoreCounters();
  }
  CounterGuard(const CounterGuard&) = delete;
  CounterGuard& operator=(const CounterGuard&) = delete;
  void Committed() { committed_ = true; }

 private:
  const std::deque<PlannedRow>& rows_;
  bool committed_ = false;
};

bool KeepsLongValue(const PlannedRow& row, std::size_t column) {
  return row.old && !row.is_delete() && Identical(row.old->values[column], (*row.values)[column]);
}

LongValueField WriteLongValue(LongValueStore& store, const ColumnDefinition& column,
                              const Value& value) {
  if (const auto* bytes = std::get_if<Bytes>(&value)) return store.Write(*bytes, bytes->size());
  const auto& text = std::get<std::u16string>(value);
  const std::size_t plain_size = text.size() * sizeof(char16_t);
  const bool compress = column.may_compress() && plain_size <= kLongestToCompress;
  return store.Write(EncodeText(text, compress), plain_size);
}

bool IsUnchanged(const PlannedRow& row) {
  return std::equal(row.old->values.begin(), row.old->values.end(), row.values->begin(),
                    row.values->end(), Identical);
}

}  // namespace

void RowChange::Run() {
  Cascade();
  CheckRefusals();
  Check();

  CounterGuard counters(rows_);
  PageTransaction transaction(database_.pager);
  // Referencing rows were planned after those they refer to; they go first.
  for (std::size_t i = rows_.size(); i-- > 0;) Apply(rows_[i]);
  transaction.Commit();
  counters.Committed();
  Notify();
}

void RowChange::Apply(PlannedRow& row) {
  if (row.is_insert()) {
    ApplyInsert(row);
  } else if (row.is_delete()) {
    ApplyDelete(row);
  } else if (!IsUnchanged(row)) {
    ApplyUpdate(row);
  }
}

// Counters, long values, row, index entries: a row that is in the file without its entries is
// still found by a scan, and its autonumber is not handed out twice.
void RowChange::ApplyInsert(PlannedRow& row) {
  Table::Impl& table = *row.table;
  if (row.autonumber) table.SetLastAutonumber(*row.autonumber);
  table.AddRows(1);
  row.id = table.rows->Insert(BuildStored(row));
  for (const PlannedRow::Entry& entry : row.entries) AddEntry(row, entry);
}

// New long values, row, new entries before old ones go; what nothing points to any more last.
void RowChange::ApplyUpdate(PlannedRow& row) {
  Table::Impl& table = *row.table;
  const auto autonumber = table.LeadingAutonumber(*row.values);
  if (autonumber) table.SetLastAutonumber(*autonumber);
  table.rows->Replace(row.id, BuildStored(row));
  for (const PlannedRow::Entry& entry : row.entries) {
    if (entry.arrives) AddEntry(row, entry);
    if (entry.leaves) table.indexes[entry.index].Remove(row.id, entry.old_key);
  }
  for (std::size_t i = 0; i < row.old->fields.size(); ++i)
    if (row.old->fields[i] && !KeepsLongValue(row, i))
      table.long_values[i]->Free(*row.old->fields[i]);
}

// Entries before the row, so that no entry ever leads to a row that is not there.
void RowChange::ApplyDelete(PlannedRow& row) {
  Table::Impl& table = *row.table;
  for (const PlannedRow::Entry& entry : row.entries)
    table.indexes[entry.index].Remove(row.id, entry.old_key);
  table.rows->Delete(row.id);
  for (std::size_t i = 0; i < row.old->fields.size(); ++i)
    if (row.old->fields[i]) table.long_values[i]->Free(*row.old->fields[i]);
  table.AddRows(-1);
}

// The bytes of the row; its new long values are written on the way.
Bytes RowChange::BuildStored(const PlannedRow& row) const {
  Table::Impl& table = *row.table;
  const TableDefinition& definition = table.definition;
  if (!table.has_long_values) return BuildRow(definition, *row.values, {});

  std::vector<LongValueField> fields(definition.columns.size());
  std::optional<Row> with_unread;  // a cascade leaves long values unread: they are not null
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const ColumnDefinition& column = definition.columns[i];
    if (!column.is_long_value()) continue;
    const Value& value = (*row.values)[i];
    if (!KeepsLongValue(row, i)) {
      if (!IsNull(value)) fields[i] = WriteLongValue(*table.long_values[i], column, value);
      continue;
    }
    if (!row.old->fields[i]) continue;
    fields[i] = *row.old->fields[i];
    if (!IsNull(value)) continue;
    if (!with_unread) with_unread = *row.values;
    (*with_unread)[i] = column.type == ColumnType::kOle ? Value(Bytes{}) : Value(std::u16string{});
  }
  const Row& values = with_unread ? *with_unread : *row.values;
  try {
    return BuildRow(definition, values, fields);
  } catch (const Error& error) {
    if (error.kind() != ErrorKind::kRowTooLarge) throw;
  }
  for (std::size_t i = 0; i < fields.size(); ++i) {
    LongValueField& field = fields[i];
    const bool may_move = field.form == LongValueField::Form::kInline && field.length > 0;
    if (may_move)
      field = table.long_values[i]->Write(field.inline_bytes, field.inline_bytes.size(), false);
  }
  return BuildRow(definition, values, fields);
}

void RowChange::AddEntry(const PlannedRow& row, const PlannedRow::Entry& entry) const {
  const bool is_new = row.table->indexes[entry.index].tree().Insert({entry.new_key, row.id});
  if (is_new) {
    row.table->CountDistinctKey(entry.index);
  } else if (IsLoneInsert()) {
    CheckUnique(row, entry);
  }
}

void RowChange::Notify() const {
  for (const PlannedRow& row : rows_)
    for (TableObserver* observer : row.table->observers)
      observer->RowChanged(row.id, row.old ? &row.old->values : nullptr, row.values);
}

}  // namespace jet
