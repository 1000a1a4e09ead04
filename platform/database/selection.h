// What a recordset's source selects: rows of one table, or values put together from several.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "platform/database/session.h"

namespace database {

struct Selection {
  std::shared_ptr<const FieldList> fields;

  // Rows of one table, which can be changed:
  SessionTable* table = nullptr;     // empty when there are only values
  std::vector<std::size_t> columns;  // which of the table's columns each field is
  bool whole_table = false;          // all rows in table order, not listed in `rows`
  std::vector<jet::RowId> rows;

  // Rows of a join, one value a field:
  std::vector<jet::Row> values;
};

// `source` is a SELECT statement or the name of a table. Throws jet::Error and the RuntimeErrors of
// sql_parser.h and query.h.
Selection Select(Session& session, std::wstring_view source);

}  // namespace database
