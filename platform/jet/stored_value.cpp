// Values of each column type as bytes, and back.
#include "platform/jet/stored_value.h"

#include <algorithm>
#include <bit>

#include "platform/jet/row_codec.h"

namespace jet {
namespace format = row_format;
namespace {

[[noreturn]] void Mismatch(const ColumnDefinition& column) {
  throw Error(ErrorKind::kTypeMismatch, {column.name}, "a value of another type than its column");
}

template <typename T>
const T& Expect(const ColumnDefinition& column, const Value& value) {
  const T* held = std::get_if<T>(&value);
  if (held == nullptr) Mismatch(column);
  return *held;
}

void StoreNumeric(ByteEditor& editor, const ColumnDefinition& column, const Numeric& value) {
  const Numeric fitted = FitNumeric(column, value);
  editor.SetU8(format::kNumericSignAt, fitted.negative ? format::kNumericNegative : 0);
  for (std::size_t i = 0; i < format::kNumericWords; ++i)
    editor.SetU32(format::kNumericMagnitudeAt + 4 * i, fitted.magnitude[i]);
}

Numeric LoadNumeric(const ByteView& bytes, std::uint8_t scale) {
  Numeric value;
  value.negative = bytes.U8(format::kNumericSignAt) != 0;
  value.scale = scale;
  for (std::size_t i = 0; i < format::kNumericWords; ++i)
    value.magnitude[i] = bytes.U32(format::kNumericMagnitudeAt + 4 * i);
  return value;
}

bool HoldsBytes(ColumnType type) {
  return type == ColumnType::kText || type == ColumnType::kBinary ||
         type == ColumnType::kFixedBytes;
}

void AppendString(Bytes& out, const ColumnDefinition& column, const Value& value) {
  if (column.type == ColumnType::kText) {
    const auto& text = Expect<std::u16string>(column, value);
    if (text.size() > column.length / 2u)
      throw Error(ErrorKind::kTooLong, {column.name}, "a text longer than its column");
    AppendText(out, text, column.may_compress() && !column.is_fixed());
    return;
  }
  const auto& bytes = Expect<Bytes>(column, value);
  if (bytes.size() > column.length)
    throw Error(ErrorKind::kTooLong, {column.name}, "a binary longer than its column");
  out.insert(out.end(), bytes.begin(), bytes.end());
}

// Stores a number, date or GUID into a place of just its size.
void StoreScalar(std::span<std::byte> place, const ColumnDefinition& column, const Value& value) {
  ByteEditor editor(place);
  switch (column.type) {
    case ColumnType::kByte:
      return editor.SetU8(0, Expect<std::uint8_t>(column, value));
    case ColumnType::kInteger:
      return editor.SetU16(0, static_cast<std::uint16_t>(Expect<std::int16_t>(column, value)));
    case ColumnType::kLong:
      return editor.SetU32(0, static_cast<std::uint32_t>(Expect<std::int32_t>(column, value)));
    case ColumnType::kCurrency:
      return editor.SetU64(0, static_cast<std::uint64_t>(Expect<Currency>(column, value).scaled));
    case ColumnType::kSingle:
      return editor.SetU32(0, std::bit_cast<std::uint32_t>(Expect<float>(column, value)));
    case ColumnType::kDouble:
      return editor.SetU64(0, std::bit_cast<std::uint64_t>(Expect<double>(column, value)));
    case ColumnType::kDate:
      return editor.SetU64(0, std::bit_cast<std::uint64_t>(Expect<Date>(column, value).days));
    case ColumnType::kGuid: {
      const auto& stored = Expect<Guid>(column, value).stored;
      std::ranges::copy(stored, editor.Slice(0, stored.size()).begin());
      return;
    }
    case ColumnType::kNumeric:
      return StoreNumeric(editor, column, Expect<Numeric>(column, value));
    case ColumnType::kBoolean:
    case ColumnType::kBinary:
    case ColumnType::kText:
    case ColumnType::kOle:
    case ColumnType::kMemo:
    case ColumnType::kFixedBytes:
      break;
  }
  Mismatch(column);
}

// Multiplies by ten; false when that needs more than 128 bits.
bool TimesTen(std::array<std::uint32_t, 4>& magnitude) {
  std::uint64_t carry = 0;
  for (std::size_t i = magnitude.size(); i-- > 0;) {
    carry += std::uint64_t{magnitude[i]} * 10;
    magnitude[i] = static_cast<std::uint32_t>(carry);
    carry >>= 32;
  }
  return carry == 0;
}

// Divides by ten; returns the remainder.
std::uint32_t DivideByTen(std::array<std::uint32_t, 4>& magnitude) {
  std::uint64_t rest = 0;
  for (std::uint32_t& word : magnitude) {
    rest = rest << 32 | word;
    word = static_cast<std::uint32_t>(rest / 10);
    rest %= 10;
  }
  return static_cast<std::uint32_t>(rest);
}

bool IsZero(const std::array<std::uint32_t, 4>& magnitude) {
  return std::ranges::all_of(magnitude, [](std::uint32_t word) { return word == 0; });
}

std::size_t DigitCount(std::array<std::uint32_t, 4> magnitude) {
  std::size_t digits = 0;
  for (; !IsZero(magnitude); ++digits) DivideByTen(magnitude);
  return digits;
}

}  // namespace

Numeric FitNumeric(const ColumnDefinition& column, const Numeric& value) {
  const auto out_of_range = [&column] {
    throw Error(ErrorKind::kOutOfRange, {column.name}, "a number that its column cannot hold");
  };
  Numeric fitted = value;
  if (IsZero(fitted.magnitude)) return {.negative = false, .scale = column.scale, .magnitude = {}};
  for (; fitted.scale < column.scale; ++fitted.scale)
    if (!TimesTen(fitted.magnitude)) out_of_range();
  for (; fitted.scale > column.scale; --fitted.scale)
    if (DivideByTen(fitted.magnitude) != 0) out_of_range();
  if (DigitCount(fitted.magnitude) > column.precision) out_of_range();
  return fitted;
}

bool BooleanOf(const ColumnDefinition& column, const Value& value) {
  return !IsNull(value) && Expect<bool>(column, value);
}

void StoreFixedValue(std::span<std::byte> place, const ColumnDefinition& column,
                     const Value& value) {
  if (!HoldsBytes(column.type)) {
    StoreScalar(place, column, value);
    return;
  }
  Bytes bytes;
  AppendString(bytes, column, value);
  const auto rest = std::ranges::copy(bytes, place.begin()).out;
  std::fill(rest, place.end(), std::byte{0});
  if (column.type != ColumnType::kText) return;
  ByteEditor editor(place);
  for (std::size_t at = bytes.size(); at + 2 <= place.size(); at += 2) editor.SetU16(at, u' ');
}

void AppendVariableValue(Bytes& out, const ColumnDefinition& column, const Value& value) {
  if (HoldsBytes(column.type)) {
    AppendString(out, column, value);
    return;
  }
  const std::size_t at = out.size();
  out.resize(at + FixedSize(column));
  StoreScalar(std::span(out).subspan(at), column, value);
}

Bytes EncodeValue(const ColumnDefinition& column, const Value& value) {
  Bytes out;
  if (column.is_fixed()) {
    out.resize(FixedSize(column));
    StoreFixedValue(out, column, value);
  } else {
    AppendVariableValue(out, column, value);
  }
  return out;
}

Value DecodeValue(const ColumnDefinition& column, std::span<const std::byte> bytes,
                  PageNumber page) {
  if (!HoldsBytes(column.type) && bytes.size() != FixedSize(column))
    throw Error(ErrorKind::kDamaged, "a value of another size than its type", page);
  const ByteView view(bytes, page);
  switch (column.type) {
    case ColumnType::kByte:
      return view.U8(0);
    case ColumnType::kInteger:
      return static_cast<std::int16_t>(view.U16(0));
    case ColumnType::kLong:
      return view.I32(0);
    case ColumnType::kCurrency:
      return Currency{static_cast<std::int64_t>(view.U64(0))};
    case ColumnType::kSingle:
      return std::bit_cast<float>(view.U32(0));
    case ColumnType::kDouble:
      return std::bit_cast<double>(view.U64(0));
    case ColumnType::kDate:
      return Date{std::bit_cast<double>(view.U64(0))};
    case ColumnType::kGuid: {
      Guid guid;
      std::ranges::copy(bytes, guid.stored.begin());
      return guid;
    }
    case ColumnType::kNumeric:
      return LoadNumeric(view, column.scale);
    case ColumnType::kText:
      return DecodeText(bytes, page);
    case ColumnType::kBinary:
    case ColumnType::kFixedBytes:
      return Bytes(bytes.begin(), bytes.end());
    case ColumnType::kBoolean:
    case ColumnType::kOle:
    case ColumnType::kMemo:
      break;
  }
  throw Error(ErrorKind::kTypeMismatch, {column.name}, "a value that does not stand alone");
}

}  // namespace jet
