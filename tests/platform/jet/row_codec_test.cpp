// Rows and values as bytes: the layout, each type, older rows, limits and damage.
#include "platform/jet/row_codec.h"

#include <gmock/gmock.h>

#include "tests/platform/jet/definitions.h"
#include "tests/platform/jet/sample_files.h"

namespace jet {
namespace {

using test::AddColumn;
using test::FromHex;
using test::kFixedColumn;
using test::KindOf;
using test::ToHex;

std::string Kind(ErrorKind kind) { return std::to_string(static_cast<int>(kind)); }

// The table of the worked row in docs/jet_format.md.
TableDefinition Articles() {
  TableDefinition table;
  AddColumn(table, u"Id", ColumnType::kLong, 4, kFixedColumn);
  AddColumn(table, u"Code", ColumnType::kText, 40).extra_flags = 1;
  AddColumn(table, u"Price", ColumnType::kCurrency, 8, kFixedColumn);
  AddColumn(table, u"Active", ColumnType::kBoolean, 1, kFixedColumn);
  AddColumn(table, u"Name", ColumnType::kText, 40).extra_flags = 1;
  AddColumn(table, u"Remarks", ColumnType::kMemo);
  return table;
}

const Row kArticle = {std::int32_t{7},      std::u16string(u"HEA200"), Currency{123400}, true,
                      std::u16string(u"Å"), std::u16string(u"ok")};
constexpr const char* kArticleBytes =
    "06 00 07 00 00 00 08 E2 01 00 00 00 00 00 "  // count; Id, Price
    "FF FE 48 45 41 32 30 30 C5 00 "              // Code compressed; Name too short for that
    "04 00 00 80 00 00 00 00 00 00 00 00 6F 00 6B 00 "
    "28 00 18 00 16 00 0E 00 03 00 "  // end, Remarks, Name, Code, slots
    "3F";

LongValueField Inline(const Bytes& bytes) {
  LongValueField field;
  field.length = static_cast<std::uint32_t>(bytes.size());
  field.inline_bytes = bytes;
  return field;
}

std::vector<LongValueField> ArticleLongValues() {
  std::vector<LongValueField> fields(6);
  fields[5] = Inline(FromHex("6F 00 6B 00"));
  return fields;
}

Row ReadBack(const TableDefinition& table, const Bytes& bytes) {
  const StoredRow stored(table, bytes, 33);
  Row row;
  for (const ColumnDefinition& column : table.columns) {
    if (!column.is_long_value()) {
      row.push_back(stored.Get(column));
      continue;
    }
    const auto field = stored.GetLongValue(column);
    if (!field)
      row.push_back(Null{});
    else if (column.type == ColumnType::kMemo)
      row.push_back(DecodeText(field->inline_bytes));
    else
      row.push_back(field->inline_bytes);
  }
  return row;
}

TEST(RowCodecTest, ARowHasItsPartsInOrder) {
  const TableDefinition table = Articles();
  EXPECT_EQ(BuildRow(table, kArticle, ArticleLongValues()), FromHex(kArticleBytes));
  EXPECT_EQ(ReadBack(table, FromHex(kArticleBytes)), kArticle);
}

TEST(RowCodecTest, NullsKeepOffsetsInOrder) {
  const TableDefinition table = Articles();
  const Row row = {Null{}, Null{}, Currency{1}, Null{}, std::u16string(), Null{}};
  const Bytes bytes = BuildRow(table, row, {});
  EXPECT_EQ(bytes, FromHex("06 00 00 00 00 00 01 00 00 00 00 00 00 00 "
                           "0E 00 0E 00 0E 00 0E 00 03 00 14"));
  const Row read = {Null{}, Null{}, Currency{1}, false, std::u16string(), Null{}};
  EXPECT_EQ(ReadBack(table, bytes), read);
}

// The row was written when the table had three columns and one slot.
TEST(RowCodecTest, OlderRowsReadAsNullWhatTheyDoNotKnow) {
  const Bytes older = FromHex(
      "03 00 07 00 00 00 08 E2 01 00 00 00 00 00 41 00 42 00 "
      "12 00 0E 00 01 00 07");
  const Row read = {std::int32_t{7}, std::u16string(u"AB"), Currency{123400}, false, Null{},
                    Null{}};
  EXPECT_EQ(ReadBack(Articles(), older), read);
}

TEST(RowCodecTest, TablesWithoutVariableColumnsHaveNoOffsets) {
  TableDefinition table;
  AddColumn(table, u"Flag", ColumnType::kBoolean, 1, kFixedColumn);
  AddColumn(table, u"Level", ColumnType::kByte, 1, kFixedColumn);
  // At least two fixed bytes: an update may have to leave a pointer there.
  EXPECT_EQ(ToHex(BuildRow(table, Row{true, std::uint8_t{9}}, {})), "02 00 09 00 03");
  const Row read = {true, std::uint8_t{9}};
  EXPECT_EQ(ReadBack(table, FromHex("02 00 09 00 03")), read);
  EXPECT_EQ(ReadBack(table, FromHex("02 00 09 03")), read);  // others write less
}

TEST(RowCodecTest, DroppedColumnsLeaveHoles) {
  TableDefinition table = Articles();
  table.columns.erase(table.columns.begin() + 4);  // Name: slot 1
  table.columns.erase(table.columns.begin());      // Id: offset 0
  const Row row = {std::u16string(u"X"), Currency{2}, false, Null{}};
  const Bytes bytes = BuildRow(table, row, {});
  EXPECT_EQ(bytes, FromHex("06 00 00 00 00 00 02 00 00 00 00 00 00 00 58 00 "
                           "10 00 10 00 10 00 0E 00 03 00 06"));
  EXPECT_EQ(ReadBack(table, bytes), row);
  EXPECT_EQ(ReadBack(table, FromHex(kArticleBytes)),
            (Row{kArticle[1], kArticle[2], true, kArticle[5]}));
}

TEST(RowCodecTest, ValuesHaveTheStoredFormOfTheirType) {
  struct Case {
    ColumnType type;
    Value value;
    const char* stored;
  };
  const Case cases[] = {
      {ColumnType::kByte, std::uint8_t{200}, "C8"},
      {ColumnType::kInteger, std::int16_t{-2}, "FE FF"},
      {ColumnType::kLong, std::int32_t{-2}, "FE FF FF FF"},
      {ColumnType::kCurrency, Currency{-1}, "FF FF FF FF FF FF FF FF"},
      {ColumnType::kSingle, 1.5f, "00 00 C0 3F"},
      {ColumnType::kDouble, -2.0, "00 00 00 00 00 00 00 C0"},
      {ColumnType::kDate, Date{-1.25}, "00 00 00 00 00 00 F4 BF"},
      {ColumnType::kGuid, Guid{{std::byte{1}, std::byte{2}}},
       "01 02 00 00 00 00 00 00 00 00 00 00 00 00 00 00"},
      {ColumnType::kNumeric, Numeric{true, 2, {0, 0, 1, 2}},
       "80 00 00 00 00 00 00 00 00 01 00 00 00 02 00 00 00"},
      {ColumnType::kText, std::u16string(u"A€"), "41 00 AC 20"},
      {ColumnType::kBinary, FromHex("01 02"), "01 02"},
  };
  for (const Case& type : cases) {
    for (const std::uint8_t flags : {test::kFixedColumn, test::kVariableColumn}) {
      TableDefinition table;
      const bool is_bytes = type.type == ColumnType::kText || type.type == ColumnType::kBinary;
      const std::uint16_t length = type.type == ColumnType::kText ? 4 : is_bytes ? 2 : 0;
      ColumnDefinition& column = AddColumn(table, u"Value", type.type, length, flags);
      column.scale = 2;
      EXPECT_EQ(ToHex(EncodeValue(column, type.value)), type.stored);
      EXPECT_EQ(DecodeValue(column, FromHex(type.stored), 1), type.value);
      EXPECT_EQ(ReadBack(table, BuildRow(table, Row{type.value}, {})), Row{type.value});
    }
  }
}

TEST(RowCodecTest, FixedTextsAndBinariesArePadded) {
  TableDefinition table;
  const ColumnDefinition text = AddColumn(table, u"Text", ColumnType::kText, 8, kFixedColumn);
  EXPECT_EQ(ToHex(EncodeValue(text, std::u16string(u"ab"))), "61 00 62 00 20 00 20 00");
  const ColumnDefinition bytes = AddColumn(table, u"Bytes", ColumnType::kBinary, 4, kFixedColumn);
  EXPECT_EQ(ToHex(EncodeValue(bytes, FromHex("FF"))), "FF 00 00 00");
}

TEST(RowCodecTest, NumericsAreBroughtToTheScaleOfTheirColumn) {
  TableDefinition table;
  ColumnDefinition column = AddColumn(table, u"Exact", ColumnType::kNumeric);
  column.precision = 6;
  column.scale = 3;
  const auto fitted = [&column](bool negative, std::uint8_t scale, std::uint32_t magnitude) {
    return FitNumeric(column, Numeric{negative, scale, {0, 0, 0, magnitude}});
  };
  EXPECT_EQ(fitted(true, 1, 125), (Numeric{true, 3, {0, 0, 0, 12500}}));
  EXPECT_EQ(fitted(false, 5, 12300), (Numeric{false, 3, {0, 0, 0, 123}}));
  EXPECT_EQ(fitted(true, 0, 0), (Numeric{false, 3, {}}));
  EXPECT_EQ(fitted(false, 3, 999999), (Numeric{false, 3, {0, 0, 0, 999999}}));
  const std::string out_of_range = Kind(ErrorKind::kOutOfRange);
  EXPECT_EQ(KindOf([&] { fitted(false, 3, 1000000); }), out_of_range);  // too many digits
  EXPECT_EQ(KindOf([&] { fitted(false, 0, 1000); }), out_of_range);
  EXPECT_EQ(KindOf([&] { fitted(false, 4, 12345); }), out_of_range);  // a digit would be lost
  EXPECT_EQ(KindOf([&] { FitNumeric(column, {false, 0, {0xffffffff, 0, 0, 0}}); }), out_of_range);
}

TEST(RowCodecTest, TextsAreCompressedWhereThatIsShorter) {
  struct Case {
    std::u16string text;
    const char* stored;
  };
  const Case cases[] = {
      {u"", ""},
      {u"ab", "61 00 62 00"},
      {u"abc", "FF FE 61 62 63"},
      {u"café-café中", "FF FE 63 61 66 E9 2D 63 61 66 E9 00 2D 4E"},
      {u"中abcde", "FF FE 00 2D 4E 00 61 62 63 64 65"},
      {u"a中b中c", "61 00 2D 4E 62 00 2D 4E 63 00"},                     // longer compressed
      {u"abcdefgĀ", "61 00 62 00 63 00 64 00 65 00 66 00 67 00 00 01"},  // a low byte of 00
      {u"\uFEFFab", "61 00 62 00"},                                      // would read as compressed
  };
  for (const Case& text : cases) {
    const Bytes stored = EncodeText(text.text, true);
    EXPECT_EQ(ToHex(stored), text.stored);
    if (!text.text.starts_with(u'\uFEFF')) {
      EXPECT_EQ(DecodeText(stored), text.text);
      EXPECT_EQ(DecodeText(EncodeText(text.text, false)), text.text);
    }
  }
  // Written by the original engine: the switch back and forth, and one at the very end.
  EXPECT_EQ(DecodeText(FromHex("FF FE 63 61 66 E9 00 2D 4E")), u"café中");
  EXPECT_EQ(DecodeText(FromHex("FF FE 61 00 2D 4E 00")), u"a中");
  EXPECT_EQ(KindOf([] { DecodeText(FromHex("FF FE 00 2D")); }), Kind(ErrorKind::kDamaged));
  EXPECT_EQ(KindOf([] { DecodeText(FromHex("61")); }), Kind(ErrorKind::kDamaged));
}

TEST(RowCodecTest, LongValueFieldsReadBack) {
  TableDefinition table;
  AddColumn(table, u"Remarks", ColumnType::kMemo);
  const auto round_trip = [&table](const LongValueField& field) {
    const Bytes row = BuildRow(table, Row{std::u16string(u"given")}, std::span(&field, 1));
    return *StoredRow(table, row, 1).GetLongValue(table.columns[0]);
  };
  const LongValueField chain{LongValueField::Form::kChain, 5000, {77, 3}, 0xdeadbeef, {}};
  EXPECT_EQ(round_trip(chain).form, chain.form);
  EXPECT_EQ(round_trip(chain).length, 5000u);
  EXPECT_EQ(round_trip(chain).at, chain.at);
  EXPECT_EQ(round_trip(chain).stamp, chain.stamp);
  const LongValueField single{LongValueField::Form::kSingle, 100, {78, 4}, 0, {}};
  EXPECT_EQ(round_trip(single).form, single.form);
  EXPECT_EQ(round_trip(Inline(FromHex("01 02 03"))).inline_bytes, FromHex("01 02 03"));

  const auto kind_of_stored = [&table](std::string_view field) {
    Bytes row = FromHex("01 00");
    const Bytes bytes = FromHex(field);
    row.insert(row.end(), bytes.begin(), bytes.end());
    row.push_back(static_cast<std::byte>(2 + bytes.size()));
    const Bytes rest = FromHex("00 02 00 01 00 01");
    row.insert(row.end(), rest.begin(), rest.end());
    return KindOf([&] { StoredRow(table, row, 1).GetLongValue(table.columns[0]); });
  };
  EXPECT_EQ(kind_of_stored("02 00 00 80 00 00 00 00 00 00 00 00 61 00"), "none");
  EXPECT_EQ(kind_of_stored("03 00 00 80 00 00 00 00 00 00 00 00 61 00"), Kind(ErrorKind::kDamaged));
  EXPECT_EQ(kind_of_stored("02 00 00 C0 00 00 00 00 00 00 00 00 61 00"), Kind(ErrorKind::kDamaged));
  EXPECT_EQ(kind_of_stored("02 00 00 80 00 00 00 00 00 00 00"), Kind(ErrorKind::kDamaged));
}

TEST(RowCodecTest, RefusesWhatAColumnOrARowCannotHold) {
  TableDefinition table = Articles();
  const auto kind_with = [&table](std::size_t position, Value value) {
    Row row = kArticle;
    row[position] = std::move(value);
    return KindOf([&] { BuildRow(table, row, ArticleLongValues()); });
  };
  // Characters count, not the bytes of the compressed form.
  EXPECT_EQ(kind_with(1, std::u16string(20, u'x')), "none");
  EXPECT_EQ(kind_with(1, std::u16string(21, u'x')), Kind(ErrorKind::kTooLong));
  EXPECT_EQ(kind_with(0, 7.0), Kind(ErrorKind::kTypeMismatch));
  EXPECT_EQ(kind_with(3, std::int32_t{1}), Kind(ErrorKind::kTypeMismatch));
  EXPECT_EQ(KindOf([&] { BuildRow(table, Row(5), {}); }), Kind(ErrorKind::kTypeMismatch));
  EXPECT_EQ(KindOf([&] { BuildRow(table, kArticle, {}); }), Kind(ErrorKind::kTypeMismatch));

  // The article without its memo's text takes 47 bytes.
  auto fields = ArticleLongValues();
  fields[5] = Inline(Bytes(4060 - 47));
  EXPECT_EQ(BuildRow(table, kArticle, fields).size(), 4060u);
  fields[5] = Inline(Bytes(4060 - 46));
  EXPECT_EQ(KindOf([&] { BuildRow(table, kArticle, fields); }), Kind(ErrorKind::kRowTooLarge));
}

TEST(RowCodecTest, AnyBytesGiveARowOrAnError) {
  const TableDefinition table = Articles();
  test::UseDamaged(FromHex(kArticleBytes),
                   [&table](const Bytes& damaged) { ReadBack(table, damaged); });
  const char* contradictory[] = {
      "07 00 02 00 02 00 00 00 7F",                    // more columns than the table ever had
      "00 00 02 00 00 00",                             // none
      "01 00 02 00 02 00 02 00 02 00 02 00 04 00 01",  // more slots
      "01 00 03 00 02 00 01 00 01",                    // a value that ends in the offsets
      "01 00 41 00 02 00 04 00 01 00 01",              // one that ends before it begins
  };
  for (const char* row : contradictory)
    EXPECT_EQ(KindOf([&] { StoredRow(table, FromHex(row), 1); }), Kind(ErrorKind::kDamaged)) << row;
}

// Every row of the samples, read and built again, says the same as before.
TEST(RowCodecTest, RowsOfSamplesReadAndBuild) {
  const auto samples = test::SampleFiles();
  if (samples.empty()) GTEST_SKIP() << "ORVPAP_SHARED names no folder of samples";
  std::size_t rows = 0;
  std::size_t identical = 0;
  for (const test::SampleFile& sample : samples) {
    for (const auto& [name, page] : sample.Tables()) {
      const TableDefinition table = sample.Definition(page);
      for (const auto& [id, bytes] : sample.Rows(page)) {
        SCOPED_TRACE(sample.name() + ", page " + std::to_string(id.page));
        const StoredRow stored(table, bytes, id.page);
        Row values;
        std::vector<LongValueField> fields(table.columns.size());
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
          const ColumnDefinition& column = table.columns[i];
          const auto field = column.is_long_value() ? stored.GetLongValue(column) : std::nullopt;
          if (field) fields[i] = *field;
          if (column.is_long_value())
            values.push_back(field ? Value(Bytes{}) : Value(Null{}));
          else
            values.push_back(stored.Get(column));
        }
        const Bytes built = BuildRow(table, values, fields);
        const StoredRow again(table, built, id.page);
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
          if (table.columns[i].is_long_value()) continue;
          ASSERT_EQ(again.Get(table.columns[i]), values[i]);
        }
        ++rows;
        identical += built == bytes ? 1 : 0;
      }
    }
  }
  EXPECT_GT(rows, 1000u);
  // The others differ in bytes under null fixed values, which are garbage there, and in texts of
  // mixed runs, which their writer left plain.
  EXPECT_GT(identical, rows / 2);
}

}  // namespace
}  // namespace jet
