// Statements understood, and the number and text of what is not.
#include "platform/database/sql_parser.h"

#include <gtest/gtest.h>

#include "tests/platform/database/test_database.h"

namespace database::sql {
namespace {

std::wstring Repeat(std::wstring_view part, int times) {
  std::wstring text;
  for (int i = 0; i < times; ++i) text += part;
  return text;
}

TEST(SqlParserTest, WhatIsNotUnderstoodFailsWithTheClassicNumberAndText) {
  struct Case {
    std::wstring statement;
    int number;
    std::wstring description{};  // empty: not compared
  };
  const Case cases[] = {
      {L"SELECT * FROM Supplier WHERE Code='O'Brien'", 3075,
       L"Syntax error (missing operator) in query expression 'Code='O'Brien''."},
      {L"SELECT * FROM Serie WHERE SerieCode = 'a'b' ORDER BY SerieCode", 3075,
       L"Syntax error (missing operator) in query expression 'SerieCode = 'a'b' ORDER BY "
       L"SerieCode'."},
      {L"SELECT * FROM Serie WHERE AssNr = 1 2 ORDER BY SerieCode;", 3075,
       L"Syntax error (missing operator) in query expression 'AssNr = 1 2'."},
      {L"SELECT * FROM Supplier WHERE Code='O''", 3075,
       L"Syntax error in string in query expression 'Code='O'''."},
      {L"SELECT * FROM Supplier WHERE Code LIKE 'a*'", 3075},
      {L"SELECT * FROM Supplier WHERE Code='a' OR Code='b'", 3075},
      {L"SELECT * FROM Supplier WHERE Code", 3075},
      {L"SELECT * FROM Supplier WHERE", 3075},
      {L"SELECT * FROM Supplier WHERE ID = -'1'", 3075},
      {L"SELECT * FROM Supplier WHERE ID = 1 +1", 3075},
      {L"SELECT * FROM Supplier WHERE 1 = 1", 3075},
      {L"SELECT * FROM Supplier WHERE ID IN (1, 2)", 3075},
      {L"SELECT * FROM A WHERE ID IN (SELECT ID FROM B WHERE Code = 'x'y)", 3075},
      {L"SELECT * FROM Supplier WHERE Supplier. = 1", 3075},
      {L"SELECT * FROM Supplier WHERE ID = 1)", 3075,
       L"Syntax error (missing operator) in query expression 'ID = 1'."},
      {L"SELECT * FROM Supplier WHERE ID = 1e999", 3075},
      {L"SELECT * FROM Supplier WHERE [] = 1", 3075},
      {L"SELECT * FROM", 3131, L"Syntax error in FROM clause."},
      {L"SELECT * FROM A, B", 3131},
      {L"SELECT * FROM A LEFT JOIN B ON A.x = B.x", 3131},
      {L"SELECT * FROM (A INNER JOIN B ON A.x = B.x", 3131},
      {L"SELECT * FROM A GROUP BY x", 3131},
      {L"SELECT * FROM A INNER JOIN B ON A.x > B.x", 3135, L"Syntax error in JOIN operation."},
      {L"SELECT * FROM A INNER JOIN B ON A.x = B.x INNER JOIN C ON B.y = C.y", 3075},
      {L"SELECT * FROM A ORDER BY", 3138, L"Syntax error in ORDER BY clause."},
      {L"SELECT * FROM A ORDER BY x x", 3138},
      {L"SELECT DISTINCT x FROM A", 3141},
      {L"SELECT x, FROM A", 3141},
      {L"SELECT x AS y FROM A", 3141},
      {L"SELECT TOP 0 * FROM A", 3141},
      {L"SELECT TOP 1.5 * FROM A", 3141},
      {L"SELECT *", 3067, L"Query input must contain at least one table or query."},
      {L"SELECT * FROM A; SELECT * FROM B", 3142, L"Characters found after end of SQL statement."},
      {L"SELECT * FROM " + Repeat(L"(", 100000) + L"A", 3360, L"Query is too complex."},
      {L"SELECT * FROM A WHERE x IN (" + Repeat(L"SELECT x FROM A WHERE x IN (", 100000), 3360},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "statement " << c.statement.substr(0, 80));
    try {
      ParseSelect(c.statement);
      ADD_FAILURE() << "no error";
    } catch (const text::RuntimeError& error) {
      EXPECT_EQ(error.number(), c.number);
      if (!c.description.empty()) {
        EXPECT_EQ(error.description(), c.description);
      }
    }
  }
}

TEST(SqlParserTest, SourcesThatAreNoStatementsAreNamedAsSuch) {
  const std::pair<std::wstring, int> cases[] = {{L"Suplier", 3078},
                                                {L"DELETE FROM Supplier", 3129},
                                                {L"UPDATE Supplier SET x = 1", 3144},
                                                {L"INSERT INTO x", 3134},
                                                {L"", 3129},
                                                {L"'", 3129}};
  for (const auto& [source, number] : cases) {
    EXPECT_FALSE(IsSelect(source));
    EXPECT_EQ(ErrorNumber([&, &text = source] { FailAsSource(text); }), number)
        << testing::PrintToString(source);
  }
  EXPECT_TRUE(IsSelect(L" select *"));
  EXPECT_FALSE(IsSelect(L"Selection"));
}

TEST(SqlParserTest, ReadsAStatementWithEveryClause) {
  const SelectStatement statement = ParseSelect(
      L"select  DistinctRow top 3 A.*, [B].[the name] , c from (A inner join B on A.x=B.y)\r\n"
      L"inner join C on C.z = A.z where A.ID In(SELECT ID FROM D)AND\"it\"\"s\"<>c and x>=-1.5e2 "
      L"order by A.x desc, c asc ;");
  EXPECT_TRUE(statement.distinct_rows);
  EXPECT_EQ(statement.top, 3u);
  ASSERT_EQ(statement.output.size(), 3u);
  EXPECT_TRUE(statement.output[0].all);
  EXPECT_EQ(statement.output[0].column.table, L"A");
  EXPECT_EQ(statement.output[1].column.name, L"the name");
  EXPECT_EQ(statement.output[2].column.table, L"");

  ASSERT_NE(statement.from.left, nullptr);
  EXPECT_EQ(statement.from.left->right->table, L"B");
  EXPECT_EQ(statement.from.left->on_right.name, L"y");
  EXPECT_EQ(statement.from.right->table, L"C");

  ASSERT_EQ(statement.where.size(), 3u);
  EXPECT_EQ(std::get<InQuery>(statement.where[0]).query->from.table, L"D");
  const auto& quoted = std::get<Comparison>(statement.where[1]);
  EXPECT_EQ(std::get<std::wstring>(quoted.left), L"it\"s");
  EXPECT_EQ(quoted.op, Operator::kNotEqual);
  const auto& number = std::get<Comparison>(statement.where[2]);
  EXPECT_EQ(number.op, Operator::kGreaterOrEqual);
  EXPECT_EQ(std::get<double>(number.right), -150);

  ASSERT_EQ(statement.order.size(), 2u);
  EXPECT_TRUE(statement.order[0].descending);
  EXPECT_FALSE(statement.order[1].descending);
}

TEST(SqlParserTest, CriteriaAreOneColumnAndOneConstant) {
  const Criterion text = ParseCriterion(L"Code = 'A ''1'''");
  EXPECT_EQ(text.column, L"Code");
  EXPECT_EQ(std::get<std::wstring>(text.constant), L"A '1'") << "doubled quotes stand for one";
  EXPECT_EQ(std::get<double>(ParseCriterion(L"[fkArticle]=-5").constant), -5);
  for (const wchar_t* bad :
       {L"", L"Code", L"Code =", L"Code = 'O'Brien'", L"Code = 'x", L"Code = Description",
        L"Code = 'a' AND ID = 1", L"5 = ID", L"Code = -'a'", L"Code LIKE 'a'"})
    EXPECT_EQ(ErrorNumber([&] { ParseCriterion(bad); }), 3001) << testing::PrintToString(bad);
}

}  // namespace
}  // namespace database::sql
