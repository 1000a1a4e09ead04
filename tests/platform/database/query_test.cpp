// Statements over a small product table: the same answers with indexes and without, and the number
// and text of what is wrong with one.
#include <gtest/gtest.h>

#include "platform/database/recordset.h"
#include "platform/text/conversion.h"
#include "tests/platform/database/test_database.h"

namespace database {
namespace {

using Indexes = TestDatabase::Indexes;

class QueryTest : public testing::TestWithParam<Indexes> {
 protected:
  QueryTest() : database_(GetParam()) {
    for (const auto& [assortment, code] :
         {std::pair(1, L"HEA"), std::pair(1, L"IPE"), std::pair(2, L"Plate")})
      database_.Add(L"Serie", {{L"AssNr", assortment}, {L"SerieCode", code}});
    for (const auto& [serie, code] :
         {std::pair(1, L"HEA 100"), std::pair(1, L"hea 120"), std::pair(2, L"IPE 80"),
          std::pair(3, L"Pl-10"), std::pair(3, L"straße")})
      database_.Add(L"Article", {{L"fkSerie", serie}, {L"Code", code}});
    for (int article = 1; article <= 5; ++article)
      for (int supplier = 1; supplier <= 2; ++supplier)
        database_.Add(L"ArtPrice", {{L"fkSupplier", supplier},
                                    {L"fkArticle", article},
                                    {L"PriceDim", article + supplier / 10.0}});
  }

  // The keys of what a statement finds. It is run more than once, because the second run may find
  // its rows in another way.
  std::wstring Keys(const std::wstring& statement, const std::wstring& column) {
    std::wstring first = database_.Column(statement, column);
    EXPECT_EQ(database_.Column(statement, column), first);
    EXPECT_EQ(database_.Column(statement, column), first);
    return first;
  }

