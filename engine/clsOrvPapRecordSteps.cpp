// The steps of an import that add suppliers, assortments, series, articles and discounts.
#include "app/modGeneralFunctions.h"
#include "engine/RecordStep.h"
#include "engine/clsOrvPap.h"

namespace {

std::wstring Pair(const std::wstring& vFirst, const std::wstring& vSecond) {
  return vFirst + L" - " + vSecond;
}

}  // namespace

bool clsOrvPap::SaveNewSuppliers() {
  try {
    if (!BeginStep(ImportTexts::kNewSuppliers, NewSuppliers)) return true;
    return SaveRecords(
        NewSuppliers,
        [this](clsNewSupplier& vRecord, bool& vResult) {
          vRecord.SaveNewSupplier(*m_connection, vResult);
        },
        [](const clsNewSupplier& vRecord) { return Pair(vRecord.Code, vRecord.Description); });
  } catch (...) {
    ShowErrorMessage(L"clsOrvPap.SaveNewSuppliers (Function)");
    RaiseErrorInHand();
    return false;
  }
}

bool clsOrvPap::SaveNewAssortments() {
  try {
    if (!BeginStep(ImportTexts::kNewAssortments, NewAssortments)) return true;
    return SaveRecords(
        NewAssortments,
        [this](clsNewAssortment& vRecord, bool& vResult) {
          vRecord.SaveNewAssortment(*m_connection, vResult);
        },
        [](const clsNewAssortment& vRecord) { return Pair(vRecord.AssCode, vRecord.Description); });
  } catch (...) {
    ShowErrorMessage(L"clsOrvPap.SaveNewAssortments (Function)");
    RaiseErrorInHand();
    return false;
  }
}

bool clsOrvPap::SaveNewAssSuppls() {
  try {
    if (!BeginStep(ImportTexts::kAssortment, NewAssSuppls)) return true;
    return SaveRecords(
        NewAssSuppls,
        [this](clsNewAssSuppl& vRecord, bool& vResult) {
          vRecord.SaveNewAssSuppl(*m_connection, vResult);
        },
        [](const clsNewAssSuppl& vRecord) { return Pair(vRecord.AssCode, vRecord.SupplierCode); });
  } catch (...) {
    ShowErrorMessage(L"clsOrvPap.SaveNewAssSuppls (Function)");
    RaiseErrorInHand();
    return false;
  }
}

bool clsOrvPap::SaveNewSeries() {
  try {
    if (!BeginStep(ImportTexts::kNewSeries, NewSeries)) return true;
    return SaveRecords(
        NewSeries,
        [this](clsNewSerie& vRecord, bool& vResult) {
          vRecord.SaveNewSerie(*m_connection, m_assNr, vResult);
        },
        [](const clsNewSerie& vRecord) { return Pair(vRecord.SerieCode, vRecord.Description); });
  } catch (...) {
    ShowErrorMessage(L"clsOrvPap.SaveNewSeries (Function)");
    RaiseErrorInHand();
    return false;
  }
}

bool clsOrvPap::SaveNewArticles() {
  try {
    if (!BeginStep(ImportTexts::kNewArticles, NewArticles)) return true;
    return SaveRecords(
        NewArticles,
        [this](clsNewArticle& vRecord, bool& vResult) {
          vRecord.SaveNewArticle(*m_connection, m_assNr, m_dimUnit, vResult);
        },
        [](const clsNewArticle& vRecord) {
          return Pair(vRecord.Code, vRecord.Description) + L" (" + vRecord.SerieCode + L")";
        });
  } catch (...) {
    ShowErrorMessage(L"clsOrvPap.SaveNewArticles (Function)");
    RaiseErrorInHand();
    return false;
  }
}

bool clsOrvPap::SaveNewDiscounts() {
  try {
    if (!BeginStep(ImportTexts::kNewDiscounts, NewDiscounts)) return true;
    return SaveRecords(
        NewDiscounts,
        [this](clsNewDiscount& vRecord, bool& vResult) {
          vRecord.SaveNewDiscount(*m_connection, m_supplierID, vResult);
        },
        [](const clsNewDiscount& vRecord) { return Pair(vRecord.Code, vRecord.Description); });
  } catch (...) {
    ShowErrorMessage(L"clsOrvPap.SaveNewDiscounts (Function)");
    RaiseErrorInHand();
    return false;
  }
}
