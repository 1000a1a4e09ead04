// A table as its users see it: see the header.
#include "platform/jet/table.h"

#include <algorithm>
#include <unordered_set>

#include "platform/jet/database_impl.h"
#include "platform/jet/error.h"
#include "platform/jet/object_name.h"
#include "platform/jet/row_change.h"
#include "platform/jet/table_impl.h"

namespace jet {

namespace {

// Tables of the engine and the host are kept by them alone.
void RequireUserTable(const Table::Impl& table) {
  if ((table.entry.flags & object_flags::kNotForUsers) != 0)
    throw Error(ErrorKind::kNotSupported, {table.entry.name}, "a system table");
}

// Fills a new row's empty values; on failure takes them out again.
class RowFiller {
 public:
  RowFiller(Table::Impl& table, Row& row, const std::vector<bool>* is_given)
      : table_(table), row_(row), is_given_(is_given) {}
  // Emptying a value does not throw; the check cannot see that.
  ~RowFiller() {  // NOLINT(bugprone-exception-escape)
    if (committed_) return;
    for (const std::size_t column : filled_) row_[column] = Null{};
  }
  RowFiller(const RowFiller&) = delete;
  RowFiller& operator=(const RowFiller&) = delete;

  void Fill();
  // The number to be stored as the last one handed out, when this row moves it.
  std::optional<std::int32_t> autonumber() const { return autonumber_; }
  void Committed() { committed_ = true; }

 private:
  void FillAutonumber(std::size_t at);
  bool IsGiven(std::size_t column) const { return is_given_ != nullptr && (*is_given_)[column]; }
  void Set(std::size_t column, Value value) {
    row_[column] = std::move(value);
    filled_.push_back(column);
  }

  Table::Impl& table_;
  Row& row_;
  const std::vector<bool>* is_given_;
  std::vector<std::size_t> filled_;
  std::optional<std::int32_t> autonumber_;
  bool committed_ = false;
};

// Whether another row has this value in a unique index of the column alone.
bool IsTaken(const Table::Impl& table, std::size_t column, const Value& value) {
  const Value* const values[] = {&value};
  return std::any_of(table.indexes.begin(), table.indexes.end(), [&](const TableIndex& index) {
    return index.is_unique() && index.columns() == std::vector<std::size_t>{column} &&
           index.tree().ContainsKey(index.KeyOf(values));
  });
}

std::int32_t NextAutonumber(std::int32_t last, std::int32_t increment) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(last) +
                                   static_cast<std::uint32_t>(increment == 0 ? 1 : increment));
}

void RowFiller::Fill() {
  const TableDefinition& definition = table_.definition;
  for (std::size_t i = 0; i < definition.columns.size(); ++i) {
    const ColumnDefinition& column = definition.columns[i];
    if (i == table_.autonumber_column) {
      FillAutonumber(i);
    } else if (!IsNull(row_[i])) {
      continue;
    } else if (column.is_auto_guid()) {
      Set(i, RandomGuid());
    } else {
      Value value;
      if (!IsGiven(i)) value = (*table_.rules)[i].default_value.Evaluate(column);
      if (IsNull(value) && column.type == ColumnType::kBoolean) value = false;
      if (!IsNull(value)) Set(i, std::move(value));
    }
  }
}

void RowFiller::FillAutonumber(std::size_t at) {
  const TableDefinition& definition = table_.definition;
  const ColumnDefinition& column = definition.columns[at];
  const DefaultValue& default_value = (*table_.rules)[at].default_value;
  const bool random = default_value.is_random_autonumber();
  if (!IsNull(row_[at])) {
    autonumber_ = table_.LeadingAutonumber(row_);
    return;
  }
  // A stored counter may lag behind the rows; every value that it would repeat is passed over.
  std::uint64_t attempts = std::uint64_t{definition.row_count} + 1;
  const bool leads = !random && table_.AutonumberLeads();
  std::int32_t next = definition.last_autonumber;
  do {
    next = random ? std::get<std::int32_t>(default_value.Evaluate(column))
                  : NextAutonumber(next, definition.autonumber_increment);
  } while (!leads && IsTaken(table_, at, next) && attempts-- > 0);
  Set(at, next);
  if (!random) autonumber_ = next;
}

}  // namespace

