// A new, empty product table, as the host product would make one.
#pragma once

#include <string>

namespace demo {

// Creates the database file with its password, tables, indexes, enforced relationships and identity
// row, and closes it. Throws text::RuntimeError: 3204 when the file exists, 3044 and others when it
// cannot be made.
void CreateProductTable(const std::wstring& path);

}  // namespace demo
