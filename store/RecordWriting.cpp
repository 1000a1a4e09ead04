// What the record writers share: their result texts, and searching in recordsets that others
// opened.
#include "store/RecordWriting.h"

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "platform/text/strings.h"

std::wstring RefusalText(std::int32_t vText, const std::wstring& vCode) {
  return text::ReplaceAll(LanguageText(vText), L"%s", vCode);
}

std::wstring ErrorResultText() {
  const text::RuntimeError error = ErrorInHand();
  return std::to_wstring(error.number()) + L": " + error.description();
}

bool FindInAll(database::Recordset& vRecordset, const std::wstring& vCriterion) {
  if (!vRecordset.Bof()) vRecordset.MoveFirst();
  vRecordset.Find(vCriterion);
  return !vRecordset.Eof();
}

std::wstring CodeCriterion(const std::wstring& vCode) { return L"Code = '" + vCode + L"'"; }

text::Variant NullWhenEmpty(const std::wstring& vText) {
  return vText.empty() ? text::Variant() : text::Variant(vText);
}

text::Variant NullWhenAbsent(std::optional<double> vNumber) {
  return vNumber ? text::Variant(*vNumber) : text::Variant();
}
