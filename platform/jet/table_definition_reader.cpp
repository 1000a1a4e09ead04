// Decodes the bytes of a table definition and checks that they fit each other.
#include <set>
#include <utility>

#include "platform/jet/table_definition.h"
#include "platform/jet/table_definition_format.h"

namespace jet {
namespace format = table_definition_format;
namespace {

constexpr std::uint8_t kKnownIndexFlags = 0x01 | 0x02 | 0x08 | 0x80;
constexpr std::uint8_t kCalculatedColumn = 0xc0;

bool IsKnownType(std::uint8_t type) {
  return (type >= static_cast<std::uint8_t>(ColumnType::kBoolean) &&
          type <= static_cast<std::uint8_t>(ColumnType::kMemo)) ||
         (type >= static_cast<std::uint8_t>(ColumnType::kGuid) &&
          type <= static_cast<std::uint8_t>(ColumnType::kFixedBytes));
}

// Reads one definition from front to back.
class Reader {
 public:
  Reader(const Bytes& bytes, PageNumber page) : view_(bytes, page) {}

  TableDefinition Read() {
    ReadHeader();
    const std::size_t column_count = view_.U16(format::kColumnCountAt);
    const std::size_t logical_count = view_.U32(format::kLogicalIndexCountAt);
    const std::size_t physical_count = view_.U32(format::kPhysicalIndexCountAt);
    if (column_count > format::kMaxColumnNumbers || logical_count > format::kMaxLogicalIndexes ||
        physical_count > format::kMaxLogicalIndexes)
      Damaged("more columns or indexes than a table can have");

    at_ = format::kCountersAt;
    for (std::size_t i = 0; i < physical_count; ++i) ReadCounter();
    for (std::size_t i = 0; i < column_count; ++i) ReadColumn();
    for (ColumnDefinition& column : table_.columns) column.name = ReadName();
    for (PhysicalIndex& index : table_.physical_indexes) ReadPhysicalIndex(index);
    for (std::size_t i = 0; i < logical_count; ++i) ReadLogicalIndex();
    for (LogicalIndex& index : table_.logical_indexes) index.name = ReadName();
    ReadLongValueMaps();
    if (at_ != view_.size()) Damaged("bytes behind the closing mark of a definition");
    CheckColumns();
    CheckIndexes();
    CheckLongValueMaps();
    table_.verbatim.assign(view_.bytes().begin(), view_.bytes().end());
    return std::move(table_);
  }

 private:
  [[noreturn]] void Damaged(const char* what) const {
    throw Error(ErrorKind::kDamaged, what, view_.number());
  }
  [[noreturn]] void NotSupported(const char* what) const {
    throw Error(ErrorKind::kNotSupported, what, view_.number());
  }

  // The next `size` bytes; reading goes on behind them.
  ByteView Take(std::size_t size) {
    const ByteView part(view_.Slice(at_, size), view_.number());
    at_ += size;
    return part;
  }

  void ReadHeader() {
    if (view_.U16(format::kPageTypeAt) != format::kPageType) Damaged("not a table definition");
    if (view_.U32(format::kConstantAt) != format::kConstant)
      Damaged("a table definition without its constant");
    if (view_.U32(format::kLengthAt) != view_.size())
      Damaged("a table definition of another length than it says");
    const std::uint8_t kind = view_.U8(format::kKindAt);
    if (kind != format::kUserTable && kind != format::kSystemTable)
      NotSupported("a table of unknown kind");
    table_.page = view_.number();
    table_.system = kind == format::kSystemTable;
    table_.row_count = view_.U32(format::kRowCountAt);
    table_.last_autonumber = view_.I32(format::kLastAutonumberAt);
    table_.autonumber_increment = view_.I32(format::kAutonumberIncrementAt);
    table_.next_column_number = view_.U16(format::kNextColumnNumberAt);
    table_.variable_slots = view_.U16(format::kVariableSlotsAt);
    table_.owned_pages = RowPointer::FromStored(view_.U32(format::kOwnedPagesMapAt));
    table_.pages_with_room = RowPointer::FromStored(view_.U32(format::kPagesWithRoomMapAt));
  }

