// How values compare in criteria, joins, searches and orders: numbers across their types, texts by
// the database's sort keys (so without case and blind to blanks at the end), Null with nothing.
#pragma once

#include <string>
#include <variant>

#include "platform/database/sql_statement.h"
#include "platform/jet/key_encoding.h"
#include "platform/jet/value.h"

namespace database {

// Values of one kind can be compared with each other. Numbers include truth values and dates.
enum class ValueKind { kNumber, kText, kBytes };

ValueKind KindOf(jet::ColumnType type);
ValueKind KindOf(const sql::Operand& constant);  // REQUIRES that it is no column

// A value reduced to what comparing needs: nothing for Null, a number, or bytes. Orders Null first.
// Total for any stored bits: what is not a number orders before all numbers.
using Comparable = std::variant<std::monostate, double, jet::Bytes>;

// `collation` is that of the column a text stands in or is compared with.
Comparable ComparableOf(const jet::Value& value, const jet::Collation& collation);

// Whether the comparison holds; never when one side is Null.
bool Holds(const Comparable& left, sql::Operator op, const Comparable& right);

// The operator that holds when the two sides change places.
sql::Operator Mirrored(sql::Operator op);

// Appends bytes that are the same for equal values of one kind, and for them only. Returns false,
// and appends nothing, for Null: it equals nothing.
bool AppendEqualityKey(std::string& key, const Comparable& value);

}  // namespace database
