// Default values of columns: the few expressions that an insert can evaluate without a host.
#pragma once

#include <optional>
#include <string_view>
#include <variant>

#include "platform/jet/table_definition.h"
#include "platform/jet/value.h"

namespace jet {

// Days since 1899-12-30 in local time, to the whole second.
double CurrentDays();

// A random GUID of the usual kind.
Guid RandomGuid();

// The expression that a column's DefaultValue property holds.
//
// Understood are numbers, texts in quotes, Yes, No, True, False, On, Off and Null, Date() and
// Now(), GenGUID() and GenUniqueID(), each with or without "=" in front. Anything else is kept as
// "unknown": a row that needs it cannot be inserted.
class DefaultValue {
 public:
  // `expression` as the property holds it; "" and blanks mean no default.
  static DefaultValue Parse(std::u16string_view expression, const ColumnDefinition& column);

  bool is_none() const { return std::holds_alternative<None>(kind_); }
  bool is_unknown() const { return std::holds_alternative<Unknown>(kind_); }
  bool is_random_autonumber() const;
  bool is_guid() const;

  // The value for a new row, of the column's alternative; Null when there is none.
  // kNotSupported for an unknown expression, kTypeMismatch (column) for one of another kind.
  Value Evaluate(const ColumnDefinition& column) const;

 private:
  struct None {};
  struct Unknown {};
  enum class Function { kDate, kNow, kGenGuid, kGenUniqueId };
  using Kind = std::variant<None, Unknown, Function, Value>;

  explicit DefaultValue(Kind kind) : kind_(std::move(kind)) {}

  Kind kind_;
};

}  // namespace jet