  void ReadCounter() {
    const ByteView part = Take(format::counter::kSize);
    PhysicalIndex& index = table_.physical_indexes.emplace_back();
    index.entry_count = part.U32(format::counter::kEntriesAt);
    index.distinct_count = part.U32(format::counter::kDistinctAt);
  }

  void ReadColumn() {
    namespace at = format::column;
    const ByteView part = Take(at::kSize);
    if (part.U32(at::kConstantAt) != format::kConstant) Damaged("a column without its constant");
    if (!IsKnownType(part.U8(at::kTypeAt))) NotSupported("a column of unknown type");
    ColumnDefinition& column = table_.columns.emplace_back();
    column.type = static_cast<ColumnType>(part.U8(at::kTypeAt));
    column.number = part.U16(at::kNumberAt);
    column.slot = part.U16(at::kSlotAt);
    column.position = part.U16(at::kPositionAt);
    column.fixed_offset = part.U16(at::kFixedOffsetAt);
    column.length = part.U16(at::kLengthAt);
    column.flags = part.U8(at::kFlagsAt);
    column.extra_flags = part.U8(at::kExtraFlagsAt);
    if (column.type == ColumnType::kNumeric) {
      column.precision = part.U8(at::kPrecisionAt);
      column.scale = part.U8(at::kScaleAt);
    } else {
      column.collation = {part.U16(at::kLanguageAt), part.U8(at::kSortAt),
                          part.U8(at::kCollationVersionAt)};
    }
    if ((column.extra_flags & kCalculatedColumn) != 0) NotSupported("a calculated column");
    if (column.is_fixed() && column.is_long_value()) Damaged("a long value in the fixed area");
  }

  std::u16string ReadName() {
    const std::size_t size = view_.U16(at_);
    if (size % 2 != 0) Damaged("half a character in a name");
    at_ += format::kNameTextAt;
    const ByteView text = Take(size);
    std::u16string name(size / 2, u'\0');
    for (std::size_t i = 0; i < name.size(); ++i) name[i] = text.U16(2 * i);
    return name;
  }

  void ReadPhysicalIndex(PhysicalIndex& index) {
    namespace at = format::physical_index;
    const ByteView part = Take(at::kSize);
    if (part.U32(at::kConstantAt) != at::kConstant) Damaged("an index without its constant");
    bool ended = false;
    for (std::size_t i = 0; i < at::kColumns; ++i) {
      const std::size_t place = at::kColumnsAt + at::kColumnSize * i;
      const std::uint16_t number = part.U16(place + at::kColumnNumberAt);
      const std::uint8_t direction = part.U8(place + at::kDirectionAt);
      if (number == at::kNoColumn) {
        ended = true;
        continue;
      }
      if (ended) Damaged("a gap between the columns of an index");
      if (direction > 1) NotSupported("an index column of unknown direction");
      index.columns.push_back({number, direction == 1});
    }
    index.pages_map = RowPointer::FromStored(part.U32(at::kPagesMapAt));
    index.root = part.U32(at::kRootAt);
    index.flags = part.U8(at::kFlagsAt);
    if ((index.flags & ~kKnownIndexFlags) != 0) NotSupported("an index with unknown flags");
  }

  // A small code of the file as one of the enumerators up to `last`, or `other`.
  template <typename Code>
  Code ReadCode(std::uint8_t stored, Code last, Code other) const {
    if (stored > static_cast<std::uint8_t>(last) && stored != static_cast<std::uint8_t>(other))
      NotSupported("an index of unknown kind");
    return static_cast<Code>(stored);
  }

