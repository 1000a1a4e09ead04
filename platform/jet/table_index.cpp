// Indexes of an open table: see the header.
#include "platform/jet/table_index.h"

#include <algorithm>
#include <array>
#include <bit>

#include "platform/jet/error.h"
#include "platform/jet/key_encoding.h"
#include "platform/jet/table_definition_format.h"

namespace jet {

namespace {

// Flags of a physical index that this engine knows: unique, ignore nulls, refuse nulls, always.
constexpr std::uint8_t kKnownFlags = 0x01 | 0x02 | 0x08 | 0x80;
constexpr std::size_t kMaxColumns = 10;

const PhysicalIndex& At(const TableDefinition& table, std::size_t position) {
  return table.physical_indexes.at(position);
}

}  // namespace

TableIndex::TableIndex(Pager& pager, PageAllocator& allocator, const TableDefinition& table,
                       std::size_t position)
    : tree_(pager, allocator, table.page, At(table, position).root, At(table, position).pages_map),
      physical_(&At(table, position)) {
  for (const IndexColumn& index_column : physical_->columns) {
    const auto column = std::find_if(
        table.columns.begin(), table.columns.end(),
        [&](const ColumnDefinition& c) { return c.number == index_column.column_number; });
    if (column == table.columns.end())
      throw Error(ErrorKind::kDamaged, "an index names a column that is not there", table.page);
    positions_.push_back(static_cast<std::size_t>(column - table.columns.begin()));
    columns_.push_back(&*column);
  }
  for (const LogicalIndex& logical : table.logical_indexes) {
    if (logical.physical != position) continue;
    if (name_.empty() || logical.kind != IndexKind::kRelationship) name_ = logical.name;
    if (logical.kind == IndexKind::kPrimaryKey) is_primary_ = true;
  }
  refuses_nulls_ = physical_->refuses_nulls() || is_primary_;
  refusal_ = FindRefusal();
}

std::string TableIndex::FindRefusal() const {
  if (columns_.empty() || columns_.size() > kMaxColumns) return "an index without columns";
  if ((physical_->flags & ~kKnownFlags) != 0) return "an index with unknown flags";
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const ColumnDefinition& column = *columns_[i];
    const bool is_text = column.type == ColumnType::kText || column.type == ColumnType::kMemo;
    if (is_text && !CanEncode(column.collation)) return "an index in an unknown sort order";
    if (column.type == ColumnType::kNumeric && !physical_->columns[i].ascending)
      return "an index of decimals in descending order";
    if (column.type == ColumnType::kOle) return "an index of a column without order";
  }
  return {};
}

std::size_t TableIndex::CountNulls(const Row& row) const {
  std::size_t nulls = 0;
  for (std::size_t i = 0; i < positions_.size(); ++i)
    if (columns_[i]->type != ColumnType::kBoolean && IsNull(row[positions_[i]])) ++nulls;
  return nulls;
}

bool TableIndex::SameValues(const Row& one, const Row& other) const {
  return std::all_of(positions_.begin(), positions_.end(), [&](std::size_t position) {
    return Identical(one[position], other[position]);
  });
}

Bytes TableIndex::Key(const Row& row) const {
  std::array<const Value*, kMaxColumns> values{};
  for (std::size_t i = 0; i < positions_.size(); ++i) values.at(i) = &row[positions_[i]];
  return KeyOf(std::span(values).first(positions_.size()));
}

Bytes TableIndex::KeyOf(std::span<const Value* const> values) const {
  return EncodeKey(values, columns_, physical_->columns);
}

std::vector<const Value*> TableIndex::ValuesIn(const Row& row) const {
  std::vector<const Value*> values;
  values.reserve(positions_.size());
  for (const std::size_t position : positions_) values.push_back(&row[position]);
  return values;
}

Bytes TableIndex::Prefix(std::span<const Value* const> values) const {
  Bytes key;
  for (std::size_t i = 0; i < values.size(); ++i)
    AppendKeyPart(key, *values[i], *columns_[i], physical_->columns[i].ascending);
  return key;
}

void TableIndex::Remove(RowId row, const Bytes& key) {
  if (!key.empty() && tree_.Remove({key, row})) return;
  // The entry may stand under a key that another writer made its own way.
  for (IndexTree::Cursor cursor = tree_.First(); !cursor.at_end(); cursor.Next()) {
    if (cursor.row() != row) continue;
    tree_.Remove(IndexEntry(cursor.entry()));
    return;
  }
}

bool Identical(const Value& one, const Value& other) {
  if (one.index() != other.index()) return false;
  if (const auto* number = std::get_if<double>(&one))
    return std::bit_cast<std::uint64_t>(*number) ==
           std::bit_cast<std::uint64_t>(std::get<double>(other));
  if (const auto* number = std::get_if<float>(&one))
    return std::bit_cast<std::uint32_t>(*number) ==
           std::bit_cast<std::uint32_t>(std::get<float>(other));
  if (const auto* date = std::get_if<Date>(&one))
    return std::bit_cast<std::uint64_t>(date->days) ==
           std::bit_cast<std::uint64_t>(std::get<Date>(other).days);
  return one == other;
}

}  // namespace jet
