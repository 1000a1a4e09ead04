// One record of the section [NEW DISCOUNT] and how it is written into the product table.
#include "store/clsNewDiscount.h"

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "platform/database/recordset.h"
#include "store/ProductTableSchema.h"
#include "store/RecordWriting.h"

namespace columns = ProductTable::Discount;

void clsNewDiscount::SaveNewDiscount(database::Connection& vConnection, std::int32_t vSupplierID,
                                     bool& vResult) {
  vResult = false;
  try {
    database::Recordset discount;
    discount.Open(L"SELECT * FROM Discount WHERE Code = '" + Code + L"'", vConnection,
                  database::CursorType::kForwardOnly, database::LockType::kOptimistic);
    if (discount.Eof()) {
      discount.AddNew();
      discount(columns::kfkSupplier) = vSupplierID;
      discount(columns::kDiscPercA) = DiscPercA;
      discount(columns::kDiscPercB) = DiscPercB;
      discount(columns::kDiscPercC) = DiscPercC;
      ResultText = LanguageText(ResultTexts::kDiscountAdded);
    } else {
      while (!discount.Eof() && NullToLong(discount(columns::kfkSupplier).Value()) != vSupplierID) {
        discount.MoveNext();
      }
      if (discount.Eof()) {
        ResultText = RefusalText(ResultTexts::kDiscountOfOtherSupplier, Code);
        return;
      }
      ResultText = LanguageText(ResultTexts::kDiscountChanged);
    }
    discount(columns::kCode) = Code;
    discount(columns::kDescription) = Description;
    discount.Update();
    vResult = true;
  } catch (...) {
    ResultText = ErrorResultText();
  }
}