  void ReadLogicalIndex() {
    namespace at = format::logical_index;
    const ByteView part = Take(at::kSize);
    if (part.U32(at::kConstantAt) != format::kConstant)
      Damaged("an index name without its constant");
    LogicalIndex& index = table_.logical_indexes.emplace_back();
    index.number = part.U32(at::kNumberAt);
    index.physical = part.U32(at::kPhysicalAt);
    index.side = ReadCode(part.U8(at::kSideAt), RelationSide::kRefersUnindexed,
                          RelationSide::kRefersUnindexed);
    index.other_number = part.U32(at::kOtherNumberAt);
    index.other_table = part.U32(at::kOtherTableAt);
    index.on_update =
        ReadCode(part.U8(at::kOnUpdateAt), RelationAction::kSetNull, RelationAction::kNotARelation);
    index.on_delete =
        ReadCode(part.U8(at::kOnDeleteAt), RelationAction::kSetNull, RelationAction::kNotARelation);
    index.kind = ReadCode(part.U8(at::kKindAt), IndexKind::kRelationship, IndexKind::kRelationship);
  }

  void ReadLongValueMaps() {
    namespace at = format::long_value_maps;
    while (view_.U16(at_) != format::kClosingMark) {
      const ByteView part = Take(at::kSize);
      table_.long_value_maps.push_back({part.U16(at::kColumnAt),
                                        RowPointer::FromStored(part.U32(at::kOwnedAt)),
                                        RowPointer::FromStored(part.U32(at::kWithRoomAt))});
    }
    at_ += sizeof(format::kClosingMark);
  }

  void CheckColumns() const {
    CheckStoredLimits();
    std::set<std::uint16_t> numbers;
    std::set<std::uint16_t> slots;
    std::vector<bool> fixed_bytes(table_.FixedAreaSize());
    for (const ColumnDefinition& column : table_.columns) {
      if (column.number >= table_.next_column_number || !numbers.insert(column.number).second)
        Damaged("two columns of one number, or one beyond the last number");
      if (!column.is_fixed()) {
        if (column.slot >= table_.variable_slots || !slots.insert(column.slot).second)
          Damaged("two columns in one slot, or one beyond the last slot");
        continue;
      }
      for (std::size_t i = 0; i < FixedSize(column); ++i) {
        if (fixed_bytes[column.fixed_offset + i]) Damaged("two columns share bytes of a row");
        fixed_bytes[column.fixed_offset + i] = true;
      }
    }
  }

  void CheckStoredLimits() const {
    try {
      CheckLimits(table_);
    } catch (const Error& error) {
      Damaged(error.what());
    }
  }

  void CheckIndexes() const {
    std::set<std::uint32_t> numbers;
    for (const LogicalIndex& index : table_.logical_indexes) {
      if (index.physical >= table_.physical_indexes.size()) Damaged("an index name without index");
      if (!numbers.insert(index.number).second) Damaged("two indexes of one number");
    }
    for (const PhysicalIndex& index : table_.physical_indexes) {
      std::set<std::uint16_t> columns;
      for (const IndexColumn& column : index.columns)
        if (table_.FindColumn(column.column_number) == nullptr ||
            !columns.insert(column.column_number).second)
          Damaged("an index of a missing column, or of one column twice");
    }
  }

  void CheckLongValueMaps() const {
    std::set<std::uint16_t> listed;
    for (const LongValueMaps& maps : table_.long_value_maps) {
      const ColumnDefinition* column = table_.FindColumn(maps.column_number);
      if (column == nullptr || !column->is_long_value() ||
          !listed.insert(maps.column_number).second)
        Damaged("maps for a column that needs none");
    }
    for (const ColumnDefinition& column : table_.columns)
      if (column.is_long_value() && !listed.contains(column.number))
        Damaged("a long-value column without maps");
  }

  ByteView view_;
  std::size_t at_ = 0;
  TableDefinition table_;
};

}  // namespace

TableDefinition ParseTableDefinition(const Bytes& bytes, PageNumber page) {
  return Reader(bytes, page).Read();
}

}  // namespace jet
