// What a column of a row can hold, as plain values without their stored form.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace jet {

using Bytes = std::vector<std::byte>;

// Type codes as they stand in column descriptors. Stored in files: never renumber.
enum class ColumnType : std::uint8_t {
  kBoolean = 1,
  kByte = 2,
  kInteger = 3,   // 16 bits, signed
  kLong = 4,      // 32 bits, signed
  kCurrency = 5,  // 64 bits, signed, 1/10000
  kSingle = 6,
  kDouble = 7,
  kDate = 8,
  kBinary = 9,  // up to 510 bytes
  kText = 10,   // up to 255 UTF-16 units
  kOle = 11,    // long value, bytes
  kMemo = 12,   // long value, text
  kGuid = 15,
  kNumeric = 16,  // 28 decimal digits
  kFixedBytes = 17,
};

struct Currency {
  std::int64_t scaled = 0;  // value * 10000
  auto operator<=>(const Currency&) const = default;
};

struct Date {
  double days = 0;  // since 1899-12-30; the fraction is the time, see the row codec for negatives
  auto operator<=>(const Date&) const = default;
};

struct Guid {
  std::array<std::byte, 16> stored{};  // u32, u16, u16 little-endian, then 8 bytes
  auto operator<=>(const Guid&) const = default;
};

struct Numeric {
  bool negative = false;
  std::uint8_t scale = 0;                    // digits behind the mark
  std::array<std::uint32_t, 4> magnitude{};  // |value| * 10^scale, most significant word first
  auto operator<=>(const Numeric&) const = default;
};

struct Null {
  auto operator<=>(const Null&) const = default;
};

// The alternative that a column of a given type holds (or Null):
//   kBoolean bool · kByte uint8 · kInteger int16 · kLong int32 · kCurrency Currency ·
//   kSingle float · kDouble double · kDate Date · kBinary, kOle, kFixedBytes Bytes ·
//   kText, kMemo u16string · kGuid Guid · kNumeric Numeric
// A boolean is never Null.
using Value = std::variant<Null, bool, std::uint8_t, std::int16_t, std::int32_t, Currency, float,
                           double, Date, Bytes, std::u16string, Guid, Numeric>;

inline bool IsNull(const Value& value) { return std::holds_alternative<Null>(value); }

// One value a column, in the order in which the table lists its columns.
using Row = std::vector<Value>;

}  // namespace jet
