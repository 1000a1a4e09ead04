// One record of the section [NEW SUPPLIER] and how it is written into the product table.
#include "store/clsNewSupplier.h"

#include "app/modShared.h"
#include "platform/database/recordset.h"
#include "store/ProductTableSchema.h"
#include "store/RecordWriting.h"

namespace columns = ProductTable::Supplier;

void clsNewSupplier::SaveNewSupplier(database::Connection& vConnection, bool& vResult) {
  vResult = false;
  try {
    database::Recordset supplier;
    supplier.Open(L"SELECT * FROM Supplier WHERE Code='" + Code + L"'", vConnection,
                  database::CursorType::kForwardOnly, database::LockType::kOptimistic);
    if (supplier.Eof()) {
      supplier.AddNew();
      ResultText = LanguageText(ResultTexts::kSupplierAdded);
    } else {
      ResultText = LanguageText(ResultTexts::kSupplierChanged);
    }
    supplier(columns::kCode) = Code;
    supplier(columns::kDescription) = Description;
    supplier(columns::kToA) = ToA;
    supplier(columns::kToB) = ToB;
    supplier(columns::kRights) = false;
    supplier.Update();
    vResult = true;
  } catch (...) {
    ResultText = ErrorResultText();
  }
}
