// Table definitions: places of fields, limits, damage, and bytes without meaning that must stay.
#include "platform/jet/table_definition.h"

#include <gmock/gmock.h>

#include "tests/platform/jet/definitions.h"

namespace jet {
namespace {

using test::AddColumn;
using test::FromHex;
using test::kFixedColumn;
using test::KindOf;
using test::ToHex;
using enum ErrorKind;

// Three columns, a primary key and one end of a relationship.
TableDefinition Products() {
  TableDefinition table;
  table.page = 20;
  table.row_count = 7;
  table.last_autonumber = -3;
  table.owned_pages = {21, 0};
  table.pages_with_room = {21, 1};
  AddColumn(table, u"Id", ColumnType::kLong, 4, 0x07);
  AddColumn(table, u"Code", ColumnType::kText, 40).extra_flags = 1;
  AddColumn(table, u"Weight", ColumnType::kNumeric, 17, kFixedColumn).scale = 3;
  AddColumn(table, u"Remarks", ColumnType::kMemo);
  table.physical_indexes.push_back({.columns = {{0, true}},
                                    .pages_map = {21, 2},
                                    .root = 30,
                                    .flags = 0x89,
                                    .entry_count = 5,
                                    .distinct_count = 8});
  table.physical_indexes.push_back(
      {.columns = {{1, false}, {2, true}}, .pages_map = {21, 3}, .root = 31, .flags = 0x80});
  table.logical_indexes.push_back(
      {.name = u"PrimaryKey", .number = 4, .physical = 0, .kind = IndexKind::kPrimaryKey});
  table.logical_indexes.push_back({.name = u"codes",
                                   .number = 2,
                                   .physical = 1,
                                   .side = RelationSide::kRefers,
                                   .other_number = 1,
                                   .other_table = 40,
                                   .on_update = RelationAction::kCascade,
                                   .on_delete = RelationAction::kRefuse,
                                   .kind = IndexKind::kRelationship});
  return table;
}

constexpr std::size_t kColumnsAt = 63 + 2 * 12;
constexpr std::size_t kIndexesAt = kColumnsAt + 4 * 25 + 4 * 2 + 2 * (2 + 4 + 6 + 7);
constexpr std::size_t kNamesAt = kIndexesAt + 2 * 52;

TEST(TableDefinitionTest, FieldsStandWhereTheFormatWantsThemAndReadBack) {
  const Bytes bytes = SerializeTableDefinition(Products());
  const struct {
    std::size_t at;
    const char* bytes;
  } fields[] = {
      {0, "02 01"},                                   // type of page
      {0x0c, "59 06 00 00 07 00 00 00 FD FF FF FF"},  // constant, rows, last autonumber
      {0x28, "4E 04 00 02 00"},                       // kind, column numbers and slots ever
      {0x37, "00 15 00 00 01 15 00 00"},              // maps of owned pages and of those with room
      {kColumnsAt, "04 59 06 00 00"},                 // Id: type, constant
      {kColumnsAt + 11, "09 04"},                     // and language
      {kColumnsAt + 2 * 25 + 11, "12 03"},            // Weight: precision and scale instead
      {kColumnsAt + 2 * 25 + 21, "04 00"},            // behind Id
      {kColumnsAt + 4 * 25, "04 00 49 00 64 00"},     // bytes of the name Id
      {kIndexesAt, "83 07 00 00"},                    // constant
      {kIndexesAt + 38, "1E 00 00 00"},               // root
      {kIndexesAt + 52 + 4, "01 00 00 02 00 01 FF FF"},  // Code descending, Weight ascending
      {kNamesAt + 4, "02 00 00 00"},                     // sorted by name: "codes" first
      {kNamesAt + 12, "02"},                             // the end that refers
      {kNamesAt + 17, "28 00 00 00"},                    // the other table
  };
  for (const auto& field : fields) {
    const auto at = bytes.begin() + static_cast<std::ptrdiff_t>(field.at);
    const auto size = static_cast<std::ptrdiff_t>(FromHex(field.bytes).size());
    EXPECT_EQ(ToHex(Bytes(at, at + size)), field.bytes) << field.at;
  }
  EXPECT_EQ(ByteView(bytes).U32(8), bytes.size());
  EXPECT_EQ(ByteView(bytes).U32(DistinctCountOffset(0)), 8u);

  const TableDefinition table = ParseTableDefinition(bytes, 20);
  EXPECT_EQ(table.FindColumn(3)->name, u"Remarks");
  EXPECT_EQ(table.FixedAreaSize(), 4u + 17u);
  EXPECT_EQ(table.logical_indexes[0].on_update, RelationAction::kCascade);
  EXPECT_EQ(table.long_value_maps[0].with_room, (RowPointer{9, 5}));
  EXPECT_EQ(SerializeTableDefinition(table), bytes);
}

TEST(TableDefinitionTest, TellsDamageFromWhatIsUnknown) {
  const Bytes bytes = SerializeTableDefinition(Products());
  const auto kind_after = [&bytes](std::size_t at, std::uint8_t value) {
    Bytes changed = bytes;
    changed[at] = std::byte{value};
    return KindOf([&] { ParseTableDefinition(changed, 20); });
  };
  for (const std::size_t constant : {std::size_t{0x0c}, kColumnsAt + 1, kIndexesAt, kNamesAt})
    EXPECT_EQ(kind_after(constant, 0), kDamaged) << constant;
  EXPECT_EQ(kind_after(8, 0x7f), kDamaged);                      // length
  EXPECT_EQ(kind_after(kColumnsAt + 25 + 5, 0), kDamaged);       // a column number twice
  EXPECT_EQ(kind_after(kColumnsAt + 25 + 5, 4), kDamaged);       // one not handed out yet
  EXPECT_EQ(kind_after(kColumnsAt + 25 + 7, 1), kDamaged);       // a slot twice
  EXPECT_EQ(kind_after(kColumnsAt + 2 * 25 + 21, 3), kDamaged);  // fixed columns overlap
  EXPECT_EQ(kind_after(kIndexesAt + 4, 9), kDamaged);            // an index of no column
  EXPECT_EQ(kind_after(kNamesAt + 8, 2), kDamaged);              // a name of no index
  EXPECT_EQ(kind_after(bytes.size() - 12, 1), kDamaged);         // maps for a text column
  EXPECT_EQ(kind_after(0x28, 'X'), kNotSupported);               // kind of table
  EXPECT_EQ(kind_after(kColumnsAt, 18), kNotSupported);          // column type
  EXPECT_EQ(kind_after(kColumnsAt + 16, 0x40), kNotSupported);   // calculated column
  EXPECT_EQ(kind_after(kIndexesAt + 46, 0x8d), kNotSupported);   // index flag
}

}  // namespace
}  // namespace jet
