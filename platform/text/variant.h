// The value of a database field or of a registry read: one of a fixed set of types, or Null.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace text {

// The empty database value. Two Nulls are equal as C++ values; what a query makes of Null is its
// own business.
struct Null {
  friend bool operator==(Null, Null) = default;
};

// An amount with four exact decimals.
struct Currency {
  static constexpr std::int64_t kScale = 10000;
  std::int64_t scaled = 0;  // the amount times kScale
  friend bool operator==(const Currency&, const Currency&) = default;
};

// A moment without time zone. The default is the unset date.
struct Date {
  double days = 0;  // since 1899-12-30; the fraction is the time of day (see text/date.h)
  friend bool operator==(const Date&, const Date&) = default;
};

// An exact decimal: (negative ? -1 : 1) * magnitude / 10^scale. Equality is that of the parts, so
// 1.0 and 1.00 differ; convert to compare by value.
struct Decimal {
  bool negative = false;
  std::array<std::uint32_t, 4> magnitude{};  // most significant first
  std::uint8_t scale = 0;                    // 0..28
  friend bool operator==(const Decimal&, const Decimal&) = default;
};

using Binary = std::vector<std::byte>;

// A replication identifier, its bytes in the order in which they are stored.
struct Guid {
  std::array<std::byte, 16> bytes{};
  friend bool operator==(const Guid&, const Guid&) = default;
};

// Whether the std::variant V has the alternative T.
template <class V, class T>
inline constexpr bool kHolds = false;
template <class T, class... Ts>
inline constexpr bool kHolds<std::variant<Ts...>, T> = (std::is_same_v<T, Ts> || ...);

// A value type: copy it freely, nothing outlives anything. A default Variant is Null.
//
// It converts implicitly from exactly the types it can hold (and from wide literals and views as
// text): a number of any other width does not compile instead of changing its type silently.
// Equality asks for the same type and the same value.
class Variant {
 public:
  using Value = std::variant<Null, bool, std::uint8_t, std::int16_t, std::int32_t, Currency, float,
                             double, Date, Decimal, std::wstring, Binary, Guid>;

  Variant() = default;
  // Implicit, so that a field takes a plain value.
  // NOLINTBEGIN(google-explicit-constructor)
  template <class T, class = std::enable_if_t<kHolds<Value, T>>>
  Variant(T value) : value_(std::in_place_type<T>, std::move(value)) {}
  Variant(const wchar_t* value) : Variant(std::wstring(value)) {}
  Variant(std::wstring_view value) : Variant(std::wstring(value)) {}
  // NOLINTEND(google-explicit-constructor)

  bool IsNull() const noexcept { return Is<Null>(); }

  template <class T>
  bool Is() const noexcept {
    return std::holds_alternative<T>(value_);
  }

  // The value as the type it has. Throws std::bad_variant_access when it has another.
  template <class T>
  const T& Get() const {
    return std::get<T>(value_);
  }

  // The value, or nullptr when it has another type. Valid until this Variant changes.
  template <class T>
  const T* GetIf() const noexcept {
    return std::get_if<T>(&value_);
  }

  // For std::visit over every type.
  const Value& value() const noexcept { return value_; }

  friend bool operator==(const Variant&, const Variant&) = default;

 private:
  Value value_;
};

}  // namespace text
