// What all steps of an import that go through a record collection have in common.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "app/modShared.h"
#include "engine/clsOrvPap.h"

// The language texts of an import's messages.
namespace ImportTexts {
inline constexpr std::int32_t kUpdate = 59;
inline constexpr std::int32_t kAssortment = 60;
inline constexpr std::int32_t kSupplier = 61;
inline constexpr std::int32_t kFinished = 62;
inline constexpr std::int32_t kNewSuppliers = 63;
inline constexpr std::int32_t kRefused = 64;  // heads every refusal of a record and every error
inline constexpr std::int32_t kNewAssortments = 65;
inline constexpr std::int32_t kAssortmentNotFound = 67;  // "%s" is the code
inline constexpr std::int32_t kSupplierNotFound = 68;    // "%s" is the code
inline constexpr std::int32_t kNewSeries = 69;
inline constexpr std::int32_t kNewArticles = 70;
inline constexpr std::int32_t kNewDiscounts = 71;
inline constexpr std::int32_t kOverlengthBonuses = 72;
inline constexpr std::int32_t kBasePrices = 73;
inline constexpr std::int32_t kClearingOverlengthBonuses = 74;
inline constexpr std::int32_t kPriceData = 76;
inline constexpr std::int32_t kClearingPriceData = 77;
inline constexpr std::int32_t kDates = 78;
}  // namespace ImportTexts

// Announces a step's records: how many, in the log, and the range of the progress bar.
template <class Record>
bool clsOrvPap::BeginStep(std::int32_t vText, const Collection<Record>& vRecords) const {
  if (!vRecords) return false;
  const auto count = static_cast<std::int32_t>(vRecords->size());
  RaiseShowListMessage(LanguageText(vText), std::to_wstring(count), false, false);
  RaiseProgressInit(count);
  return true;
}

// Saves one record after the other and reports each; the first one that is refused ends the step.
// `vSave` takes a record and where to put the result, `vDetail` tells which record it is.
template <class Record, class Save, class Detail>
bool clsOrvPap::SaveRecords(Collection<Record>& vRecords, const Save& vSave,
                            const Detail& vDetail) {
  std::int32_t current = 0;
  for (Record& record : *vRecords) {
    RaiseProgressCurrent(++current);
    bool saved = false;
    vSave(record, saved);
    if (!saved) {
      RaiseShowListMessage(LanguageText(ImportTexts::kRefused), record.ResultText, true, true);
      return false;
    }
    // Taken out of the record, so that an import does not gather a text for each of them.
    const std::wstring result = std::move(record.ResultText);
    RaiseShowListMessage(result, vDetail(record), false, false);
  }
  return true;
}
