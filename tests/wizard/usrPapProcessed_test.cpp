// The processed-updates page: what it shows of the register, and in which order.
#include "wizard/usrPapProcessed.h"

#include <gmock/gmock.h>

#include "platform/text/date.h"
#include "store/modProductTable.h"
#include "tests/support/fixed_clock.h"
#include "tests/support/surface_test.h"
#include "updates/modSharedPapRegister.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class usrPapProcessedTest : public test_support::ProductTableTest {
 protected:
  usrPapProcessedTest() { settings.objClock = &clock; }

  void Process(const std::wstring& vName, int vSecond) {
    clock.now = text::ToDayNumber({2026, 2, 3, 9, 5, vSecond});
    clsOrvPap pap;
    pap.FilePath = folder.Text(L"PAP32") + L"\\" + vName;
    pap.PapDate = text::DateSerial(2026, 1, 31);
    pap.PrcDate = text::DateSerial(2026, 1, 5);
    pap.AssortmentDescription = L"Assortment of " + vName;
    pap.SupplierDescription = L"Supplier";
    ASSERT_TRUE(SetPapProcessed(product_table, pap, true));
  }
  std::vector<std::wstring> Shown(std::size_t vIndex) const {
    const controls::ListItem& item = page.lvPrc.Item(vIndex);
    std::vector<std::wstring> shown = {item.key, item.text};
    shown.insert(shown.end(), item.sub_items.begin(), item.sub_items.end());
    return shown;
  }

  test_support::FixedClock clock{0};
  usrPapProcessed page;
};

TEST_F(usrPapProcessedTest, ShowsTheRegisterOldestFirst) {
  page.Init(product_table);
  EXPECT_THAT(page.lvPrc.Columns(), ElementsAre(L"#1000", L"#1001", L"#1002", L"#1003"));
  EXPECT_TRUE(page.lvPrc.Items().empty()) << "nothing was ever applied";

  Process(L"b.PRC", 59);
  Process(L"c.PRC", 0);
  Process(L"a.PRC", 30);
  for (int visit = 0; visit < 2; ++visit) {
    page.Init(product_table);
    ASSERT_EQ(page.lvPrc.Items().size(), 3U);
    EXPECT_THAT(Shown(0), ElementsAre(L"1P", L"2026-01-05", L"Assortment of c.PRC", L"Supplier",
                                      L"2026-02-03 09:05"));
    EXPECT_EQ(Shown(1)[2], L"Assortment of a.PRC");
    EXPECT_EQ(Shown(2)[4], L"2026-02-03 09:05") << "within one minute the order tells";
  }
  EXPECT_EQ(ProductConnection, nullptr);
  EXPECT_FALSE(page.lvPrc.CheckBoxes());
  EXPECT_TRUE(prompt.messages.empty());

  AddRow(L"PriceUpdates", {{L"FileName", L"x.PRC"}});  // without its dates
  CloseConnection();
  page.Init(product_table);
  EXPECT_TRUE(page.lvPrc.Items().empty());
  EXPECT_THAT(Boxes(), ElementsAre(HasSubstr("GetProcessedCollection")));
}

}  // namespace
