// The wizard's third page: the updates that were applied to the product table before.
#include "wizard/usrPapProcessed.h"

#include <cstdint>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "platform/text/date.h"
#include "updates/modSharedPapRegister.h"
#include "wizard/PageSupport.h"

namespace {

namespace ProcessedTexts {
constexpr std::int32_t kDate = 1000;
constexpr std::int32_t kAssortment = 1001;
constexpr std::int32_t kSupplier = 1002;
constexpr std::int32_t kProcessed = 1003;
constexpr std::int32_t kNothing = 1060;
}  // namespace ProcessedTexts

}  // namespace

usrPapProcessed::usrPapProcessed() { Contain({&lvPrc}); }

controls::Layout usrPapProcessed::Arrangement() {
  return controls::Column({controls::Stretched(controls::Show(&lvPrc))});
}

void usrPapProcessed::Init(const std::wstring& vPath) {
  try {
    setupLanguage();
    GetProcessedCollection(vPath);
    FillList();
  } catch (...) {
    ShowErrorMessage(L"usrPapProcessed.Init (Sub)");
  }
}

void usrPapProcessed::setupLanguage() {
  try {
    lvPrc.SetColumns(
        {LanguageText(ProcessedTexts::kDate), LanguageText(ProcessedTexts::kAssortment),
         LanguageText(ProcessedTexts::kSupplier), LanguageText(ProcessedTexts::kProcessed)});
  } catch (...) {
    ShowErrorMessage(L"usrPapProcessed.setupLanguage (Sub)");
  }
}

void usrPapProcessed::FillList() {
  lvPrc.Clear();
  lvPrc.SetEmptyText(LanguageText(ProcessedTexts::kNothing));
  if (!ProcessedPaps()) return;
  std::size_t position = 0;
  for (const auto& pap : *ProcessedPaps()) {
    lvPrc.AddItem({.key = ListKey(++position),
                   .text = text::FormatDate(pap->PapDate),
                   .sub_items = {pap->AssortmentDescription, pap->SupplierDescription,
                                 text::FormatDateMinute(pap->DateProcessed)}});
  }
}
