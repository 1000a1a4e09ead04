// Product tables of another writer: what the import asks of them, against a plain walk.
//
// Runs where the environment variable ORVPAP_SHARED names the folder that holds product-tables.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>

#include "platform/database/recordset.h"
#include "platform/files/paths.h"
#include "platform/text/conversion.h"
#include "tests/platform/database/test_database.h"

namespace database {
namespace {

class ProductTablesTest : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    const char* shared = std::getenv("ORVPAP_SHARED");
    if (shared == nullptr) GTEST_SKIP() << "ORVPAP_SHARED is not set";
    const auto copy = folder_ / GetParam();
    std::filesystem::copy_file(std::filesystem::path(shared) / "product-tables" / GetParam(), copy);
    std::filesystem::permissions(copy, std::filesystem::perms::owner_all);
    OpenConnection(connection_, files::ToText(copy), L"quorbelintax");
  }

  std::int32_t Number(Recordset& rows, const wchar_t* field) {
    return text::ToInt32(rows(field).Value()).value_or(0);
  }

  std::size_t Count(const std::wstring& statement) {
    Recordset rows;
    rows.Open(statement, connection_, CursorType::kKeyset);
    return static_cast<std::size_t>(rows.RecordCount());
  }

  test_support::TemporaryFolder folder_;
  Connection connection_;
};

INSTANTIATE_TEST_SUITE_P(Files, ProductTablesTest,
                         testing::Values("linked.pt", "loose.pt", "large.pt"));

TEST_P(ProductTablesTest, CodesAreFoundByStatementAndByFind) {
  constexpr int kStep = 13;  // every so many rows are enough
  Recordset walked;
  walked.Open(L"Article", connection_);
  Recordset searched;
  searched.Open(L"SELECT Article.ID, Article.Code FROM Article", connection_, CursorType::kDynamic,
                LockType::kOptimistic);
  int number = 0;
  for (; !walked.Eof(); walked.MoveNext()) {
    if (number++ % kStep != 0) continue;
    const std::wstring code = text::ToText(walked(L"Code").Value());
    if (code.find(L'\'') != std::wstring::npos) continue;
    SCOPED_TRACE(testing::PrintToString(code));
    Recordset found;
    found.Open(L"SELECT * FROM Article WHERE Code = '" + code + L"'", connection_,
               CursorType::kForwardOnly, LockType::kOptimistic, -1);
    ASSERT_FALSE(found.Eof());
    EXPECT_EQ(found(L"ID").Value(), walked(L"ID").Value());
    searched.MoveFirst();
    searched.Find(L"Code = '" + code + L"'");
    ASSERT_FALSE(searched.Eof());
    EXPECT_EQ(searched(L"ID").Value(), walked(L"ID").Value());
  }
  EXPECT_GT(number, 200);
}

TEST_P(ProductTablesTest, JoinsAndSubqueriesFindWhatAWalkFinds) {
  std::map<std::int32_t, std::int32_t> assortment_of_serie;
  std::map<std::int32_t, std::int32_t> assortment_of_article;
  Recordset rows;
  for (rows.Open(L"Serie", connection_); !rows.Eof(); rows.MoveNext())
    assortment_of_serie[Number(rows, L"SerieNr")] = Number(rows, L"AssNr");
  rows.Close();
  for (rows.Open(L"Article", connection_); !rows.Eof(); rows.MoveNext())
    assortment_of_article[Number(rows, L"ID")] = assortment_of_serie[Number(rows, L"fkSerie")];
  rows.Close();
  std::map<std::pair<std::int32_t, std::int32_t>, std::size_t> prices;  // assortment, supplier
  for (rows.Open(L"ArtPrice", connection_); !rows.Eof(); rows.MoveNext())
    ++prices[{assortment_of_article[Number(rows, L"fkArticle")], Number(rows, L"fkSupplier")}];
  rows.Close();

  EXPECT_EQ(Count(L"SELECT Supplier.Code, Assortment.AssCode FROM Supplier INNER JOIN (Assortment "
                  L"INNER JOIN Ass_Suppl ON Assortment.AssNr = Ass_Suppl.fkAssNr) ON Supplier.ID = "
                  L"Ass_Suppl.fkSupplierID;"),
            Count(L"Ass_Suppl"));
  ASSERT_FALSE(prices.empty());
  for (const auto& [pair, count] : prices) {
    const std::wstring statement =
        L"SELECT * FROM ArtPrice WHERE fkArticle IN (SELECT Article.ID FROM Serie INNER JOIN "
        L"Article ON Serie.SerieNr = Article.fkSerie WHERE Serie.AssNr=" +
        std::to_wstring(pair.first) + L")AND fkSupplier = " + std::to_wstring(pair.second);
    EXPECT_EQ(Count(statement), count);
    EXPECT_EQ(Count(statement), count) << "the second time";
  }
}

}  // namespace
}  // namespace database
