// The part of a file check that finds a table's definition, pages and rows.
#pragma once

#include <functional>
#include <string>

#include "platform/jet/check_state.h"

namespace jet::check {

// Reads the definition on `page`, claims its pages and the table's data pages, checks slots and
// overflow rows, and adds the table to those of the state. Nothing is added when the definition
// cannot be read.
void LoadTable(State& state, PageNumber page, const std::u16string& name, bool is_user);

// The table with this definition page; nullptr when there is none.
const CheckedTable* FindTable(const State& state, PageNumber page);

// Calls with each live row, by page and slot: its home slot, and its bytes, which are good as long
// as the call. Rows that cannot be reached, and errors of the call, go to `damaged`.
void ForEachRow(const Pager& pager, const CheckedTable& table,
                const std::function<void(RowId, ByteView)>& row,
                const std::function<void(RowId, const Error&)>& damaged);

}  // namespace jet::check
