// A database with everything that the engine makes, and what a database holds, told for comparison.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/platform/jet/test_database.h"

namespace jet::test {

// What a table holds, as whoever works with it sees it; tables are told by name, never by id.
struct TableContents {
  std::vector<std::string> design;
  std::set<std::string> indexes;
  std::vector<Row> rows;  // sorted
  bool operator==(const TableContents&) const = default;
};
using Contents = std::map<std::u16string, TableContents>;

Contents ContentsOf(Database& database);

// Each character as it is, others than ASCII as "?".
std::string Ascii(const std::u16string& text);

// Fills an empty database with tables that have columns of every type, long values of all forms,
// indexes of all kinds and a relationship, and leaves gaps of all kinds: rows deleted and moved,
// long values replaced, pages emptied, columns dropped.
void FillWithEverything(TestDatabase& database);

}  // namespace jet::test
