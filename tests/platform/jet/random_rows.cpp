// Makes rows at random.
#include "tests/platform/jet/random_rows.h"

namespace jet::test {

Value RowMaker::ValueFor(const ColumnDefinition& column) {
  if (column.type != ColumnType::kBoolean && Below(6) == 0) return Null{};
  switch (column.type) {
    case ColumnType::kBoolean:
      return Below(2) == 0;
    case ColumnType::kByte:
      return static_cast<std::uint8_t>(Below(256));
    case ColumnType::kInteger:
      return static_cast<std::int16_t>(Below(65536));
    case ColumnType::kLong:
      return static_cast<std::int32_t>(Below(300));
    case ColumnType::kCurrency:
      return Currency{std::int64_t{random_()} - (1 << 30)};
    case ColumnType::kSingle:
      return static_cast<float>(Below(100000)) / 7 - 3000;
    case ColumnType::kDouble:
      return static_cast<double>(Below(100000)) / 7 - 3000;
    case ColumnType::kDate:
      return Date{30000.0 + Below(20000)};
    case ColumnType::kBinary:
    case ColumnType::kFixedBytes:
      return BytesOf(Below(column.length + 1u));
    case ColumnType::kText:
      return TextOf(1 + Below(column.length / 2u));
    case ColumnType::kMemo:
      return TextOf(Below(4) == 0 ? Below(9000) : 1 + Below(100));
    case ColumnType::kOle:
      return BytesOf(Below(4) == 0 ? Below(12000) : Below(200));
    case ColumnType::kGuid: {
      Guid guid;
      for (std::byte& byte : guid.stored) byte = static_cast<std::byte>(Below(256));
      return guid;
    }
    case ColumnType::kNumeric:
      return Numeric{Below(2) == 0, column.scale, {0, 0, 0, Below(100000) + 1}};
  }
  return Null{};
}

Row RowMaker::Changed(const Table& table, Row row) {
  for (std::size_t i = 0; i < row.size(); ++i)
    if (!table.columns()[i].is_autonumber() && Below(3) == 0) row[i] = ValueFor(table.columns()[i]);
  return row;
}

Row RowMaker::New(const Table& table, Row like) {
  Row row = Changed(table, std::move(like));
  for (std::size_t i = 0; i < row.size(); ++i) {
    const ColumnDefinition& column = table.columns()[i];
    if (column.is_autonumber() || column.is_auto_guid()) row[i] = Null{};
    if (column.type == ColumnType::kBoolean && IsNull(row[i])) row[i] = false;
  }
  return row;
}

Row RowMaker::New(const Table& table) {
  Row row;
  for (const ColumnDefinition& column : table.columns()) row.push_back(ValueFor(column));
  return row;
}

Bytes RowMaker::BytesOf(std::size_t size) {
  return Bytes(size, static_cast<std::byte>(Below(256)));
}

std::u16string RowMaker::TextOf(std::size_t length) {
  static constexpr std::u16string_view kCharacters = u"abcdefghij -'\u00e9\u00dfXYZ\u2020123";
  std::u16string text(length, u'a');
  for (char16_t& c : text) c = kCharacters[Below(kCharacters.size())];
  return text;
}

}  // namespace jet::test
