// One table on its way into a copy: see the header.
#include "platform/jet/compaction_table.h"

#include <algorithm>
#include <map>

#include "platform/jet/column_layout.h"
#include "platform/jet/error.h"
#include "platform/jet/index_creator.h"
#include "platform/jet/table_creator.h"
#include "platform/jet/table_definition_store.h"

namespace jet {

namespace {

// The same columns with numbers, slots and offsets without holes, in the order of their numbers.
// Their order in the definition stays. Returns the new numbers by old ones.
std::map<std::uint16_t, std::uint16_t> CloseGaps(TableDefinition& definition) {
  std::vector<std::size_t> order(definition.columns.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return definition.columns[a].number < definition.columns[b].number;
  });
  std::map<std::uint16_t, std::uint16_t> numbers;
  definition.variable_slots = 0;
  definition.next_column_number = 0;
  std::uint16_t fixed_end = 0;
  for (const std::size_t position : order) {
    ColumnDefinition& column = definition.columns[position];
    numbers[column.number] = definition.next_column_number;
    column.number = definition.next_column_number++;
    column.slot = definition.variable_slots;
    column.fixed_offset = 0;
    if (!column.is_fixed()) {
      if (column.type != ColumnType::kBoolean) ++definition.variable_slots;
    } else if (column.type != ColumnType::kBoolean) {
      column.fixed_offset = fixed_end;
      fixed_end = static_cast<std::uint16_t>(fixed_end + FixedSize(column));
    }
  }
  return numbers;
}

// The definition that the copy begins with: no rows, no maps, no trees yet.
TableDefinition DefinitionForCopy(const TableDefinition& source, const ObjectIds& ids) {
  TableDefinition definition = source;
  definition.page = ids.NewPage(source.page);
  definition.row_count = 0;
  definition.long_value_maps.clear();
  definition.verbatim.clear();
  const std::map<std::uint16_t, std::uint16_t> numbers = CloseGaps(definition);
  for (PhysicalIndex& index : definition.physical_indexes) {
    index.entry_count = 0;
    index.distinct_count = 0;
    for (IndexColumn& column : index.columns) {
      const auto number = numbers.find(column.column_number);
      if (number == numbers.end())
        throw Error(ErrorKind::kDamaged, "an index names a column that is not there", source.page);
      column.column_number = number->second;
    }
  }
  for (LogicalIndex& logical : definition.logical_indexes)
    if (logical.other_table != 0) logical.other_table = ids.NewPage(logical.other_table);
  return definition;
}

bool HasLongValue(const TableIndex& index, const TableDefinition& definition) {
  return std::any_of(index.columns().begin(), index.columns().end(), [&](std::size_t position) {
    return definition.columns[position].is_long_value();
  });
}

}  // namespace

TableCopier::TableCopier(Table::Impl& source, Database::Impl& target, const ObjectIds& ids,
                         CompactionSteps& steps)
    : source_(source),
      target_(target),
      ids_(ids),
      steps_(steps),
      definition_(DefinitionForCopy(source.definition, ids)),
      id_columns_(source.entry.name, definition_),
      copied_(std::size_t{source.database.pager.page_count()} << 8) {
  AddMaps(target_, definition_);
  for (PhysicalIndex& index : definition_.physical_indexes)
    AddTree(target_, definition_.page, index);
  rows_.emplace(target_.pager, target_.allocator, definition_.page, definition_.owned_pages,
                definition_.pages_with_room);
  long_values_.resize(definition_.columns.size());
  for (std::size_t i = 0; i < long_values_.size(); ++i)
    for (const LongValueMaps& maps : definition_.long_value_maps)
      if (maps.column_number == definition_.columns[i].number)
        long_values_[i].emplace(target_.pager, target_.allocator, maps);
  for (const TableIndex& index : source_.indexes) {
    expected_.emplace_back(index);
    if (HasLongValue(index, source_.definition)) indexed_values_ = LongValues::kRead;
  }
}

void TableCopier::Copy() {
  CopyRows();
  steps_.End();
  FillIndexes();
  WriteTableDefinition(target_.pager, target_.allocator, definition_);
  steps_.End();
}

void TableCopier::CopyRows() {
  const auto primary = std::find_if(source_.indexes.begin(), source_.indexes.end(),
                                    [](const TableIndex& index) { return index.is_primary(); });
  if (primary != source_.indexes.end()) {
    for (IndexTree::Cursor at = primary->tree().First(); !at.at_end(); at.Next())
      if (const std::optional<RawRow> raw = source_.rows->Read(at.row())) CopyRow(*raw);
  }
  RowStore::Scan scan(*source_.rows);
  while (const std::optional<RawRow> raw = scan.Next()) CopyRow(*raw);
  places_.Sort();
}

void TableCopier::CopyRow(const RawRow& raw) {
  const std::size_t address = raw.id.ToStored();
  if (copied_[address]) return;
  copied_[address] = true;
  const StoredRow stored(source_.definition, raw.bytes, raw.page.number());
  Bytes row = RebuildRow(source_.definition, stored, definition_, CopyLongValues(stored));
  if (!id_columns_.Translate(ids_, row)) return;
  places_.Add(raw.id, rows_->Insert(row));
  ++definition_.row_count;
  const Row values = source_.Decode(raw, indexed_values_).values;
  for (ExpectedIndex& index : expected_) index.Add(raw.id, values);
  FollowAutonumber(values);
  steps_.Wrote(row.size());
}

std::vector<LongValueField> TableCopier::CopyLongValues(const StoredRow& stored) {
  std::vector<LongValueField> fields;
  if (!source_.has_long_values) return fields;
  fields.resize(source_.definition.columns.size());
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const ColumnDefinition& column = source_.definition.columns[i];
    if (!column.is_long_value()) continue;
    const std::optional<LongValueField> field = stored.GetLongValue(column);
    if (!field) continue;
    const Bytes bytes = source_.long_values[i]->Read(*field);
    fields[i] = long_values_[i]->WriteCopy(bytes, field->form);
    steps_.Wrote(bytes.size());
  }
  return fields;
}

void TableCopier::FollowAutonumber(const Row& row) {
  const std::optional<std::int32_t> number = source_.LeadingAutonumber(row);
  if (!number) return;
  std::int32_t& last = definition_.last_autonumber;
  last = definition_.autonumber_increment < 0 ? std::min(last, *number) : std::max(last, *number);
}

bool TableCopier::HasTranslatedColumn(const PhysicalIndex& index) const {
  return std::any_of(index.columns.begin(), index.columns.end(), [&](const IndexColumn& column) {
    return id_columns_.Contains(column.column_number);
  });
}

void TableCopier::FillIndexes() {
  for (std::size_t i = 0; i < definition_.physical_indexes.size(); ++i) {
    PhysicalIndex& counters = definition_.physical_indexes[i];
    IndexFiller filler(IndexLoader(target_.pager, target_.allocator, definition_.page,
                                   counters.root, counters.pages_map),
                       counters, steps_);
    const IndexTree& tree = source_.indexes[i].tree();
    if (!HasTranslatedColumn(counters) && expected_[i].IsMetBy(tree)) {
      FillFromTree(tree, places_, filler);
    } else {
      const TableIndex index(target_.pager, target_.allocator, definition_, i);
      FillFromRows(index, *rows_, definition_, long_values_, filler);
    }
    filler.Finish();
    steps_.End();
  }
}

}  // namespace jet
