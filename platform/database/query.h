// A SELECT statement whose names have been looked up: tables, columns by position, and tests.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "platform/database/comparison.h"
#include "platform/database/session.h"
#include "platform/database/sql_statement.h"

namespace database {

// A column of one of a query's tables, both by position.
struct QueryColumn {
  std::size_t table = 0;
  std::size_t column = 0;
};

// column op constant
struct ConstantTest {
  QueryColumn column;
  sql::Operator op = sql::Operator::kEqual;
  jet::Value constant;    // a double or a text
  Comparable comparable;  // the same, by the column's collation
};

// column op column; also what joins demand
struct ColumnTest {
  QueryColumn left;
  sql::Operator op = sql::Operator::kEqual;
  QueryColumn right;
};

struct Query;

// column IN (sub-query)
struct MemberTest {
  QueryColumn column;
  std::unique_ptr<Query> query;  // has one output column, of the same kind
};

struct QueryOrder {
  QueryColumn column;
  bool descending = false;
};

// All tests must hold. The tables belong to the session.
struct Query {
  std::vector<SessionTable*> tables;
  std::vector<ConstantTest> constants;
  std::vector<ColumnTest> columns;
  std::vector<MemberTest> members;
  std::vector<QueryColumn> output;
  std::vector<QueryOrder> order;
  bool distinct_rows = false;
  std::optional<std::uint32_t> top;
};

// The column of a query as its table describes it.
const jet::ColumnDefinition& DefinitionOf(const Query& query, QueryColumn column);

// Looks up the names of a statement. Throws jet::Error (kTableNotFound) and the RuntimeErrors 3061,
// 3079, 3296, 3306, 3464, 3615.
Query Bind(Session& session, const sql::SelectStatement& statement);

}  // namespace database
