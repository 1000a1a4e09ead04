// Tables as lines of tab-separated text.
#pragma once

#include <string>

#include "platform/jet/table.h"

namespace paptool {

// The names of all columns, and the values of a row, in the table's order, without a line end.
// Values as tools/paptool/value_text.h says. UTF-8.
std::string ColumnNames(const jet::Table& table);
std::string RowText(const jet::Row& row);

}  // namespace paptool
