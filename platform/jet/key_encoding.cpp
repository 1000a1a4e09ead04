// Key parts by column type, whole keys, and the cut of keys that are too long.
#include "platform/jet/key_encoding.h"

#include <algorithm>
#include <array>
#include <bit>
#include <string>

#include "platform/jet/error.h"
#include "platform/jet/key_format.h"
#include "platform/jet/row_codec.h"
#include "platform/jet/text_key.h"

namespace jet {
namespace format = key_format;
namespace {

template <typename T>
const T& Expect(const ColumnDefinition& column, const Value& value) {
  const T* held = std::get_if<T>(&value);
  if (held == nullptr)
    throw Error(ErrorKind::kTypeMismatch, {column.name}, "a key of another type than its column");
  return *held;
}

[[noreturn]] void NotSupported(const ColumnDefinition& column, const char* what) {
  throw Error(ErrorKind::kNotSupported, {column.name}, what);
}

void Append(Bytes& key, std::uint8_t byte) { key.push_back(std::byte{byte}); }

void Invert(std::byte& byte) { byte ^= std::byte{format::kInvert}; }

void InvertFrom(Bytes& key, std::size_t start) {
  std::for_each(key.begin() + static_cast<std::ptrdiff_t>(start), key.end(), Invert);
}

template <typename Unsigned>
void AppendBigEndian(Bytes& key, Unsigned value) {
  for (std::size_t shift = 8 * sizeof(Unsigned); shift > 0; shift -= 8)
    Append(key, static_cast<std::uint8_t>(value >> (shift - 8) & 0xff));
}

template <typename Unsigned>
constexpr Unsigned kTopBit = static_cast<Unsigned>(Unsigned{1} << (8 * sizeof(Unsigned) - 1));

template <typename Unsigned>
void AppendInteger(Bytes& key, Unsigned value) {
  AppendBigEndian(key, static_cast<Unsigned>(value ^ kTopBit<Unsigned>));
}

// `bits` are those of an IEEE number.
template <typename Unsigned>
void AppendFloat(Bytes& key, Unsigned bits) {
  const bool negative = (bits & kTopBit<Unsigned>) != 0;
  AppendBigEndian(key, static_cast<Unsigned>(negative ? ~bits : bits ^ kTopBit<Unsigned>));
}

void AppendNumeric(Bytes& key, const Numeric& value) {
  const std::size_t start = key.size();
  Append(key, format::kPositiveNumeric);
  for (const std::uint32_t word : value.magnitude) AppendBigEndian(key, word);
  if (value.negative) InvertFrom(key, start);
}

// Inverts by itself, since the bytes between groups never are.
void AppendGroups(Bytes& key, std::span<const std::byte> bytes, bool ascending) {
  while (!bytes.empty()) {
    const auto group = bytes.first(std::min(bytes.size(), format::kGroupSize));
    bytes = bytes.subspan(group.size());
    const std::size_t start = key.size();
    key.insert(key.end(), group.begin(), group.end());
    key.resize(start + format::kGroupSize);
    if (bytes.empty()) Append(key, static_cast<std::uint8_t>(group.size()));
    if (!ascending) InvertFrom(key, start);
    if (!bytes.empty()) Append(key, format::kGroupFollows);
  }
}

// A GUID in the order in which it is printed.
std::array<std::byte, 16> PrintedOrder(const Guid& guid) {
  auto bytes = guid.stored;
  std::reverse(bytes.begin(), bytes.begin() + 4);
  std::reverse(bytes.begin() + 4, bytes.begin() + 6);
  std::reverse(bytes.begin() + 6, bytes.begin() + 8);
  return bytes;
}

void AppendText(Bytes& key, const ColumnDefinition& column, const std::u16string& text,
                bool ascending) {
  const KeyOrder order = KeyOrderOf(column.collation);
  if (order == KeyOrder::kUnknown) NotSupported(column, "a sort order without known keys");
  const std::size_t start = key.size();
  if (!AppendTextKey(key, order, text)) NotSupported(column, "a character without known key");
  if (ascending) return;
  InvertFrom(key, start);
  Append(key, format::kTextEnd);
}

void AppendBinary(Bytes& key, const ColumnDefinition& column, const Bytes& bytes, bool ascending) {
  if (!column.is_fixed()) return AppendGroups(key, bytes, ascending);
  Bytes padded = bytes;
  padded.resize(std::max<std::size_t>(padded.size(), column.length));
  AppendGroups(key, padded, ascending);
}

// The ascending form of a type whose descending form is just that, inverted.
void AppendNumber(Bytes& key, const Value& value, const ColumnDefinition& column) {
  switch (column.type) {
    case ColumnType::kByte:
      return Append(key, Expect<std::uint8_t>(column, value));
    case ColumnType::kInteger:
      return AppendInteger(key, static_cast<std::uint16_t>(Expect<std::int16_t>(column, value)));
    case ColumnType::kLong:
      return AppendInteger(key, static_cast<std::uint32_t>(Expect<std::int32_t>(column, value)));
    case ColumnType::kCurrency:
      return AppendInteger(key, static_cast<std::uint64_t>(Expect<Currency>(column, value).scaled));
    case ColumnType::kSingle:
      return AppendFloat(key, std::bit_cast<std::uint32_t>(Expect<float>(column, value)));
    case ColumnType::kDouble:
      return AppendFloat(key, std::bit_cast<std::uint64_t>(Expect<double>(column, value)));
    case ColumnType::kDate:
      return AppendFloat(key, std::bit_cast<std::uint64_t>(Expect<Date>(column, value).days));
    case ColumnType::kNumeric:
      return AppendNumeric(key, FitNumeric(column, Expect<Numeric>(column, value)));
    default:
      NotSupported(column, "a column type without keys");
  }
}

constexpr std::array<std::uint16_t, 256> MakeChecksumTable() {
  std::array<std::uint16_t, 256> table{};
  for (std::size_t byte = 0; byte < table.size(); ++byte)
    for (std::size_t bit = 0; bit < format::kChecksumSteps.size(); ++bit)
      if ((byte >> bit & 1) != 0) table[byte] ^= format::kChecksumSteps[bit];
  return table;
}

std::uint16_t Checksum(std::span<const std::byte> dropped) {
  static constexpr auto kTable = MakeChecksumTable();
  std::uint16_t sum = 0;
  for (const std::byte byte : dropped) {
    sum = static_cast<std::uint16_t>(sum >> 8 ^ kTable[sum & 0xff]);
    sum ^= static_cast<std::uint16_t>(std::to_integer<unsigned>(byte) << 8);
  }
  return sum;
}

}  // namespace

bool CanEncode(const Collation& collation) { return KeyOrderOf(collation) != KeyOrder::kUnknown; }

bool CanEncodeText(const Collation& collation, std::u16string_view text) {
  return CanEncode(collation) && HasWeights(SignificantText(text));
}

void AppendKeyPart(Bytes& key, const Value& value, const ColumnDefinition& column, bool ascending) {
  const std::uint8_t inversion = ascending ? 0 : format::kInvert;
  if (column.type != ColumnType::kBoolean && IsNull(value))
    return Append(key, format::kNull ^ inversion);
  Append(key, format::kNotNull ^ inversion);
  switch (column.type) {
    case ColumnType::kBoolean: {
      const bool is_true = !IsNull(value) && Expect<bool>(column, value);
      return Append(key, (is_true ? format::kTrue : format::kFalse) ^ inversion);
    }
    case ColumnType::kText:
    case ColumnType::kMemo:
      return AppendText(key, column, Expect<std::u16string>(column, value), ascending);
    case ColumnType::kBinary:
    case ColumnType::kFixedBytes:
      return AppendBinary(key, column, Expect<Bytes>(column, value), ascending);
    case ColumnType::kGuid:
      return AppendGroups(key, PrintedOrder(Expect<Guid>(column, value)), ascending);
    case ColumnType::kNumeric:
      if (!ascending) NotSupported(column, "descending keys of decimal numbers are not settled");
      break;
    default:
      break;
  }
  const std::size_t start = key.size();
  AppendNumber(key, value, column);
  if (!ascending) InvertFrom(key, start);
}

void LimitKey(Bytes& key) {
  if (key.size() <= format::kMaxKeySize) return;
  const std::uint16_t sum = Checksum(std::span(key).subspan(format::kKeptSize));
  key.resize(format::kKeptSize);
  AppendBigEndian(key, sum);
}

Bytes EncodeKey(std::span<const Value* const> values,
                std::span<const ColumnDefinition* const> columns,
                std::span<const IndexColumn> order) {
  constexpr std::size_t kUsualKeySize = 64;
  Bytes key;
  key.reserve(kUsualKeySize);
  for (std::size_t i = 0; i < values.size(); ++i)
    AppendKeyPart(key, *values[i], *columns[i], order[i].ascending);
  LimitKey(key);
  return key;
}

Bytes TextSortKey(const Collation& collation, std::u16string_view text) {
  constexpr std::uint8_t kBehindAllWeights = 0xff;
  const KeyOrder known = KeyOrderOf(collation);
  const KeyOrder order = known == KeyOrder::kUnknown ? KeyOrder::kGeneral : known;
  Bytes key;
  key.reserve(text.size() + sizeof(format::kWeightsEnd) + sizeof(format::kTextEnd));
  if (AppendTextKey(key, order, text)) return key;
  Append(key, kBehindAllWeights);
  for (const char16_t unit : text.substr(0, text.find_last_not_of(u' ') + 1))
    AppendBigEndian(key, static_cast<std::uint16_t>(unit));
  return key;
}

}  // namespace jet
