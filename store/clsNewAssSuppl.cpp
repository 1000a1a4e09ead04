// One record of the section [NEW ASSSUPPL] and how it is written into the product table.
#include "store/clsNewAssSuppl.h"

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "platform/database/recordset.h"
#include "store/ProductTableSchema.h"
#include "store/RecordWriting.h"

namespace columns = ProductTable::Ass_Suppl;

namespace {

// The number in `vColumn` of the first row that the statement selects; 0 when it selects none.
std::int32_t NumberOf(const std::wstring& vStatement, const std::wstring& vColumn,
                      database::Connection& vConnection) {
  database::Recordset found;
  found.Open(vStatement, vConnection, database::CursorType::kForwardOnly,
             database::LockType::kReadOnly);
  return found.Eof() ? 0 : NullToLong(found(vColumn).Value());
}

}  // namespace

void clsNewAssSuppl::SaveNewAssSuppl(database::Connection& vConnection, bool& vResult) {
  vResult = false;
  try {
    const std::int32_t ass_nr =
        NumberOf(L"SELECT AssNr FROM Assortment WHERE AssCode='" + AssCode + L"'",
                 ProductTable::Assortment::kAssNr, vConnection);
    if (ass_nr == 0) ResultText = RefusalText(ResultTexts::kLinkWithoutAssortment, AssCode);

    const std::int32_t supplier_id =
        NumberOf(L"SELECT ID FROM Supplier WHERE Code='" + SupplierCode + L"'",
                 ProductTable::Supplier::kID, vConnection);
    if (supplier_id == 0) ResultText = RefusalText(ResultTexts::kLinkWithoutSupplier, SupplierCode);

    if (ass_nr == 0 || supplier_id == 0) return;
    SaveLink(vConnection, ass_nr, supplier_id);
    vResult = true;
  } catch (...) {
    ResultText = ErrorResultText();
  }
}

void clsNewAssSuppl::SaveLink(database::Connection& vConnection, std::int32_t vAssNr,
                              std::int32_t vSupplierID) {
  database::Recordset link;
  link.Open(L"SELECT * FROM Ass_Suppl WHERE fkAssNr = " + std::to_wstring(vAssNr) +
                L" AND fkSupplierID = " + std::to_wstring(vSupplierID),
            vConnection, database::CursorType::kDynamic, database::LockType::kOptimistic);
  if (link.Eof()) {
    link.AddNew();
    link(columns::kfkAssNr) = vAssNr;
    link(columns::kfkSupplierID) = vSupplierID;
    ResultText = LanguageText(ResultTexts::kLinkAdded);
  } else {
    ResultText = LanguageText(ResultTexts::kLinkChanged);
  }
  link(columns::kPrcDiscountType) = PrcDiscountType;
  link(columns::kRights) = false;
  link.Update();
}
