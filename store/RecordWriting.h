// What the record writers share: their result texts, and searching in recordsets that others
// opened.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/database/recordset.h"
#include "platform/text/variant.h"

// The language texts that report a record. In a refusal "%s" stands for the code that was refused.
namespace ResultTexts {
inline constexpr std::int32_t kDiscountChanged = 79;
inline constexpr std::int32_t kDiscountOfOtherSupplier = 80;
inline constexpr std::int32_t kDiscountAdded = 81;
inline constexpr std::int32_t kAssortmentAdded = 82;
inline constexpr std::int32_t kAssortmentChanged = 83;
inline constexpr std::int32_t kSerieAdded = 84;
inline constexpr std::int32_t kSerieChanged = 85;
inline constexpr std::int32_t kSerieOfOtherAssortment = 86;
inline constexpr std::int32_t kLinkWithoutAssortment = 87;
inline constexpr std::int32_t kLinkWithoutSupplier = 88;
inline constexpr std::int32_t kLinkAdded = 89;
inline constexpr std::int32_t kLinkChanged = 90;
inline constexpr std::int32_t kArticleSerieOfOtherAssortment = 91;
inline constexpr std::int32_t kArticleOfOtherSerie = 93;
inline constexpr std::int32_t kArticleChanged = 94;
inline constexpr std::int32_t kArticleAdded = 95;
inline constexpr std::int32_t kSupplierAdded = 96;
inline constexpr std::int32_t kSupplierChanged = 97;
inline constexpr std::int32_t kBasePriceGroupChanged = 98;
inline constexpr std::int32_t kBasePriceGroupAdded = 99;
inline constexpr std::int32_t kArticlePriceWritten = 100;
inline constexpr std::int32_t kPriceWithoutArticle = 101;
inline constexpr std::int32_t kPriceWithoutDiscount = 102;
inline constexpr std::int32_t kPriceWithoutBasePriceGroup = 103;
inline constexpr std::int32_t kArticleWithoutSerie = 1050;
}  // namespace ResultTexts

// The language text with `vCode` in the place of "%s".
std::wstring RefusalText(std::int32_t vText, const std::wstring& vCode);

// "number: description" of the error in hand; for a catch (...) only. Passes a ProcessEnding on.
std::wstring ErrorResultText();

// Searches the whole recordset, not only from its current row on; the row found becomes current.
// `vCriterion` as database::Recordset::Find takes it. False, with the recordset at its end, when no
// row matches.
bool FindInAll(database::Recordset& vRecordset, const std::wstring& vCriterion);

// "Code = '<code>'": the code stands as it is, so an apostrophe in it is a database error.
std::wstring CodeCriterion(const std::wstring& vCode);

text::Variant NullWhenEmpty(const std::wstring& vText);
text::Variant NullWhenAbsent(std::optional<double> vNumber);
