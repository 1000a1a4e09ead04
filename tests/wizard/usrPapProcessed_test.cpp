// The processed-updates page: what it shows of the register, and in which order.
#include "wizard/usrPapProcessed.h"

#include <gmock/gmock.h>

#include "platform/text/date.h"
#include "store/modProductTable.h"
#include "tests/support/surface_test.h"
#include "updates/modSharedPapRegister.h"

namespace {

using testing::ElementsAre;

class usrPapProcessedTest : public test_support::ProductTableTest {};

TEST_F(usrPapProcessedTest, ShowsTheRegisterOldestFirst) {
  usrPapProcessed page;
  page.Init(product_table);
  EXPECT_THAT(page.lvPrc.Columns(), ElementsAre(L"#1000", L"#1001", L"#1002", L"#1003"));
  EXPECT_TRUE(page.lvPrc.Items().empty()) << "nothing was ever applied";

  for (const int second : {59, 0, 30}) {
    clock.now = text::ToDayNumber({2026, 2, 3, 9, 5, second});
    clsOrvPap pap;
    pap.FilePath = L"PAP32\\" + std::to_wstring(second);
    pap.PrcDate = text::DateSerial(2026, 1, 5);
    pap.AssortmentDescription = L"Assortment " + std::to_wstring(second);
    pap.SupplierDescription = L"Supplier";
    ASSERT_TRUE(SetPapProcessed(product_table, pap, true));
  }
  page.Init(product_table);
  page.Init(product_table);
  ASSERT_EQ(page.lvPrc.Items().size(), 3U);
  EXPECT_EQ(page.lvPrc.Item(0).key, L"1P");
  EXPECT_EQ(page.lvPrc.Item(0).text, L"2026-01-05");
  EXPECT_THAT(page.lvPrc.Item(0).sub_items,
              ElementsAre(L"Assortment 0", L"Supplier", L"2026-02-03 09:05"));
  EXPECT_EQ(page.lvPrc.Item(1).sub_items[0], L"Assortment 30");
  EXPECT_EQ(page.lvPrc.Item(2).sub_items[2], L"2026-02-03 09:05") << "in a minute the order tells";
  EXPECT_EQ(ProductConnection, nullptr);
  EXPECT_TRUE(prompt.messages.empty());
}

}  // namespace
