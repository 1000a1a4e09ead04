// What the pages of the wizard share.
#include "wizard/PageSupport.h"

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "platform/database/recordset.h"
#include "platform/text/strings.h"
#include "store/ProductTableSchema.h"
#include "store/modProductTable.h"

namespace {

namespace StepTexts {
constexpr std::int32_t kGoOn = 10;
}  // namespace StepTexts

}  // namespace

std::wstring ToolTipText(std::int32_t vNumber) {
  return text::ReplaceAll(Shared().objLanguage->GetToolTipText(vNumber), L"\\n", L"");
}

std::wstring StepText(const std::wstring& vAbout) {
  return vAbout + L" " + LanguageText(StepTexts::kGoOn);
}

std::wstring ListKey(std::size_t vPosition) { return std::to_wstring(vPosition) + L"P"; }

std::size_t PositionOf(const std::wstring& vListKey) {
  return static_cast<std::size_t>(ExtractNumber(vListKey)) - 1;
}

std::wstring PairOf(const std::wstring& vSupplierCode, const std::wstring& vAssortmentCode) {
  return text::ToUpper(vSupplierCode + L"-" + vAssortmentCode);
}

std::unordered_set<std::wstring> ReadPairs(const std::wstring& vPath) {
  const ProductConnectionGuard guard;
  std::unordered_set<std::wstring> pairs;
  if (!OpenProductTable(vPath)) return pairs;
  database::Recordset rows;
  rows.Open(
      L"SELECT  Supplier.Code, Assortment.AssCode FROM Supplier INNER JOIN (Assortment INNER JOIN "
      L"Ass_Suppl ON Assortment.AssNr = Ass_Suppl.fkAssNr) ON Supplier.ID = "
      L"Ass_Suppl.fkSupplierID",
      *ProductConnection->Connection, database::CursorType::kStatic, database::LockType::kReadOnly);
  for (; !rows.Eof(); rows.MoveNext()) {
    pairs.insert(PairOf(NullToString(rows(ProductTable::Supplier::kCode).Value()),
                        NullToString(rows(ProductTable::Assortment::kAssCode).Value())));
  }
  return pairs;
}
