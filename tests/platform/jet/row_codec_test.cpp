// Rows and values as bytes: the layout, each type, older rows, limits and damage.
#include "platform/jet/row_codec.h"

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

TEST(RowCodecTest, RowsHaveTheirPartsInOrder) {
  const TableDefinition table = Articles();
  EXPECT_EQ(BuildRow(table, kArticle, ArticleLongValues()), FromHex(kArticleBytes));
  EXPECT_EQ(ReadBack(table, FromHex(kArticleBytes)), kArticle);

  // Nulls keep the offsets in order; a boolean is never Null.
  const Row nulls = {Null{}, Null{}, Currency{1}, false, u"", Null{}};
  const Bytes null_bytes =
      FromHex("06 00 00 00 00 00 01 00 00 00 00 00 00 00 0E 00 0E 00 0E 00 0E 00 03 00 14");
  EXPECT_EQ(BuildRow(table, nulls, {}), null_bytes);
  EXPECT_EQ(ReadBack(table, null_bytes), nulls);

  // Written when the table had three columns and one slot.
  const Bytes older =
      FromHex("03 00 07 00 00 00 08 E2 01 00 00 00 00 00 41 00 42 00 12 00 0E 00 01 00 07");
  EXPECT_EQ(ReadBack(table, older), (Row{7, u"AB", Currency{123400}, false, Null{}, Null{}}));

  // Dropped columns leave holes: Name in slot 1, Id at offset 0.
  TableDefinition holes = table;
  holes.columns.erase(holes.columns.begin() + 4);
  holes.columns.erase(holes.columns.begin());
  const Row rest = {u"X", Currency{2}, false, Null{}};
  const Bytes rest_bytes =
      FromHex("06 00 00 00 00 00 02 00 00 00 00 00 00 00 58 00 10 00 10 00 10 00 0E 00 03 00 06");
  EXPECT_EQ(BuildRow(holes, rest, {}), rest_bytes);
  EXPECT_EQ(ReadBack(holes, rest_bytes), rest);
  EXPECT_EQ(ReadBack(holes, FromHex(kArticleBytes)),
            (Row{kArticle[1], kArticle[2], true, kArticle[5]}));

  // Without variable columns there are no offsets, but at least two fixed bytes: an update may have
  // to leave a pointer there. Others write less.
  TableDefinition fixed;
  AddColumn(fixed, u"Flag", ColumnType::kBoolean, 1, kFixedColumn);
  AddColumn(fixed, u"Level", ColumnType::kByte, 1, kFixedColumn);
  const Row flags = {true, std::uint8_t{9}};
  EXPECT_EQ(ToHex(BuildRow(fixed, flags, {})), "02 00 09 00 03");
  EXPECT_EQ(ReadBack(fixed, FromHex("02 00 09 00 03")), flags);
  EXPECT_EQ(ReadBack(fixed, FromHex("02 00 09 03")), flags);
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
  EXPECT_EQ(KindOf([&] { fitted(false, 3, 1000000); }), kOutOfRange);  // too many digits
  EXPECT_EQ(KindOf([&] { fitted(false, 0, 1000); }), kOutOfRange);
  EXPECT_EQ(KindOf([&] { fitted(false, 4, 12345); }), kOutOfRange);  // a digit would be lost
  EXPECT_EQ(KindOf([&] { FitNumeric(column, {false, 0, {0xffffffff, 0, 0, 0}}); }), kOutOfRange);
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
  EXPECT_EQ(KindOf([] { DecodeText(FromHex("FF FE 00 2D")); }), kDamaged);
  EXPECT_EQ(KindOf([] { DecodeText(FromHex("61")); }), kDamaged);
}

TEST(RowCodecTest, LongValueFieldsThatContradictThemselvesAreDamage) {
  TableDefinition table;
  AddColumn(table, u"Remarks", ColumnType::kMemo);
  const auto kind_of_stored = [&table](std::string_view field) {
    Bytes row = FromHex("01 00");
    const Bytes bytes = FromHex(field);
    row.insert(row.end(), bytes.begin(), bytes.end());
    row.push_back(static_cast<std::byte>(2 + bytes.size()));
    const Bytes rest = FromHex("00 02 00 01 00 01");
    row.insert(row.end(), rest.begin(), rest.end());
    return KindOf([&] { StoredRow(table, row, 1).GetLongValue(table.columns[0]); });
  };
  EXPECT_EQ(kind_of_stored("02 00 00 80 00 00 00 00 00 00 00 00 61 00"), std::nullopt);
  EXPECT_EQ(kind_of_stored("03 00 00 80 00 00 00 00 00 00 00 00 61 00"), kDamaged);
  EXPECT_EQ(kind_of_stored("02 00 00 C0 00 00 00 00 00 00 00 00 61 00"), kDamaged);
  EXPECT_EQ(kind_of_stored("02 00 00 80 00 00 00 00 00 00 00"), kDamaged);
}

TEST(RowCodecTest, RowsThatContradictThemselvesAreDamage) {
  const TableDefinition table = Articles();
  const char* contradictory[] = {
      "07 00 02 00 02 00 00 00 7F",                    // more columns than the table ever had
      "00 00 02 00 00 00",                             // none
      "01 00 02 00 02 00 02 00 02 00 02 00 04 00 01",  // more slots
      "01 00 03 00 02 00 01 00 01",                    // a value that ends in the offsets
      "01 00 41 00 02 00 04 00 01 00 01",              // one that ends before it begins
  };
  for (const char* row : contradictory)
    EXPECT_EQ(KindOf([&] { StoredRow(table, FromHex(row), 1); }), kDamaged) << row;
}

}  // namespace
}  // namespace jet
