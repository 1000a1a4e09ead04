// Statements over a small product table: the same answers with indexes and without, and the errors
// of names and types.
#include <gtest/gtest.h>

#include <algorithm>

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
  struct Case {
    const wchar_t* tests;
    const wchar_t* ids;
  };
  const Case cases[] = {
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
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << testing::PrintToString(c.tests));
    EXPECT_EQ(Keys(L"SELECT * FROM Article WHERE " + std::wstring(c.tests), L"ID"), c.ids);
  }
  EXPECT_EQ(Keys(L"SELECT * FROM ArtPrice WHERE fkArticle = 4 AND fkSupplier = 2", L"PriceDim"),
            L"4.2");
  std::wstring articles = Keys(L"SELECT * FROM ArtPrice WHERE fkSupplier = 2", L"fkArticle");
  EXPECT_EQ(articles, L"1,2,3,4,5");
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

TEST_P(QueryTest, TheImportsStatements) {
  EXPECT_EQ(Keys(L"SELECT * FROM ArtPrice WHERE fkArticle IN (SELECT Article.ID FROM Serie INNER "
                 L"JOIN Article ON Serie.SerieNr = Article.fkSerie WHERE Serie.AssNr=1)AND "
                 L"fkSupplier = 2",
                 L"fkArticle"),
            L"1,2,3");
  EXPECT_EQ(
      Keys(L"SELECT Article.ID, Article.Code FROM Article WHERE ID IN (SELECT Article.ID FROM "
           L"Serie INNER JOIN Article ON Serie.SerieNr = Article.fkSerie WHERE "
           L"Serie.AssNr=2)",
           L"Code"),
      L"Pl-10,straße");
  EXPECT_EQ(Keys(L"SELECT DISTINCTROW Article.* From Article Where Article.fkSerie = 1 ORDER BY "
                 L"Article.Code",
                 L"ID"),
            L"1,2");
  EXPECT_EQ(Keys(L"SELECT  Serie.SerieCode, Article.Code FROM Serie INNER JOIN (Article INNER JOIN "
                 L"ArtPrice ON Article.ID = ArtPrice.fkArticle) ON Serie.SerieNr = "
                 L"Article.fkSerie WHERE ArtPrice.fkSupplier = 1 ORDER BY ArtPrice.PriceDim DESC;",
                 L"SerieCode"),
            L"Plate,Plate,IPE,HEA,HEA");
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
}

TEST_P(QueryTest, NamesAndTypesThatDoNotFitAreRefused) {
  const std::pair<const wchar_t*, int> cases[] = {
      {L"SELECT * FROM Suplier", 3078},
      {L"Suplier", 3078},
      {L"SELECT * FROM MSysObjects", 3112},
      {L"SELECT Cod FROM Article", 3061},
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
  };
  for (const auto& c : cases) {
    Recordset rows;
    EXPECT_EQ(ErrorNumber([&] { rows.Open(c.first, database_.connection()); }), c.second)
        << testing::PrintToString(c.first);
    EXPECT_FALSE(rows.IsOpen());
  }
  try {
    Recordset rows;
    rows.Open(L"SELECT A, b, a FROM Article WHERE c = 1", database_.connection());
  } catch (const text::RuntimeError& error) {
    EXPECT_EQ(error.description(), L"Too few parameters. Expected 3.");
  }
}

}  // namespace
}  // namespace database
