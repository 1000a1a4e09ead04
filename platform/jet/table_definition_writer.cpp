// Makes the bytes of a table definition; bytes without known meaning come from those read before.
#include <algorithm>
#include <map>
#include <utility>

#include "platform/jet/object_name.h"
#include "platform/jet/table_definition.h"
#include "platform/jet/table_definition_format.h"

namespace jet {
namespace format = table_definition_format;
namespace {

// The parts of the definition as it was read, by what identifies them: a part that stays in the
// table keeps its bytes without known meaning.
class FormerParts {
 public:
  explicit FormerParts(const Bytes& bytes) : view_(bytes) {
    if (bytes.empty()) return;
    const std::size_t physical_count = view_.U32(format::kPhysicalIndexCountAt);
    const std::size_t column_count = view_.U16(format::kColumnCountAt);
    std::size_t at = format::kCountersAt + format::counter::kSize * physical_count;
    for (std::size_t i = 0; i < column_count; ++i, at += format::column::kSize)
      columns_[view_.U16(at + format::column::kNumberAt)] = at;
    for (std::size_t i = 0; i < column_count; ++i) at += format::kNameTextAt + view_.U16(at);
    for (std::size_t i = 0; i < physical_count; ++i, at += format::physical_index::kSize) {
      const std::uint32_t root = view_.U32(at + format::physical_index::kRootAt);
      physical_indexes_[root] = at;
      counters_[root] = format::kCountersAt + format::counter::kSize * i;
    }
    for (std::size_t i = view_.U32(format::kLogicalIndexCountAt); i > 0; --i) {
      logical_order_.push_back(view_.U32(at + format::logical_index::kNumberAt));
      logical_indexes_[logical_order_.back()] = at;
      at += format::logical_index::kSize;
    }
  }

  // The numbers of the logical indexes as they were listed.
  const std::vector<std::uint32_t>& logical_order() const { return logical_order_; }

  Bytes Header() const { return Part(view_.size() != 0, 0, format::kCountersAt); }
  Bytes Column(std::uint16_t number) const { return Part(columns_, number, format::column::kSize); }
  Bytes Counter(PageNumber root) const { return Part(counters_, root, format::counter::kSize); }
  Bytes Physical(PageNumber root) const {
    return Part(physical_indexes_, root, format::physical_index::kSize);
  }
  Bytes Logical(std::uint32_t number) const {
    return Part(logical_indexes_, number, format::logical_index::kSize);
  }

 private:
  using Offsets = std::map<std::uint32_t, std::size_t>;

  Bytes Part(bool present, std::size_t at, std::size_t size) const {
    if (!present) return Bytes(size);
    const auto part = view_.Slice(at, size);
    return {part.begin(), part.end()};
  }
  Bytes Part(const Offsets& offsets, std::uint32_t id, std::size_t size) const {
    const auto found = offsets.find(id);
    return Part(found != offsets.end(), found == offsets.end() ? 0 : found->second, size);
  }

