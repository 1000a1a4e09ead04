// Reads the statements and search criteria that recordsets are opened and searched with.
#pragma once

#include <string>
#include <string_view>

#include "platform/database/sql_statement.h"

namespace database::sql {

// Whether the text is meant as a SELECT statement, and not as the name of a table.
bool IsSelect(std::wstring_view text);

// The statement. What is not understood is the text::RuntimeError that the classic engine has for
// the clause in which it stands: 3075, 3131, 3135, 3138, 3141, 3142, 3067, 3360.
SelectStatement ParseSelect(std::wstring_view text);

// The error for a text that is neither a statement nor the name of a table: 3078 for a single name,
// 3134, 3144, 3129 for a statement of another kind.
[[noreturn]] void FailAsSource(std::wstring_view text);

// One column compared with a constant.
struct Criterion {
  std::wstring column;
  Operator op = Operator::kEqual;
  Operand constant;  // never a column
};

// 3001 for what is no such comparison.
Criterion ParseCriterion(std::wstring_view text);

}  // namespace database::sql
