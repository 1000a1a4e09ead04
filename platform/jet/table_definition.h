// A table's definition: columns, indexes, counters and maps, read from and written to its pages.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/jet/page_view.h"
#include "platform/jet/row_pointer.h"
#include "platform/jet/value.h"

namespace jet {

// Language id, sort id and version: which order the keys of a text column follow.
struct Collation {
  std::uint16_t language = 1033;
  std::uint8_t sort = 0;
  std::uint8_t version = 0;
  bool operator==(const Collation&) const = default;
};

struct ColumnDefinition {
  std::u16string name;
  ColumnType type = ColumnType::kLong;
  std::uint16_t number = 0;    // its bit in the null mask; never used again
  std::uint16_t slot = 0;      // variable column: its slot. Fixed: variable columns before it
  std::uint16_t position = 0;  // copy of the number at creation
  std::uint16_t fixed_offset = 0;
  std::uint16_t length = 0;    // bytes
  std::uint8_t precision = 0;  // numeric only
  std::uint8_t scale = 0;      // numeric only
  Collation collation;         // all but numeric
  std::uint8_t flags = 0;      // column_flags
  std::uint8_t extra_flags = 0;

  bool is_fixed() const { return (flags & 0x01) != 0; }
  bool is_autonumber() const { return (flags & 0x04) != 0; }
  bool is_auto_guid() const { return (flags & 0x40) != 0; }
  bool may_compress() const { return (extra_flags & 0x01) != 0; }
  bool is_long_value() const { return type == ColumnType::kMemo || type == ColumnType::kOle; }
};

struct IndexColumn {
  std::uint16_t column_number = 0;
  bool ascending = true;
  bool operator==(const IndexColumn&) const = default;
};

// A tree of keys. Several logical indexes may share it.
struct PhysicalIndex {
  std::vector<IndexColumn> columns;
  RowPointer pages_map;
  PageNumber root = 0;
  std::uint8_t flags = 0;
  std::uint32_t entry_count = 0;     // at the last compaction
  std::uint32_t distinct_count = 0;  // keys ever added

  bool is_unique() const { return (flags & 0x01) != 0; }
  bool ignores_nulls() const { return (flags & 0x02) != 0; }
  bool refuses_nulls() const { return (flags & 0x08) != 0; }
};

enum class RelationSide : std::uint8_t {
  kNone = 0,
  kReferredTo = 1,
  kRefers = 2,
  kRefersUnindexed = 3
};
enum class IndexKind : std::uint8_t { kOrdinary = 0, kPrimaryKey = 1, kRelationship = 2 };
enum class RelationAction : std::uint8_t {
  kRefuse = 0,
  kCascade = 1,
  kSetNull = 2,
  kNotARelation = 4
};

struct LogicalIndex {
  std::u16string name;
  std::uint32_t number = 0;    // unique in the table, not dense
  std::uint32_t physical = 0;  // position in physical_indexes
  RelationSide side = RelationSide::kNone;
  std::uint32_t other_number = 0xffffffff;
  PageNumber other_table = 0;
  RelationAction on_update = RelationAction::kNotARelation;
  RelationAction on_delete = RelationAction::kNotARelation;
  IndexKind kind = IndexKind::kOrdinary;
};

struct LongValueMaps {
  std::uint16_t column_number = 0;
  RowPointer owned;
  RowPointer with_room;  // null: the column's values never share pages
};

// The whole definition, decoded. What the format leaves without meaning ("garbage") is kept in
// `verbatim`, the definition's bytes as read, and written back where the part it belongs to stays.
struct TableDefinition {
  PageNumber page = 0;  // first definition page: the table's identity
  std::uint32_t row_count = 0;
  std::int32_t last_autonumber = 0;
  std::int32_t autonumber_increment = 1;
  bool system = false;
  std::uint16_t next_column_number = 0;
  std::uint16_t variable_slots = 0;
  RowPointer owned_pages;
  RowPointer pages_with_room;
  std::vector<PhysicalIndex> physical_indexes;
  std::vector<ColumnDefinition> columns;  // in stored order
  std::vector<LogicalIndex> logical_indexes;
  std::vector<LongValueMaps> long_value_maps;
  Bytes verbatim;

  const ColumnDefinition* FindColumn(std::uint16_t number) const;
  std::size_t FixedAreaSize() const;  // bytes of the fixed area of a row, without the column count
};

// Bytes of a column's value in the fixed area of a row (none for a boolean).
std::size_t FixedSize(const ColumnDefinition& column);

// Throws for a table that the format cannot hold: kTooManyColumns, kTooManyIndexes (names left
// empty), kTooLong, kOutOfRange (precision), kBadName (length only), kRowTooLarge.
void CheckLimits(const TableDefinition& definition);

// Decodes the assembled bytes of a definition (first page whole, then bytes 8.. of each further
// page, cut at the stored length). kDamaged where bytes contradict each other or the format's
// limits, kNotSupported for a part that is sound but unknown to this engine (a column type, an
// index flag).
TableDefinition ParseTableDefinition(const Bytes& bytes, PageNumber page);

// The bytes of a definition, the length field filled in; ends with the closing mark. The logical
// indexes are sorted by name when one was added or removed, wherever it stands in the list. The
// page chain (bytes 2..7) is left to who places the bytes on pages. Throws what CheckLimits throws.
Bytes SerializeTableDefinition(const TableDefinition& definition);

// The offsets at which counters stand in the assembled bytes, so that a row change can patch them
// without rewriting the definition.
std::size_t RowCountOffset();
std::size_t LastAutonumberOffset();
std::size_t DistinctCountOffset(std::size_t physical_index);

}  // namespace jet
