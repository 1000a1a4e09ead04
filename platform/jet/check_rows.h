// The part of a file check that decodes every row of a table.
#pragma once

#include <vector>

#include "platform/jet/check_indexes.h"
#include "platform/jet/check_state.h"

namespace jet::check {

// Reads each value of each live row, long ones included, and the table's counters. Returns what the
// table's physical indexes must hold, one list an index.
std::vector<ExpectedEntries> CheckRows(State& state, const CheckedTable& table);

}  // namespace jet::check
