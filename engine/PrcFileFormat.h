// The words of a price-update file: its version, its sections and the number of fields of a record,
// shared by everybody who reads or writes one. docs/import.md explains the file.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace PrcFileFormat {

// The extension of the file names, compared in upper case.
inline constexpr std::wstring_view kExtension = L"PRC";

// The only version that is written, and read from the update folder.
inline constexpr std::wstring_view kVersion = L"3.2";

// The data sections in the order in which they are written; readers take them in any order.
enum class Section {
  kNewSupplier,
  kNewAssortment,
  kNewAssSuppl,
  kNewSerie,
  kNewArticle,
  kNewDiscount,
  kUpdateBasePrice,
  kUpdateOverlengthBonus,
  kUpdatePriceData,
};

struct SectionFormat {
  std::wstring_view Line;  // the line that starts it, in upper case
  std::size_t FieldCount;  // of each of its records
};

// Indexed by Section.
inline constexpr std::array<SectionFormat, 9> kSections = {{
    {L"[NEW SUPPLIER]", 4},
    {L"[NEW ASSORTMENT]", 8},
    {L"[NEW ASSSUPPL]", 3},
    {L"[NEW SERIE]", 5},
    {L"[NEW ARTICLE]", 19},
    {L"[NEW DISCOUNT]", 5},
    {L"[UPDATE BASEPRICE]", 7},
    {L"[UPDATE OVERLENGTHBONUS]", 3},
    {L"[UPDATE PRICEDATA]", 9},
}};

constexpr const SectionFormat& FormatOf(Section vSection) {
  return kSections[static_cast<std::size_t>(vSection)];
}

// The section that an upper-case line without outer blanks starts, if any.
constexpr std::optional<Section> SectionOf(std::wstring_view vLine) {
  for (std::size_t i = 0; i < kSections.size(); ++i) {
    if (kSections[i].Line == vLine) return static_cast<Section>(i);
  }
  return std::nullopt;
}

}  // namespace PrcFileFormat