Table::Table(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Table::~Table() = default;

const std::u16string& Table::name() const { return impl_->entry.name; }
const TableDefinition& Table::definition() const { return impl_->definition; }
std::uint32_t Table::row_count() const { return impl_->definition.row_count; }

std::optional<std::size_t> Table::FindColumn(std::u16string_view name) const {
  const auto found = impl_->columns_by_name.find(FoldName(name));
  if (found == impl_->columns_by_name.end()) return std::nullopt;
  return found->second;
}

bool Table::IsRequired(std::size_t column) const { return (*impl_->rules)[column].required; }

bool Table::AllowsZeroLength(std::size_t column) const {
  return (*impl_->rules)[column].allow_zero_length;
}

std::optional<Row> Table::Read(RowId id) const {
  std::optional<LoadedRow> row = impl_->ReadRow(id, LongValues::kRead);
  if (!row) return std::nullopt;
  return std::move(row->values);
}

struct Table::Scan::Impl {
  explicit Impl(const Table::Impl& of) : table(of), rows(*of.rows), scan(rows) {}
  const Table::Impl& table;
  RowStore rows;
  RowStore::Scan scan;
};

Table::Scan::Scan(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Table::Scan::Scan(Scan&&) noexcept = default;
Table::Scan::~Scan() = default;

std::optional<StoredRowValues> Table::Scan::Next() {
  const std::optional<RawRow> raw = impl_->scan.Next();
  if (!raw) return std::nullopt;
  return StoredRowValues{raw->id, impl_->table.Decode(*raw, LongValues::kRead).values};
}

Table::Scan Table::ScanRows() const { return Scan(std::make_unique<Scan::Impl>(*impl_)); }

std::optional<std::size_t> Table::IndexOn(std::size_t column) const {
  return IndexOn(std::span(&column, 1));
}

std::optional<std::size_t> Table::IndexOn(std::span<const std::size_t> columns) const {
  std::optional<std::size_t> best;
  int best_merit = -1;
  for (std::size_t i = 0; i < impl_->indexes.size(); ++i) {
    const TableIndex& index = impl_->indexes[i];
    const auto& own = index.columns();
    if (!index.is_understood() || own.size() < columns.size() ||
        !std::is_permutation(columns.begin(), columns.end(), own.begin(),
                             own.begin() + static_cast<std::ptrdiff_t>(columns.size())))
      continue;
    const bool exact = own.size() == columns.size();
    const int merit = (exact ? 2 : 0) + (exact && index.is_unique() ? 1 : 0);
    if (merit <= best_merit) continue;
    best = i;
    best_merit = merit;
  }
  return best;
}

std::vector<RowId> Table::Lookup(std::size_t index, std::span<const Value> values) const {
  const std::vector<std::size_t>& columns = impl_->indexes.at(index).columns();
  if (values.size() > columns.size())
    throw Error(ErrorKind::kTypeMismatch, "more values than the index has columns");
  std::vector<const Value*> pointers;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const ColumnDefinition& column = impl_->definition.columns[columns[i]];
    if (!IsNull(values[i]) && !HoldsAlternative(column.type, values[i]))
      throw Error(ErrorKind::kTypeMismatch, {column.name}, "a value of another type");
    pointers.push_back(&values[i]);
  }
  return impl_->Find(index, pointers);
}

std::vector<RowId> Table::RowsInOrder(std::size_t index_position) const {
  const TableIndex& index = impl_->indexes.at(index_position);
  std::vector<RowId> rows;
  std::unordered_set<RowId> seen;
  for (auto cursor = index.tree().First(); !cursor.at_end(); cursor.Next())
    if (seen.insert(cursor.row()).second) rows.push_back(cursor.row());
  if (!index.ignores_nulls()) return rows;

  // Rows of nulls alone have no entry; null comes first.
  std::vector<RowId> all;
  RowStore::Scan scan(*impl_->rows);
  while (const std::optional<RawRow> raw = scan.Next())
    if (!seen.contains(raw->id)) all.push_back(raw->id);
  all.insert(all.end(), rows.begin(), rows.end());
  return all;
}

RowId Table::Insert(Row& row) {
  RequireUserTable(*impl_);
  return impl_->Insert(row);
}

RowId Table::Insert(Row& row, const std::vector<bool>& is_given) {
  RequireUserTable(*impl_);
  return impl_->Insert(row, &is_given);
}

void Table::Update(RowId id, const Row& row) {
  RequireUserTable(*impl_);
  impl_->Update(id, row);
}

void Table::Delete(RowId id) {
  RequireUserTable(*impl_);
  RowChange(impl_->database).Delete(*impl_, id);
}

RowId Table::Impl::Insert(Row& row, const std::vector<bool>* is_given) {
  RequireChangeable(RowOperation::kInsert);
  const std::size_t columns = definition.columns.size();
  if (row.size() != columns || (is_given != nullptr && is_given->size() != columns))
    throw Error(ErrorKind::kTypeMismatch, "a row of another number of values than columns");
  RowFiller filler(*this, row, is_given);
  filler.Fill();
  const RowId id = RowChange(database).Insert(*this, row, filler.autonumber());
  filler.Committed();
  return id;
}

void Table::Impl::Update(RowId id, const Row& row) {
  RequireChangeable(RowOperation::kUpdate);
  RowChange(database).Update(*this, id, row);
}

void Table::AddObserver(TableObserver* observer) { impl_->observers.push_back(observer); }

void Table::RemoveObserver(TableObserver* observer) { std::erase(impl_->observers, observer); }

}  // namespace jet
