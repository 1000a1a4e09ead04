// How a price update is brought into the product table: the order of the steps, and those of them
// that have no records of their own.
#include "engine/clsOrvPap.h"

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "engine/RecordStep.h"
#include "platform/database/recordset.h"
#include "platform/text/strings.h"
#include "store/ProductTableSchema.h"
#include "store/RecordWriting.h"
#include "store/modProductTable.h"

namespace {

using database::CursorType;
using database::LockType;

// A date that the file does not give clears the stored one.
text::Variant NullWhenUnset(double vDate) {
  return vDate == text::kUnsetDate ? text::Variant() : text::Variant(text::Date{vDate});
}

}  // namespace

bool clsOrvPap::UpdatePT(const std::wstring& vProductTablePath) {
  try {
    // A file that cannot be read to its end was reported; what could be read is applied.
    GetPrcData();

    if (!OpenProductTable(vProductTablePath)) return false;
    if (ProductConnection->Connection) m_connection = ProductConnection->Connection;

    RaiseShowListMessage(LanguageText(ImportTexts::kUpdate), FilePath, true, false);
    RaiseShowListMessage(LanguageText(ImportTexts::kAssortment),
                         AssortmentCode + L" - " + AssortmentDescription, true, false);
    RaiseShowListMessage(LanguageText(ImportTexts::kSupplier),
                         SupplierCode + L" - " + SupplierDescription, true, false);

    // Without these there is nothing to hang the rest on.
    if (!SaveNewSuppliers() || !SaveNewAssortments() || !SaveNewAssSuppls() ||
        !FindAssortmentAndSupplier()) {
      return false;
    }

    // Each of these is done whatever became of the others.
    bool result = true;
    if (!SaveNewSeries()) result = false;
    if (!SaveNewArticles()) result = false;
    if (!SaveNewDiscounts()) result = false;
    if (!SaveBasePrices()) result = false;
    if (!SaveOverlengthBonuses()) result = false;
    if (!SavePriceData()) result = false;
    if (!SaveAssSupplDates()) result = false;

    RaiseShowListMessage(LanguageText(ImportTexts::kUpdate), LanguageText(ImportTexts::kFinished),
                         true, false);
    return result;
  } catch (...) {
    ShowErrorMessage(L"clsOrvPap.UpdatePT (Function)");
    RaiseErrorInHand();
    return false;
  }
}

bool clsOrvPap::FindAssortmentAndSupplier() {
  try {
    database::Recordset assortment;
    assortment.Open(L"Assortment", *m_connection, CursorType::kDynamic, LockType::kOptimistic);
    assortment.Find(L"AssCode='" + AssortmentCode + L"'");
    if (assortment.Eof()) {
      RaiseShowListMessage(
          LanguageText(ImportTexts::kRefused),
          text::ReplaceAll(LanguageText(ImportTexts::kAssortmentNotFound), L"%s", AssortmentCode),
          true, true);
      return false;
    }
    m_assNr = NullToLong(assortment(ProductTable::Assortment::kAssNr).Value());
    m_dimUnit = NullToByte(assortment(ProductTable::Assortment::kDimUnit).Value());

    database::Recordset supplier;
    supplier.Open(L"Supplier", *m_connection, CursorType::kDynamic, LockType::kOptimistic);
    supplier.Find(L"Code='" + SupplierCode + L"'");
    if (supplier.Eof()) {
      RaiseShowListMessage(
          LanguageText(ImportTexts::kRefused),
          text::ReplaceAll(LanguageText(ImportTexts::kSupplierNotFound), L"%s", SupplierCode), true,
          true);
      return false;
    }
    m_supplierID = NullToLong(supplier(ProductTable::Supplier::kID).Value());
    return true;
  } catch (...) {
    ShowErrorMessage(L"clsOrvPap.FindAssortmentAndSupplier (Function)");
    RaiseErrorInHand();
    return false;
  }
}

// The stored dates are not compared with the file's: which file to apply is the user's choice.
bool clsOrvPap::SaveAssSupplDates() const {
  namespace columns = ProductTable::Ass_Suppl;
  try {
    RaiseShowListMessage(LanguageText(ImportTexts::kDates), L"", false, false);
    database::Recordset link;
    link.Open(L"SELECT * FROM Ass_Suppl WHERE fkAssNr = " + std::to_wstring(m_assNr) +
                  L" AND fkSupplierID = " + std::to_wstring(m_supplierID),
              *m_connection, CursorType::kDynamic, LockType::kOptimistic);
    if (link.Eof()) return false;
    link(columns::kPrcDate) = text::Date{PrcDate};
    link(columns::kSawPrcDate) = NullWhenUnset(SawPrcDate);
    link(columns::kBlastCoatDate) = NullWhenUnset(BlastCoatDate);
    link(columns::kBasePriceDate) = NullWhenUnset(BasePriceDate);
    link(columns::kOLBonusDate) = NullWhenUnset(OlBonusDate);
    link.Update();
    return true;
  } catch (...) {
    ShowErrorMessage(L"clsOrvPap.SaveAssSupplDates (Function)");
    RaiseErrorInHand();
    return false;
  }
}

void clsOrvPap::RaiseErrorInHand() const {
  RaiseShowListMessage(LanguageText(ImportTexts::kRefused), ErrorResultText(), true, true);
}

void clsOrvPap::RaiseShowListMessage(const std::wstring& vMessage, const std::wstring& vMessageSub,
                                     bool vShowInList, bool vError) const {
  if (ShowListMessage) ShowListMessage(vMessage, vMessageSub, vShowInList, vError);
}

void clsOrvPap::RaiseProgressInit(std::int32_t vMax) const {
  if (ProgressInit) ProgressInit(vMax);
}

void clsOrvPap::RaiseProgressCurrent(std::int32_t vCurrent) const {
  if (ProgressCurrent) ProgressCurrent(vCurrent);
}
