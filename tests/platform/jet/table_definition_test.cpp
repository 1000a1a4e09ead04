// Table definitions: places of fields, limits, damage, and bytes without meaning that must stay.
#include "platform/jet/table_definition.h"

#include <gmock/gmock.h>

#include <functional>

#include "tests/platform/jet/definitions.h"
#include "tests/platform/jet/sample_files.h"

namespace jet {
namespace {

using test::AddColumn;
using test::kFixedColumn;
using test::KindOf;

std::string Kind(ErrorKind kind) { return std::to_string(static_cast<int>(kind)); }

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

TEST(TableDefinitionTest, FieldsStandWhereTheFormatWantsThem) {
  const Bytes bytes = SerializeTableDefinition(Products());
  const ByteView view(bytes);
  EXPECT_EQ(view.U16(0), 0x0102);
  EXPECT_EQ(view.U32(8), bytes.size());
  EXPECT_EQ(view.U32(0x0c), 1625u);
  EXPECT_EQ(view.U32(RowCountOffset()), 7u);
  EXPECT_EQ(view.I32(LastAutonumberOffset()), -3);
  EXPECT_EQ(view.I32(0x18), 1);
  EXPECT_EQ(view.U8(0x28), 'N');
  EXPECT_EQ(view.U16(0x29), 4);  // column numbers ever
  EXPECT_EQ(view.U16(0x2b), 2);  // slots ever
  EXPECT_EQ(view.U32(0x37), 21u << 8);
  EXPECT_EQ(view.U32(DistinctCountOffset(0)), 8u);

  const std::size_t columns = 63 + 2 * 12;
  EXPECT_EQ(view.U8(columns), 4);                 // Id: type,
  EXPECT_EQ(view.U32(columns + 1), 1625u);        // constant,
  EXPECT_EQ(view.U16(columns + 11), 1033);        // collation
  EXPECT_EQ(view.U8(columns + 2 * 25 + 11), 18);  // Weight: precision and scale instead
  EXPECT_EQ(view.U8(columns + 2 * 25 + 12), 3);
  EXPECT_EQ(view.U16(columns + 2 * 25 + 21), 4);  // behind Id
  EXPECT_EQ(view.U16(columns + 4 * 25), 4);       // bytes of the name Id

  const std::size_t indexes = columns + 4 * 25 + 4 * 2 + 2 * (2 + 4 + 6 + 7);
  EXPECT_EQ(view.U32(indexes), 1923u);
  EXPECT_EQ(view.U32(indexes + 38), 30u);
  EXPECT_EQ(view.U16(indexes + 52 + 4), 1);  // codes: Code descending, Weight ascending
  EXPECT_EQ(view.U8(indexes + 52 + 6), 0);
  EXPECT_EQ(view.U8(indexes + 52 + 9), 1);
  EXPECT_EQ(view.U16(indexes + 52 + 10), 0xffff);
  // Sorted by name, so "codes" comes before "PrimaryKey".
  EXPECT_EQ(view.U32(indexes + 2 * 52 + 4), 2u);
  EXPECT_EQ(view.U8(indexes + 2 * 52 + 12), 2);
  EXPECT_EQ(view.U32(indexes + 2 * 52 + 17), 40u);
  EXPECT_EQ(view.U16(bytes.size() - 2), 0xffff);
}

TEST(TableDefinitionTest, EveryFieldReadsBack) {
  const Bytes bytes = SerializeTableDefinition(Products());
  const TableDefinition table = ParseTableDefinition(bytes, 20);
  EXPECT_EQ(table.page, 20u);
  EXPECT_EQ(table.columns[2].scale, 3);
  EXPECT_EQ(table.columns[1].extra_flags, 1);
  EXPECT_EQ(table.FindColumn(3)->name, u"Remarks");
  EXPECT_EQ(table.FindColumn(4), nullptr);
  EXPECT_EQ(table.FixedAreaSize(), 4u + 17u);
  EXPECT_THAT(table.physical_indexes[1].columns,
              ::testing::ElementsAre(IndexColumn{1, false}, IndexColumn{2, true}));
  EXPECT_EQ(table.logical_indexes[0].on_update, RelationAction::kCascade);
  EXPECT_EQ(table.long_value_maps[0].with_room, (RowPointer{9, 5}));
  EXPECT_EQ(SerializeTableDefinition(table), bytes);
}

TEST(TableDefinitionTest, BytesWithoutMeaningStayWithTheirPart) {
  Bytes bytes = SerializeTableDefinition(Products());
  const std::size_t columns = 63 + 2 * 12;
  const std::size_t indexes = columns + 4 * 25 + 4 * 2 + 2 * (2 + 4 + 6 + 7);
  const auto garbage = std::byte{0xa5};
  bytes[0x1c] = garbage;                   // header
  bytes[columns + 3 * 25 + 17] = garbage;  // Remarks
  bytes[indexes + 52 + 42] = garbage;      // the physical index of codes
  bytes[indexes + 52 + 12] = garbage;      // direction of its unused third column
  bytes[indexes + 2 * 52 + 24] = garbage;  // codes

  TableDefinition table = ParseTableDefinition(bytes, 20);
  EXPECT_EQ(SerializeTableDefinition(table), bytes);

  // Without its first column and index the parts move; the bytes move along.
  table.columns.erase(table.columns.begin());
  table.physical_indexes.erase(table.physical_indexes.begin());
  table.logical_indexes.erase(table.logical_indexes.begin() + 1);
  table.logical_indexes[0].physical = 0;
  const Bytes smaller = SerializeTableDefinition(table);
  const std::size_t moved_columns = 63 + 12;
  const std::size_t moved_indexes = moved_columns + 3 * 25 + 3 * 2 + 2 * (4 + 6 + 7);
  EXPECT_EQ(smaller[0x1c], garbage);
  EXPECT_EQ(smaller[moved_columns + 2 * 25 + 17], garbage);
  EXPECT_EQ(smaller[moved_indexes + 42], garbage);
  EXPECT_EQ(smaller[moved_indexes + 52 + 24], garbage);
}

TEST(TableDefinitionTest, RefusesWhatTheFormatCannotHold) {
  struct Case {
    const char* what;
    ErrorKind kind;
    std::function<void(TableDefinition&)> change;
  };
  const Case cases[] = {
      {"256 columns ever", ErrorKind::kTooManyColumns,
       [](TableDefinition& table) { table.next_column_number = 256; }},
      {"33 index names", ErrorKind::kTooManyIndexes,
       [](TableDefinition& table) { table.logical_indexes.resize(33, table.logical_indexes[0]); }},
      {"11 columns in an index", ErrorKind::kTooManyColumns,
       [](TableDefinition& table) { table.physical_indexes[0].columns.resize(11); }},
      {"a column name of 65", ErrorKind::kBadName,
       [](TableDefinition& table) { table.columns[0].name.assign(65, u'x'); }},
      {"an index without name", ErrorKind::kBadName,
       [](TableDefinition& table) { table.logical_indexes[0].name.clear(); }},
      {"a text of 256 characters", ErrorKind::kTooLong,
       [](TableDefinition& table) { table.columns[1].length = 512; }},
      {"a numeric of 29 digits", ErrorKind::kOutOfRange,
       [](TableDefinition& table) { table.columns[2].precision = 29; }},
      // 2 + fixed area + 2 * 2 slots + 4 + 1 byte of null mask
      {"fixed columns beyond a row", ErrorKind::kRowTooLarge,
       [](TableDefinition& table) { table.columns[2].fixed_offset = 4060 - 17 - 11 + 1; }},
  };
  for (const Case& limit : cases) {
    SCOPED_TRACE(limit.what);
    TableDefinition table = Products();
    limit.change(table);
    EXPECT_EQ(KindOf([&] { SerializeTableDefinition(table); }), Kind(limit.kind));
  }
  TableDefinition widest = Products();
  widest.columns[2].fixed_offset = 4060 - 17 - 11;
  EXPECT_EQ(KindOf([&] { SerializeTableDefinition(widest); }), "none");
}

TEST(TableDefinitionTest, TellsDamageFromWhatIsUnknown) {
  const Bytes bytes = SerializeTableDefinition(Products());
  const std::size_t columns = 63 + 2 * 12;
  const std::size_t indexes = columns + 4 * 25 + 4 * 2 + 2 * (2 + 4 + 6 + 7);
  const std::size_t logical = indexes + 2 * 52;
  const auto kind_after = [&bytes](std::size_t at, std::uint8_t value) {
    Bytes changed = bytes;
    changed[at] = std::byte{value};
    return KindOf([&] { ParseTableDefinition(changed, 20); });
  };
  const std::string damaged = Kind(ErrorKind::kDamaged);
  const std::string unknown = Kind(ErrorKind::kNotSupported);
  for (const std::size_t constant : {std::size_t{0x0c}, columns + 1, indexes, logical})
    EXPECT_EQ(kind_after(constant, 0), damaged) << constant;
  EXPECT_EQ(kind_after(8, 0x7f), damaged);                   // length
  EXPECT_EQ(kind_after(columns + 25 + 5, 0), damaged);       // a column number twice
  EXPECT_EQ(kind_after(columns + 25 + 5, 4), damaged);       // one not handed out yet
  EXPECT_EQ(kind_after(columns + 25 + 7, 1), damaged);       // a slot twice
  EXPECT_EQ(kind_after(columns + 2 * 25 + 21, 3), damaged);  // fixed columns overlap
  EXPECT_EQ(kind_after(indexes + 4, 9), damaged);            // an index of no column
  EXPECT_EQ(kind_after(logical + 8, 2), damaged);            // a name of no index
  EXPECT_EQ(kind_after(bytes.size() - 12, 1), damaged);      // maps for a text column
  EXPECT_EQ(kind_after(0x28, 'X'), unknown);                 // kind of table
  EXPECT_EQ(kind_after(columns, 18), unknown);               // column type
  EXPECT_EQ(kind_after(columns + 16, 0x40), unknown);        // calculated column
  EXPECT_EQ(kind_after(indexes + 46, 0x8d), unknown);        // index flag
}

TEST(TableDefinitionTest, AnyBytesGiveADefinitionOrAnError) {
  test::UseDamaged(SerializeTableDefinition(Products()), [](const Bytes& damaged) {
    SerializeTableDefinition(ParseTableDefinition(damaged, 20));
  });
}

TEST(TableDefinitionTest, DefinitionsOfSamplesAreReproduced) {
  const auto samples = test::SampleFiles();
  if (samples.empty()) GTEST_SKIP() << "ORVPAP_SHARED names no folder of samples";
  for (const test::SampleFile& sample : samples) {
    const auto tables = sample.Tables();
    EXPECT_GE(tables.size(), 4u) << sample.name();
    for (const auto& [name, page] : tables) {
      SCOPED_TRACE(sample.name() + ", definition on page " + std::to_string(page));
      const Bytes bytes = sample.DefinitionBytes(page);
      EXPECT_TRUE(SerializeTableDefinition(ParseTableDefinition(bytes, page)) == bytes);
    }
  }
}

}  // namespace
}  // namespace jet
