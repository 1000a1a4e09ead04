// An open table: loading its parts, reading rows, counters.
#include "platform/jet/table_impl.h"

#include <algorithm>
#include <limits>

#include "platform/jet/database_impl.h"
#include "platform/jet/object_name.h"
#include "platform/jet/table_definition_store.h"

namespace jet {

Table::Impl::Impl(Database::Impl& owner, CatalogEntry catalog_entry)
    : database(owner), entry(std::move(catalog_entry)) {
  Load();
}

void Table::Impl::Load() {
  TableDefinition read = ReadTableDefinition(database.pager, static_cast<PageNumber>(entry.id));
  // What points into the definition goes before the definition does.
  indexes.clear();
  long_values.clear();
  columns_by_name.clear();
  parents_.clear();
  children_.clear();
  links_prepared_ = false;
  definition = std::move(read);

  Pager& pager = database.pager;
  PageAllocator& allocator = database.allocator;
  rows.emplace(pager, allocator, definition.page, definition.owned_pages,
               definition.pages_with_room);
  for (std::size_t i = 0; i < definition.physical_indexes.size(); ++i)
    indexes.emplace_back(pager, allocator, definition, i);

  has_long_values = false;
  autonumber_column.reset();
  autonumber_leads_.reset();
  long_values.resize(definition.columns.size());
  for (std::size_t i = 0; i < definition.columns.size(); ++i) {
    const ColumnDefinition& column = definition.columns[i];
    columns_by_name.emplace(FoldName(column.name), i);
    if (column.is_autonumber() && column.type == ColumnType::kLong) autonumber_column = i;
    if (!column.is_long_value()) continue;
    has_long_values = true;
    const auto maps =
        std::find_if(definition.long_value_maps.begin(), definition.long_value_maps.end(),
                     [&](const LongValueMaps& m) { return m.column_number == column.number; });
    if (maps == definition.long_value_maps.end())
      throw Error(ErrorKind::kDamaged, "a long-value column without maps", definition.page);
    long_values[i].emplace(pager, allocator, *maps);
  }

  const bool has_properties = !definition.system && database.catalog && !entry.row.is_null();
  rules.emplace(entry.name, definition,
                has_properties ? database.catalog->Properties(entry) : PropertyBlob{});
  refusal = FindRefusal();
}

std::string Table::Impl::FindRefusal() const {
  for (std::size_t i = 0; i < indexes.size(); ++i) {
    if (!indexes[i].is_understood()) return "the table has " + indexes[i].refusal();
    const PhysicalIndex& physical = definition.physical_indexes[i];
    const UsageMap pages(database.pager, database.allocator, physical.pages_map, MapKind::kOwned);
    if (!pages.Contains(physical.root)) return "the table has an index whose root is not its own";
  }
  return {};
}

void Table::Impl::RequireChangeable(RowOperation operation) {
  database.RequireWritable();
  PrepareLinks();
  const auto refuse = [&](const std::string& reason) {
    if (!reason.empty()) throw Error(ErrorKind::kNotSupported, {entry.name}, reason);
  };
  refuse(refusal);
  refuse(link_refusal_);
  if (operation != RowOperation::kDelete) refuse(rules->refusal());
}

std::optional<LoadedRow> Table::Impl::ReadRow(RowId id, LongValues which) const {
  const std::optional<RawRow> raw = rows->Read(id);
  if (!raw) return std::nullopt;
  return Decode(*raw, which);
}

LoadedRow Table::Impl::Decode(const RawRow& raw, LongValues which) const {
  const StoredRow stored(definition, raw.bytes, raw.page.number());
  const std::size_t count = definition.columns.size();
  LoadedRow row;
  row.values.reserve(count);
  if (has_long_values) row.fields.resize(count);
  for (std::size_t i = 0; i < count; ++i) {
    const ColumnDefinition& column = definition.columns[i];
    if (!column.is_long_value()) {
      row.values.push_back(stored.Get(column));
      continue;
    }
    row.fields[i] = stored.GetLongValue(column);
    row.values.push_back(which == LongValues::kRead ? ColumnValue(stored, i) : Value{});
  }
  return row;
}

Value Table::Impl::ColumnValue(const StoredRow& row, std::size_t at) const {
  const ColumnDefinition& column = definition.columns[at];
  if (!column.is_long_value()) return row.Get(column);
  const std::optional<LongValueField> field = row.GetLongValue(column);
  if (!field) return Null{};
  Bytes bytes = long_values[at]->Read(*field);
  if (column.type == ColumnType::kOle) return bytes;
  return DecodeText(bytes);
}

LongValues Table::Impl::OldLongValues() const {
  if (!has_long_values) return LongValues::kSkip;
  if (!observers.empty()) return LongValues::kRead;
  for (std::size_t i = 0; i < definition.columns.size(); ++i)
    if (definition.columns[i].is_long_value() && (*rules)[i].required) return LongValues::kRead;
  const bool indexed = std::any_of(indexes.begin(), indexes.end(), [&](const TableIndex& index) {
    return std::any_of(index.columns().begin(), index.columns().end(), [&](std::size_t column) {
      return definition.columns[column].is_long_value();
    });
  });
  return indexed ? LongValues::kRead : LongValues::kSkip;
}

std::optional<std::int32_t> Table::Impl::LeadingAutonumber(const Row& row) const {
  if (!autonumber_column || (*rules)[*autonumber_column].default_value.is_random_autonumber())
    return std::nullopt;
  const auto* value = std::get_if<std::int32_t>(&row[*autonumber_column]);
  if (value == nullptr) return std::nullopt;
  const bool leads = definition.autonumber_increment < 0 ? *value < definition.last_autonumber
                                                         : *value > definition.last_autonumber;
  return leads ? std::optional(*value) : std::nullopt;
}

bool Table::Impl::AutonumberLeads() {
  constexpr std::int32_t kLast = std::numeric_limits<std::int32_t>::max();
  if (definition.autonumber_increment < 0 || definition.last_autonumber == kLast) return false;
  // Once it leads it keeps leading: every greater number that a row gets moves it.
  if (autonumber_leads_) return *autonumber_leads_;
  const Value next = definition.last_autonumber + 1;
  const Value* const values[] = {&next};
  const auto greater_exists = [&](const TableIndex& index) {
    const bool on_autonumber = index.columns() == std::vector<std::size_t>{*autonumber_column};
    return index.is_unique() && on_autonumber &&
           !index.tree().LowerBound(index.KeyOf(values)).at_end();
  };
  autonumber_leads_ = std::none_of(indexes.begin(), indexes.end(), greater_exists);
  return *autonumber_leads_;
}

void Table::Impl::AddRows(int difference) {
  // Other writers leave counts that are too small.
  if (difference > 0 || definition.row_count > 0)
    definition.row_count += static_cast<std::uint32_t>(difference);
  PatchRowCount(database.pager, definition.page, definition.row_count);
}

void Table::Impl::SetLastAutonumber(std::int32_t value) {
  definition.last_autonumber = value;
  PatchLastAutonumber(database.pager, definition.page, value);
}

void Table::Impl::CountDistinctKey(std::size_t index) {
  const std::uint32_t keys = ++definition.physical_indexes[index].distinct_count;
  PatchDistinctCount(database.pager, definition.page, index, keys);
}

void Table::Impl::KeepCounters() {
  kept_counters_.row_count = definition.row_count;
  kept_counters_.last_autonumber = definition.last_autonumber;
  kept_counters_.distinct_counts.clear();
  for (const PhysicalIndex& index : definition.physical_indexes)
    kept_counters_.distinct_counts.push_back(index.distinct_count);
}

void Table::Impl::RestoreCounters() {
  definition.row_count = kept_counters_.row_count;
  definition.last_autonumber = kept_counters_.last_autonumber;
  for (std::size_t i = 0; i < kept_counters_.distinct_counts.size(); ++i)
    definition.physical_indexes[i].distinct_count = kept_counters_.distinct_counts[i];
}

}  // namespace jet
