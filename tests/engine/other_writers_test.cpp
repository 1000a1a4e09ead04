// The demo's updates applied to product tables that another program made: whatever indexes, rules
// and column orders they have, the outcome is that of a new product table.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "demo/update_files.h"
#include "engine/clsOrvPap.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "store/modProductTable.h"
#include "tests/support/surface_test.h"
#include "updates/modSharedPap.h"

namespace {

namespace fs = std::filesystem;

class OtherWritersTest : public test_support::ProductTableTest {
 protected:
  // What an import shows and the rows that the demo's updates are about, without keys that may
  // differ.
  struct Outcome {
    std::vector<std::string> shown;
    std::vector<std::string> rows;
  };

  Outcome ApplyEverything() {
    Outcome outcome;
    fs::create_directories(folder / "opening");
    fs::create_directories(folder / "PAP32");
    for (const auto& files : {demo::WriteOpeningUpdates(folder.Text("opening")),
                              demo::WriteUpdates(folder.Text("PAP32"))}) {
      for (const std::wstring& path : files) {
        clsOrvPap update;
        ReadPapHeader(path, update);
        update.ShowListMessage = [&](const std::wstring& message, const std::wstring& detail,
                                     bool show, bool error) {
          if (show || error) outcome.shown.push_back(text::WideToUtf8(message + L"|" + detail));
        };
        update.UpdatePT(product_table);
      }
    }
    ProductConnection.reset();
    outcome.rows = DemoRows();
    CloseConnection();
    return outcome;
  }

  // Puts a copy of another product table in the place of the one in hand.
  void UseProductTable(const fs::path& other) {
    CloseConnection();
    const fs::path path = files::ToPath(product_table);
    fs::remove(path);
    fs::copy_file(other, path);
    fs::permissions(path, fs::perms::owner_write, fs::perm_options::add);
  }

 private:
  // The demo suppliers' discounts and prices of articles, in no order.
  std::vector<std::string> DemoRows() {
    std::vector<std::string> all;
    for (const wchar_t* supplier : {L"VELDHAVEN", L"BRUGMEER", L"OOSTRAND"}) {
      const std::wstring of_supplier = std::wstring(L" WHERE Supplier.Code = '") + supplier + L"'";
      for (const auto& rows :
           {Rows(L"SELECT Discount.* FROM Supplier INNER JOIN Discount ON Supplier.ID = "
                 L"Discount.fkSupplier" +
                     of_supplier,
                 {L"Code", L"Description", L"DiscPercA", L"DiscPercB", L"DiscPercC"}),
            Rows(L"SELECT Article.Code, Article.Description, ArtPrice.* FROM Supplier INNER JOIN "
                 L"(Article INNER JOIN ArtPrice ON Article.ID = ArtPrice.fkArticle) ON Supplier.ID "
                 L"= ArtPrice.fkSupplier" +
                     of_supplier,
                 {L"Code", L"Description", L"PriceDim", L"OverPrice", L"SawPrice", L"BlastPrice",
                  L"CoatPrice", L"ArtNrSupplier"})}) {
        all.insert(all.end(), rows.begin(), rows.end());
      }
    }
    std::sort(all.begin(), all.end());
    return all;
  }
};

TEST_F(OtherWritersTest, UpdatesHaveTheSameOutcome) {
  const char* shared = std::getenv("ORVPAP_SHARED");
  if (shared == nullptr) GTEST_SKIP() << "ORVPAP_SHARED names no folder with product tables";
  const Outcome expected = ApplyEverything();
  ASSERT_GT(expected.rows.size(), 400u);
  for (const char* name : {"linked.pt", "loose.pt", "large.pt"}) {
    SCOPED_TRACE(name);
    UseProductTable(fs::path(shared) / "product-tables" / name);
    const Outcome outcome = ApplyEverything();
    EXPECT_EQ(outcome.shown, expected.shown);
    EXPECT_EQ(outcome.rows, expected.rows);
    EXPECT_THAT(prompt.messages, testing::IsEmpty());
  }
}

}  // namespace
