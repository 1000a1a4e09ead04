// Finds the rows of one table that meet some tests, by index, transient index or a walk.
#pragma once

#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/database/query.h"
#include "platform/database/session.h"

namespace database {

// Values of one kind by their equality key.
using ValueSet = std::unordered_map<std::string, jet::Value>;

// column IN (values)
struct SetTest {
  std::size_t column = 0;
  const ValueSet* values = nullptr;
};

// What a row of one table must meet, all of it.
struct RowTests {
  std::vector<const ConstantTest*> constants;  // of this table's columns
  std::vector<SetTest> sets;
  bool empty() const { return constants.empty() && sets.empty(); }
};

bool Passes(const jet::Row& row, const RowTests& tests, const SessionTable& table);

// The rows among which those are that pass all tests.
struct Candidates {
  bool whole_table = false;      // no better way than a walk; `rows` is empty
  std::vector<jet::RowId> rows;  // in table order
  RowTests open;                 // the tests that these rows have yet to pass
};

// `repeatedly` says that searches like this one follow, so that a transient index pays at once.
Candidates FindCandidates(SessionTable& table, const RowTests& tests, bool repeatedly);

}  // namespace database
