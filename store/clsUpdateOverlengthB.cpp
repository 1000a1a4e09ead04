// One record of the section [UPDATE OVERLENGTHBONUS] and how it is written into the product table.
#include "store/clsUpdateOverlengthB.h"

#include "store/ProductTableSchema.h"
#include "store/RecordWriting.h"

namespace columns = ProductTable::OverlengthBonus;

void clsUpdateOverlengthB::SaveOverlengthBonus(database::Recordset& vOverlengthBonus,
                                               std::int32_t vSupplierID, bool& vResult) {
  vResult = false;
  try {
    vOverlengthBonus.AddNew();
    vOverlengthBonus(columns::kfkSupplier) = vSupplierID;
    vOverlengthBonus(columns::kBegin) = Begin;
    vOverlengthBonus(columns::kEnd) = End;
    vOverlengthBonus(columns::kPrice) = Price;
    vOverlengthBonus.Update();
    vResult = true;
  } catch (...) {
    ResultText = ErrorResultText();
  }
}
