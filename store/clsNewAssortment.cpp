// One record of the section [NEW ASSORTMENT] and how it is written into the product table.
#include "store/clsNewAssortment.h"

#include "app/modShared.h"
#include "platform/database/recordset.h"
#include "store/ProductTableSchema.h"
#include "store/RecordWriting.h"

namespace columns = ProductTable::Assortment;

void clsNewAssortment::SaveNewAssortment(database::Connection& vConnection, bool& vResult) {
  vResult = false;
  try {
    database::Recordset assortment;
    assortment.Open(L"SELECT * FROM Assortment WHERE AssCode='" + AssCode + L"'", vConnection,
                    database::CursorType::kForwardOnly, database::LockType::kOptimistic);
    if (assortment.Eof()) {
      assortment.AddNew();
      ResultText = LanguageText(ResultTexts::kAssortmentAdded);
      assortment(columns::kFabrCode) = FabrCode;
      if (!Remark.empty()) assortment(columns::kRemark) = Remark;
    } else {
      ResultText = LanguageText(ResultTexts::kAssortmentChanged);
    }
    assortment(columns::kAssCode) = AssCode;
    assortment(columns::kDescription) = Description;
    assortment(columns::kDimUnit) = DimUnit;
    assortment(columns::kPriceUnit) = PriceUnit;
    assortment(columns::kBasePriceGroups) = BasePriceGroups;
    assortment(columns::kDiscountGroups) = DiscountGroups;
    assortment(columns::kRights) = false;
    assortment.Update();
    vResult = true;
  } catch (...) {
    ResultText = ErrorResultText();
  }
}
