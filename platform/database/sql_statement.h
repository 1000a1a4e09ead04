// What a SELECT statement says, before its names are looked up. docs/sql.md describes the language.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace database::sql {

struct SelectStatement;

struct ColumnName {
  std::wstring table;  // empty when the statement does not say
  std::wstring name;
};

// One entry of the column list.
struct OutputColumns {
  ColumnName column;  // its name is empty for "*" and "table.*"
  bool all = false;
};

// A column, a number or a text.
using Operand = std::variant<ColumnName, double, std::wstring>;

enum class Operator { kEqual, kNotEqual, kLess, kLessOrEqual, kGreater, kGreaterOrEqual };

struct Comparison {
  Operand left;
  Operator op = Operator::kEqual;
  Operand right;
};

// column IN (SELECT ...)
struct InQuery {
  ColumnName column;
  std::unique_ptr<SelectStatement> query;
};

using Condition = std::variant<Comparison, InQuery>;

// A table, or the inner join of two sources.
struct Source {
  std::wstring table;  // empty for a join
  std::unique_ptr<Source> left;
  std::unique_ptr<Source> right;
  ColumnName on_left;  // the two columns that must be equal, as written
  ColumnName on_right;
};

struct OrderColumn {
  ColumnName column;
  bool descending = false;
};

struct SelectStatement {
  bool distinct_rows = false;
  std::optional<std::uint32_t> top;
  std::vector<OutputColumns> output;
  Source from;
  std::vector<Condition> where;  // all must hold
  std::vector<OrderColumn> order;
};

}  // namespace database::sql