  ByteView view_;
  Offsets columns_;
  Offsets counters_;
  Offsets physical_indexes_;
  Offsets logical_indexes_;
  std::vector<std::uint32_t> logical_order_;
};

void Append(Bytes& bytes, const Bytes& part) {
  bytes.insert(bytes.end(), part.begin(), part.end());
}

void AppendU16(Bytes& bytes, std::uint16_t value) {
  bytes.push_back(static_cast<std::byte>(value & 0xff));
  bytes.push_back(static_cast<std::byte>(value >> 8));
}

void AppendName(Bytes& bytes, const std::u16string& name) {
  AppendU16(bytes, static_cast<std::uint16_t>(2 * name.size()));
  for (const char16_t unit : name) AppendU16(bytes, unit);
}

Bytes HeaderBytes(const TableDefinition& table, Bytes part) {
  ByteEditor editor(part);
  editor.SetU16(format::kPageTypeAt, format::kPageType);
  editor.SetU32(format::kConstantAt, format::kConstant);
  editor.SetU32(format::kRowCountAt, table.row_count);
  editor.SetU32(format::kLastAutonumberAt, static_cast<std::uint32_t>(table.last_autonumber));
  editor.SetU32(format::kAutonumberIncrementAt,
                static_cast<std::uint32_t>(table.autonumber_increment));
  editor.SetU8(format::kKindAt, table.system ? format::kSystemTable : format::kUserTable);
  editor.SetU16(format::kNextColumnNumberAt, table.next_column_number);
  editor.SetU16(format::kVariableSlotsAt, table.variable_slots);
  editor.SetU16(format::kColumnCountAt, static_cast<std::uint16_t>(table.columns.size()));
  editor.SetU32(format::kLogicalIndexCountAt,
                static_cast<std::uint32_t>(table.logical_indexes.size()));
  editor.SetU32(format::kPhysicalIndexCountAt,
                static_cast<std::uint32_t>(table.physical_indexes.size()));
  editor.SetU32(format::kOwnedPagesMapAt, table.owned_pages.ToStored());
  editor.SetU32(format::kPagesWithRoomMapAt, table.pages_with_room.ToStored());
  return part;
}

Bytes CounterBytes(const PhysicalIndex& index, Bytes part) {
  ByteEditor editor(part);
  editor.SetU32(format::counter::kEntriesAt, index.entry_count);
  editor.SetU32(format::counter::kDistinctAt, index.distinct_count);
  return part;
}

Bytes ColumnBytes(const ColumnDefinition& column, Bytes part) {
  namespace at = format::column;
  ByteEditor editor(part);
  editor.SetU8(at::kTypeAt, static_cast<std::uint8_t>(column.type));
  editor.SetU32(at::kConstantAt, format::kConstant);
  editor.SetU16(at::kNumberAt, column.number);
  editor.SetU16(at::kSlotAt, column.slot);
  editor.SetU16(at::kPositionAt, column.position);
  if (column.type == ColumnType::kNumeric) {
    editor.SetU8(at::kPrecisionAt, column.precision);
    editor.SetU8(at::kScaleAt, column.scale);
  } else {
    editor.SetU16(at::kLanguageAt, column.collation.language);
    editor.SetU8(at::kSortAt, column.collation.sort);
    editor.SetU8(at::kCollationVersionAt, column.collation.version);
  }
  editor.SetU8(at::kFlagsAt, column.flags);
  editor.SetU8(at::kExtraFlagsAt, column.extra_flags);
  editor.SetU16(at::kFixedOffsetAt, column.fixed_offset);
  editor.SetU16(at::kLengthAt, column.length);
  return part;
}

Bytes PhysicalIndexBytes(const PhysicalIndex& index, Bytes part) {
  namespace at = format::physical_index;
  ByteEditor editor(part);
  editor.SetU32(at::kConstantAt, at::kConstant);
  for (std::size_t i = 0; i < at::kColumns; ++i) {
    const std::size_t place = at::kColumnsAt + at::kColumnSize * i;
    if (i >= index.columns.size()) {
      editor.SetU16(place + at::kColumnNumberAt, at::kNoColumn);
      continue;
    }
    editor.SetU16(place + at::kColumnNumberAt, index.columns[i].column_number);
    editor.SetU8(place + at::kDirectionAt, index.columns[i].ascending ? 1 : 0);
  }
  editor.SetU32(at::kPagesMapAt, index.pages_map.ToStored());
  editor.SetU32(at::kRootAt, index.root);
  editor.SetU8(at::kFlagsAt, index.flags);
  return part;
}

Bytes LogicalIndexBytes(const LogicalIndex& index, Bytes part) {
  namespace at = format::logical_index;
  ByteEditor editor(part);
  editor.SetU32(at::kConstantAt, format::kConstant);
  editor.SetU32(at::kNumberAt, index.number);
  editor.SetU32(at::kPhysicalAt, index.physical);
  editor.SetU8(at::kSideAt, static_cast<std::uint8_t>(index.side));
  editor.SetU32(at::kOtherNumberAt, index.other_number);
  editor.SetU32(at::kOtherTableAt, index.other_table);
  editor.SetU8(at::kOnUpdateAt, static_cast<std::uint8_t>(index.on_update));
  editor.SetU8(at::kOnDeleteAt, static_cast<std::uint8_t>(index.on_delete));
  editor.SetU8(at::kKindAt, static_cast<std::uint8_t>(index.kind));
  return part;
}

Bytes LongValueMapsBytes(const LongValueMaps& maps) {
  namespace at = format::long_value_maps;
  Bytes part(at::kSize);
  ByteEditor editor(part);
  editor.SetU16(at::kColumnAt, maps.column_number);
  editor.SetU32(at::kOwnedAt, maps.owned.ToStored());
  editor.SetU32(at::kWithRoomAt, maps.with_room.ToStored());
  return part;
}

// The logical indexes in the order in which they are written: that of their names, on which the
// engine that made the format relies. A list that stays as it was keeps its order, since other
// writers do not sort theirs.
std::vector<const LogicalIndex*> Ordered(const std::vector<LogicalIndex>& indexes,
                                         const std::vector<std::uint32_t>& former_order) {
  std::vector<const LogicalIndex*> ordered;
  ordered.reserve(indexes.size());
  for (const LogicalIndex& index : indexes) ordered.push_back(&index);
  const auto number = [](const LogicalIndex* index) { return index->number; };
  if (!std::ranges::equal(ordered, former_order, {}, number))
    std::ranges::stable_sort(ordered, {},
                             [](const LogicalIndex* index) { return FoldName(index->name); });
  return ordered;
}

}  // namespace

Bytes SerializeTableDefinition(const TableDefinition& definition) {
  CheckLimits(definition);
  const FormerParts former(definition.verbatim);
  const auto logical_indexes = Ordered(definition.logical_indexes, former.logical_order());

  Bytes bytes = HeaderBytes(definition, former.Header());
  for (const PhysicalIndex& index : definition.physical_indexes)
    Append(bytes, CounterBytes(index, former.Counter(index.root)));
  for (const ColumnDefinition& column : definition.columns)
    Append(bytes, ColumnBytes(column, former.Column(column.number)));
  for (const ColumnDefinition& column : definition.columns) AppendName(bytes, column.name);
  for (const PhysicalIndex& index : definition.physical_indexes)
    Append(bytes, PhysicalIndexBytes(index, former.Physical(index.root)));
  for (const LogicalIndex* index : logical_indexes)
    Append(bytes, LogicalIndexBytes(*index, former.Logical(index->number)));
  for (const LogicalIndex* index : logical_indexes) AppendName(bytes, index->name);
  for (const LongValueMaps& maps : definition.long_value_maps)
    Append(bytes, LongValueMapsBytes(maps));
  AppendU16(bytes, format::kClosingMark);
  ByteEditor(bytes).SetU32(format::kLengthAt, static_cast<std::uint32_t>(bytes.size()));
  return bytes;
}

}  // namespace jet
