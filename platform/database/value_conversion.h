// Between the values that columns hold, the values that fields show, and the constants that columns
// are compared with.
#pragma once

#include <optional>

#include "platform/database/sql_statement.h"
#include "platform/jet/table_definition.h"
#include "platform/jet/value.h"
#include "platform/text/variant.h"

namespace database {

text::Variant ToVariant(const jet::Value& value);

// The value as the column holds it: numbers are rounded to the nearest (halves to the even one),
// texts become numbers and numbers texts by the user's locale, Null becomes "no" in a yes/no
// column. 3421 for what does not convert, 3349 for a number that the column cannot hold. The length
// of a text is not looked at.
jet::Value ToColumnValue(const text::Variant& value, const jet::ColumnDefinition& column);

// The constant of a statement as a value: a double or a text. REQUIRES that it is no column.
jet::Value ConstantValue(const sql::Operand& constant);

// What to look for in an index of the column to find the rows whose value equals `constant`.
struct IndexKey {
  enum class Kind {
    kValue,          // look for `value`
    kEqualsNothing,  // no value of the column's type is equal to it
    kNotByIndex,     // an index cannot say; the rows themselves must be compared
  };
  Kind kind = Kind::kNotByIndex;
  jet::Value value;
};

// `constant` is of the column's kind (comparison.h).
IndexKey IndexKeyFor(const jet::Value& constant, const jet::ColumnDefinition& column);

}  // namespace database
