// Database values as the command `rows` prints them.
#pragma once

#include <string>
#include <string_view>

#include "platform/jet/value.h"

namespace paptool {

// Null is \N. Numbers in the shortest form that reads back the same, with "." as the mark; currency
// and numeric as exact decimals; dates "2004-03-15 00:00:00"; yes/no True and False; bytes in
// lower-case hex; a GUID {8-4-4-4-12} in lower case; texts escaped. UTF-8.
std::string ValueText(const jet::Value& value);

// Tab, CR, LF and backslash as \t \r \n \\, so that a text keeps to its line and column.
std::string Escaped(std::string_view utf8);

}  // namespace paptool
