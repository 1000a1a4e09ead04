// One record of the section [UPDATE BASEPRICE] and how it is written into the product table.
#include "store/clsUpdateBasePrice.h"

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "store/ProductTableSchema.h"
#include "store/RecordWriting.h"

namespace group = ProductTable::BPG;
namespace step = ProductTable::BasePrice;

void clsUpdateBasePrice::SaveBasePrice(database::Recordset& vBPG, database::Recordset& vBasePrice,
                                       std::int32_t vSupplierID, bool& vResult) {
  vResult = false;
  try {
    if (FindInAll(vBPG, CodeCriterion(Code))) {
      ResultText = LanguageText(ResultTexts::kBasePriceGroupChanged);
    } else {
      vBPG.AddNew();
      ResultText = LanguageText(ResultTexts::kBasePriceGroupAdded);
    }
    vBPG(group::kfkSupplier) = vSupplierID;
    vBPG(group::kCode) = Code;
    vBPG(group::kDescription) = Description;
    vBPG(group::kRights) = false;
    vBPG(group::kDimUnit) = DimUnit;
    vBPG(group::kPriceUnit) = PriceUnit;
    vBPG.Update();

    vBasePrice.AddNew();
    vBasePrice(step::kID) = vBPG(group::kID).Value();
    vBasePrice(step::kBegin) = Begin;
    vBasePrice(step::kEnd) = End;
    vBasePrice(step::kBasePrice) = BasePrice;
    vBasePrice.Update();
    vResult = true;
  } catch (...) {
    ResultText = ErrorResultText();
  }
}

void clsUpdateBasePrice::DeleteBasePrice(database::Recordset& vBPG, bool& vResult) {
  vResult = false;
  ResultText.clear();
  try {
    if (!FindInAll(vBPG, CodeCriterion(Code))) return;
    database::Recordset steps;
    steps.Open(
        L"SELECT * FROM BasePrice WHERE BasePrice.ID = " + NullToString(vBPG(group::kID).Value()),
        vBPG.ActiveConnection(), database::CursorType::kDynamic, database::LockType::kOptimistic);
    while (!steps.Eof()) {
      steps.Delete();
      steps.MoveNext();
    }
    vResult = true;
  } catch (...) {
    ResultText = ErrorResultText();
  }
}