  TestDatabase database_;
};

INSTANTIATE_TEST_SUITE_P(WithAndWithoutIndexes, QueryTest,
                         testing::Values(Indexes::kNone, Indexes::kOnCodesAndKeys));

TEST_P(QueryTest, TestsSelectTheSameRows) {
  const std::pair<const wchar_t*, const wchar_t*> cases[] = {
      {L"Code='HEA 100'", L"1"},
      {L"Code = 'Hea 120  '", L"2"},
      {L"Code = \"strasse\"", L"5"},
      {L"Code = 'Pl10'", L""},
      {L"Code='pl-10'", L"4"},
      {L"Code = 'HEA\u4e00'", L""},
      {L"Code = ''", L""},
      {L"fkSerie = 1", L"1,2"},
      {L"1 = fkSerie", L"1,2"},
      {L"fkSerie = 1.5", L""},
      {L"fkSerie = 99999999999", L""},
      {L"Article.fkSerie = 3 AND Article.Code = 'PL-10'", L"4"},
      {L"fkSerie = 3 AND fkSerie = 1", L""},
      {L"fkSerie > 1", L"3,4,5"},
      {L"2 > fkSerie", L"1,2"},
      {L"fkSerie <> 1 AND ID <= 4", L"3,4"},
      {L"Code >= 'ipe 80'", L"3,4,5"},
      {L"fkSerie = ID", L"1"},
      {L"Description = 'x'", L""},
      {L"Description <> 'x'", L""},
      {L"ID IN (SELECT fkArticle FROM ArtPrice WHERE PriceDim > 4.15)", L"4,5"},
      {L"ID IN (SELECT fkArticle FROM ArtPrice WHERE fkSupplier = 9)", L""},
      {L"Code IN (SELECT Code FROM Article WHERE ID < 3)AND fkSerie=1", L"1,2"},
  };
  for (const auto& [tests, ids] : cases) {
    SCOPED_TRACE(testing::PrintToString(tests));
    EXPECT_EQ(Keys(L"SELECT * FROM Article WHERE " + std::wstring(tests), L"ID"), ids);
  }
  EXPECT_EQ(Keys(L"SELECT * FROM ArtPrice WHERE fkArticle = 4 AND fkSupplier = 2", L"PriceDim"),
            L"4.2");
  EXPECT_EQ(Keys(L"SELECT * FROM ArtPrice WHERE fkSupplier = 2", L"fkArticle"), L"1,2,3,4,5");
}

TEST_P(QueryTest, TransientIndexesFollowEveryChange) {
  const std::wstring statement = L"SELECT * FROM Article WHERE Description = 'x' AND fkSerie = 1";
  EXPECT_EQ(Keys(statement, L"ID"), L"");
  Recordset rows;
  rows.Open(L"Article", database_.connection(), CursorType::kDynamic, LockType::kOptimistic);
  rows(L"Description") = L"X";
  rows.Update();
  EXPECT_EQ(Keys(statement, L"ID"), L"1");
  database_.Add(L"Article", {{L"Code", L"new"}, {L"Description", L"x "}, {L"fkSerie", 1}});
  EXPECT_EQ(Keys(statement, L"ID"), L"1,6");
  rows(L"fkSerie") = 2;
  rows.Update();
  EXPECT_EQ(Keys(statement, L"ID"), L"6");
  rows.Close();
  rows.Open(statement, database_.connection(), CursorType::kDynamic, LockType::kOptimistic);
  rows.Delete();
  EXPECT_EQ(Keys(statement, L"ID"), L"");
}

TEST_P(QueryTest, OrderLimitAndDistinctRows) {
  EXPECT_EQ(Keys(L"SELECT * FROM Article ORDER BY Code DESC", L"ID"), L"5,4,3,2,1");
  EXPECT_EQ(Keys(L"SELECT * FROM Article ORDER BY fkSerie DESC, ID", L"ID"), L"4,5,3,1,2");
  EXPECT_EQ(Keys(L"SELECT TOP 1 * FROM Article", L"ID"), L"1");
  EXPECT_EQ(Keys(L"SELECT TOP 3 * FROM Article ORDER BY fkSerie DESC", L"ID"), L"4,5,3");
  EXPECT_EQ(Keys(L"SELECT TOP 4 * FROM Article ORDER BY fkSerie DESC", L"ID"), L"4,5,3,1,2");
  database_.Add(L"Article", {{L"Code", L"none"}});
  EXPECT_EQ(Keys(L"SELECT TOP 2 * FROM Article ORDER BY fkSerie", L"ID"), L"6,1,2");
  const std::wstring join =
      L" Article.* FROM Article INNER JOIN ArtPrice ON Article.ID = ArtPrice.fkArticle";
  EXPECT_EQ(Keys(L"SELECT" + join + L" ORDER BY ID", L"ID"), L"1,1,2,2,3,3,4,4,5,5");
  EXPECT_EQ(Keys(L"SELECT DISTINCTROW" + join + L" ORDER BY ID", L"ID"), L"1,2,3,4,5");
  EXPECT_EQ(Keys(L"SELECT  Serie.SerieCode, Article.Code FROM Serie INNER JOIN (Article INNER JOIN "
                 L"ArtPrice ON Article.ID = ArtPrice.fkArticle) ON Serie.SerieNr = "
                 L"Article.fkSerie WHERE ArtPrice.fkSupplier = 1 ORDER BY ArtPrice.PriceDim DESC;",
                 L"SerieCode"),
            L"Plate,Plate,IPE,HEA,HEA");
}

// Every clause, keywords in any case, blanks only where they are needed.
TEST_P(QueryTest, AStatementWithEveryClause) {
  EXPECT_EQ(Keys(L" select  DistinctRow top 3 Article.*, [Serie].[AssNr] , PriceDim from (Article "
                 L"inner join Serie on Serie.SerieNr=Article.fkSerie)\r\ninner join ArtPrice on "
                 L"ArtPrice.fkArticle = Article.ID where Article.ID In(SELECT ID FROM Article)AND"
                 L"\"it\"\"s\"<>Code and PriceDim>=-1.5e2 and fkSupplier<2 order by AssNr desc, "
                 L"Article.ID asc ;",
                 L"Code"),
            L"Pl-10,straße,HEA 100");
}

TEST_P(QueryTest, WhatIsNotUnderstoodOrDoesNotFitIsRefused) {
  const auto repeat = [](std::wstring_view part) {
    std::wstring text;
    for (int i = 0; i < 100'000; ++i) text += part;
    return text;
  };
  const struct {
    std::wstring source;
    int number;
    std::wstring description{};  // empty: not compared
  } cases[] = {
      // Names and types.
      {L"SELECT * FROM Suplier", 3078},
      {L"Suplier", 3078},
      {L"Selection", 3078},
      {L"SELECT * FROM MSysObjects", 3112},
      {L"SELECT A, b, a FROM Article WHERE c = 1", 3061, L"Too few parameters. Expected 3."},
      {L"SELECT * FROM Article WHERE Code = ABC", 3061},
      {L"SELECT Serie.* FROM Article", 3061},
      {L"SELECT * FROM Article WHERE Serie.AssNr = 1", 3061},
      {L"SELECT * FROM Article ORDER BY Price", 3061},
      {L"SELECT ID FROM Article INNER JOIN Kinds ON Article.ID = Kinds.ID", 3079},
      {L"SELECT * FROM Article WHERE Code = 5", 3464},
      {L"SELECT * FROM Article WHERE ID = '5'", 3464},
      {L"SELECT * FROM Article WHERE ID = Code", 3464},
      {L"SELECT * FROM Article WHERE ID IN (SELECT Code FROM Article)", 3464},
      {L"SELECT * FROM Article WHERE ID IN (SELECT * FROM Serie)", 3306},
      {L"SELECT * FROM Article INNER JOIN Serie ON Article.Code = Serie.AssNr", 3615},
      {L"SELECT * FROM Article INNER JOIN Serie ON Article.ID = Article.fkSerie", 3296},
      {L"SELECT * FROM Article INNER JOIN Article ON Article.ID = Article.fkSerie", 3296},
      // Statements of another kind, and none.
      {L"DELETE FROM Supplier", 3129},
      {L"UPDATE Supplier SET x = 1", 3144},
      {L"INSERT INTO x", 3134},
      {L"", 3129},
      {L"'", 3129},
      // Expressions.
      {L"SELECT * FROM Supplier WHERE Code='O'Brien'", 3075,
       L"Syntax error (missing operator) in query expression 'Code='O'Brien''."},
      {L"SELECT * FROM Serie WHERE SerieCode = 'a'b' ORDER BY SerieCode", 3075,
       L"Syntax error (missing operator) in query expression 'SerieCode = 'a'b' ORDER BY "
       L"SerieCode'."},
      {L"SELECT * FROM Serie WHERE AssNr = 1 2 ORDER BY SerieCode;", 3075,
       L"Syntax error (missing operator) in query expression 'AssNr = 1 2'."},
      {L"SELECT * FROM Supplier WHERE Code='O''", 3075,
       L"Syntax error in string in query expression 'Code='O'''."},
      {L"SELECT * FROM Supplier WHERE ID = 1)", 3075,
       L"Syntax error (missing operator) in query expression 'ID = 1'."},
      {L"SELECT * FROM Supplier WHERE Code LIKE 'a*'", 3075},
      {L"SELECT * FROM Supplier WHERE Code='a' OR Code='b'", 3075},
      {L"SELECT * FROM Supplier WHERE", 3075},
      {L"SELECT * FROM Supplier WHERE ID = -'1'", 3075},
      {L"SELECT * FROM Supplier WHERE 1 = 1", 3075},
      {L"SELECT * FROM Supplier WHERE ID IN (1, 2)", 3075},
      {L"SELECT * FROM A WHERE ID IN (SELECT ID FROM B WHERE Code = 'x'y)", 3075},
      {L"SELECT * FROM Supplier WHERE Supplier. = 1", 3075},
      {L"SELECT * FROM Supplier WHERE ID = 1e999", 3075},
      {L"SELECT * FROM Supplier WHERE [] = 1", 3075},
      {L"SELECT * FROM A INNER JOIN B ON A.x = B.x INNER JOIN C ON B.y = C.y", 3075},
      // The other clauses.
      {L"SELECT * FROM", 3131, L"Syntax error in FROM clause."},
      {L"SELECT * FROM A, B", 3131},
      {L"SELECT * FROM A LEFT JOIN B ON A.x = B.x", 3131},
      {L"SELECT * FROM (A INNER JOIN B ON A.x = B.x", 3131},
      {L"SELECT * FROM A INNER JOIN B ON A.x > B.x", 3135, L"Syntax error in JOIN operation."},
      {L"SELECT * FROM A ORDER BY", 3138, L"Syntax error in ORDER BY clause."},
      {L"SELECT * FROM A ORDER BY x x", 3138},
      {L"SELECT DISTINCT x FROM A", 3141},
      {L"SELECT x, FROM A", 3141},
      {L"SELECT TOP 0 * FROM A", 3141},
      {L"SELECT TOP 1.5 * FROM A", 3141},
      {L"SELECT *", 3067, L"Query input must contain at least one table or query."},
      {L"SELECT * FROM A; SELECT * FROM B", 3142, L"Characters found after end of SQL statement."},
      {L"SELECT * FROM " + repeat(L"(") + L"A", 3360, L"Query is too complex."},
      {L"SELECT * FROM A WHERE x IN (" + repeat(L"SELECT x FROM A WHERE x IN ("), 3360},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.source.substr(0, 80)));
    Recordset rows;
    try {
      rows.Open(c.source, database_.connection());
      ADD_FAILURE() << "no error";
    } catch (const text::RuntimeError& error) {
      EXPECT_EQ(error.number(), c.number);
      EXPECT_TRUE(c.description.empty() || error.description() == c.description)
          << testing::PrintToString(error.description());
    }
    EXPECT_FALSE(rows.IsOpen());
  }
}

}  // namespace
}  // namespace database
