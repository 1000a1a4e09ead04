// The header sections of a price-update file and the property that each of them fills.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "engine/clsOrvPap.h"

struct PapHeaderField {
  std::wstring_view Section;  // as the writer spells it; readers compare in upper case
  // The property: a text, or else a date written as yyyymmdd.
  std::wstring clsOrvPap::*Text;
  double clsOrvPap::*Date;
};

// In the order in which the writer puts them.
inline constexpr std::array<PapHeaderField, 12> kPapHeaderFields = {{
    {L"[VERSION]", &clsOrvPap::Version, nullptr},
    {L"[DATE]", nullptr, &clsOrvPap::PapDate},
    {L"[ASSORTMENTCODE]", &clsOrvPap::AssortmentCode, nullptr},
    {L"[ASSORTMENTDESCRIPTION]", &clsOrvPap::AssortmentDescription, nullptr},
    {L"[SUPPLIERCODE]", &clsOrvPap::SupplierCode, nullptr},
    {L"[SUPPLIERDESCRIPTION]", &clsOrvPap::SupplierDescription, nullptr},
    {L"[PrcDate]", nullptr, &clsOrvPap::PrcDate},
    {L"[SawPrcDate]", nullptr, &clsOrvPap::SawPrcDate},
    {L"[BlastCoatDate]", nullptr, &clsOrvPap::BlastCoatDate},
    {L"[BasePriceDate]", nullptr, &clsOrvPap::BasePriceDate},
    {L"[OLBonusDate]", nullptr, &clsOrvPap::OlBonusDate},
    {L"[Remark]", &clsOrvPap::Remark, nullptr},
}};
