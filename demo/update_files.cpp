// The update files of the demo installation: those that fill its product table, and those that its
// user finds in the update folder.
#include "demo/update_files.h"

#include <filesystem>
#include <iterator>

#include "app/modGeneralFunctions.h"
#include "demo/catalogue.h"
#include "engine/clsOrvPap.h"
#include "platform/files/file_error.h"
#include "platform/files/paths.h"
#include "platform/text/date.h"
#include "store/ProductTableSchema.h"

namespace demo {
namespace {

struct Supplier {
  const wchar_t* code;
  const wchar_t* description;
  const wchar_t* article_prefix;  // of its own article numbers
  double to_a;
  double to_b;
};

struct Assortment {
  const wchar_t* code;
  const wchar_t* description;
  std::uint8_t dimension_kind;
};

struct Discount {
  const wchar_t* code;
  const wchar_t* description;
  double percentages[3];
};

constexpr std::uint8_t kDimensionKindTube = 3;
constexpr std::uint8_t kPricePerPiece = 1;
constexpr std::uint8_t kUnitKilogram = 1;

constexpr Supplier kVeldhaven{L"VELDHAVEN", L"Veldhaven Staalservice", L"VH", 250, 40};
constexpr Supplier kBrugmeer{L"BRUGMEER", L"Brugmeer Metaal", L"BM", 150, 25};
constexpr Supplier kBrugmeerRenamed{L"BRUGMEER", L"Brugmeer Metaal en Buis", L"BM", 175, 30};
constexpr Supplier kOostrand{L"OOSTRAND", L"Oostrand Roestvast", L"OR", 300, 45};

constexpr Assortment kProfiles{L"PROFIEL", L"Balken en profielen",
                               ProductTable::kDimensionKindProfile};
constexpr Assortment kPlates{L"PLAAT", L"Plaatstaal", ProductTable::kDimensionKindPlate};
constexpr Assortment kTubes{L"BUIS", L"Buizen", kDimensionKindTube};
constexpr Assortment kTubesRenamed{L"BUIS", L"Buizen en kokers", kDimensionKindTube};
constexpr Assortment kStainlessTubes{L"RVSBUIS", L"Roestvaste buizen", kDimensionKindTube};

constexpr Discount kVeldhavenProfiles{L"V-PROF", L"Veldhaven profielen", {10, 12.5, 15}};
constexpr Discount kVeldhavenPlates{L"V-PLAAT", L"Veldhaven plaat", {5, 7.5, 10}};
constexpr Discount kBrugmeerPlates{L"B-PLAAT", L"Brugmeer plaat", {4, 6, 8}};
constexpr Discount kBrugmeerTubes{L"B-BUIS", L"Brugmeer buis", {8, 11, 14}};
constexpr Discount kBrugmeerSquare{L"B-KOKER", L"Brugmeer kokers", {6, 9, 12}};
constexpr Discount kOostrandTubes{L"O-RVS", L"Oostrand roestvast", {3, 5, 7.5}};

// One update file in the making.
class Update {
 public:
  // The name carries date, supplier and assortment, as those on the download server do.
  Update(const Supplier& supplier, const Assortment& assortment, int year, int month, int day)
      : supplier_(supplier), assortment_(assortment) {
    update_.PapDate = text::DateSerial(year, month, day);
    update_.PrcDate = update_.PapDate;
    update_.AssortmentCode = assortment.code;
    update_.AssortmentDescription = assortment.description;
    update_.SupplierCode = supplier.code;
    update_.SupplierDescription = supplier.description;
    update_.NewSuppliers.emplace();
    update_.NewAssortments.emplace();
    update_.NewAssSuppls.emplace();
    update_.NewSeries.emplace();
    update_.NewArticles.emplace();
    update_.NewDiscounts.emplace();
    update_.BasePrices.emplace();
    update_.OverlengthBonuses.emplace();
    update_.PriceData.emplace();
  }

  Update& Remark(const std::wstring& line) {
    update_.Remark = AppendLine(update_.Remark, line);
    return *this;
  }

  Update& AddSupplier() {
    clsNewSupplier record;
    record.Code = supplier_.code;
    record.Description = supplier_.description;
    record.ToA = supplier_.to_a;
    record.ToB = supplier_.to_b;
    update_.NewSuppliers->push_back(record);
    return *this;
  }

  // With the link to the supplier.
  Update& AddAssortment() {
    clsNewAssortment record;
    record.AssCode = assortment_.code;
    record.Description = assortment_.description;
    record.DimUnit = assortment_.dimension_kind;
    record.PriceUnit = kPricePerPiece;
    record.BasePriceGroups = true;
    record.DiscountGroups = true;
    update_.NewAssortments->push_back(record);

    clsNewAssSuppl link;
    link.AssCode = assortment_.code;
    link.SupplierCode = supplier_.code;
    link.PrcDiscountType = 1;
    update_.NewAssSuppls->push_back(link);
    return *this;
  }

  Update& AddSeries(const Range& range) {
    for (const clsNewSerie& serie : range.series) update_.NewSeries->push_back(serie);
    return *this;
  }

  Update& AddArticles(const Range& range) {
    for (const Product& product : range.products) {
      update_.NewArticles->push_back(product.article);
    }
    return *this;
  }

  Update& AddDiscount(const Discount& discount) {
    clsNewDiscount record;
    record.Code = discount.code;
    record.Description = discount.description;
    record.DiscPercA = discount.percentages[0];
    record.DiscPercB = discount.percentages[1];
    record.DiscPercC = discount.percentages[2];
    update_.NewDiscounts->push_back(record);
    return *this;
  }

  // A group for each series, dearer a kilogram where little is taken.
  Update& AddBasePrices(const Range& range, double euro_per_kg) {
    struct Step {
      double begin, end, factor;
    };
    constexpr Step kSteps[] = {{0, 500, 1.15}, {500, 2000, 1.06}, {2000, 99999, 1}};
    for (const clsNewSerie& serie : range.series) {
      for (const Step& step : kSteps) {
        clsUpdateBasePrice record;
        record.Code = serie.SerieCode;
        record.Description = serie.Description;
        record.DimUnit = kUnitKilogram;
        record.PriceUnit = kUnitKilogram;
        record.Begin = step.begin;
        record.End = step.end;
        record.BasePrice = Rounded(euro_per_kg * step.factor, 4);
        update_.BasePrices->push_back(record);
      }
    }
    update_.BasePriceDate = update_.PapDate;
    return *this;
  }

  // Per metre beyond the trade length, by lengths in metres.
  Update& AddOverlengthBonuses(double euro) {
    constexpr double kLimits[] = {12.1, 15, 18, 24};
    for (std::size_t i = 0; i + 1 < std::size(kLimits); ++i) {
      clsUpdateOverlengthB record;
      record.Begin = kLimits[i];
      record.End = kLimits[i + 1];
      record.Price = Rounded(euro * static_cast<double>(i + 1), 2);
      update_.OverlengthBonuses->push_back(record);
    }
    update_.OlBonusDate = update_.PapDate;
    return *this;
  }

  Update& AddPrices(const Range& range, double euro_per_kg, const wchar_t* discount) {
    constexpr int kFirstNumber = 10001;  // of the supplier's own article numbers
    const bool sawn = assortment_.dimension_kind != ProductTable::kDimensionKindPlate;
    for (const Product& product : range.products) {
      clsUpdatePriceData record;
      record.Code = product.article.Code;
      record.PriceDim = Rounded(product.mass * euro_per_kg, 2);
      record.OverPrice = Rounded(product.mass * 0.03, 2);
      record.SawPrice = sawn ? Rounded(2.5 + product.mass * 0.06, 2) : 0;
      record.BlastPrice = Rounded(product.surface * 1.9, 2);
      record.CoatPrice = Rounded(product.surface * 2.65, 2);
      record.BPGCode = product.article.SerieCode;
      record.DiscountCode = discount;
      record.ArtNrSupplier =
          std::wstring(supplier_.article_prefix) + L"-" +
          std::to_wstring(kFirstNumber + static_cast<int>(update_.PriceData->size()));
      update_.PriceData->push_back(record);
    }
    if (sawn) update_.SawPrcDate = update_.PapDate;
    update_.BlastCoatDate = update_.PapDate;
    return *this;
  }

  // A price like the last one, but for another article or with another discount.
  Update& AddPriceLike(const std::wstring& article, const std::wstring& discount) {
    clsUpdatePriceData record = update_.PriceData->back();
    if (!article.empty()) record.Code = article;
    if (!discount.empty()) record.DiscountCode = discount;
    update_.PriceData->push_back(record);
    return *this;
  }

  // Writes the file and returns its path.
  std::wstring Save(const std::wstring& folder) {
    update_.FilePath = AddBackslash(folder) + text::FormatCompactDate(update_.PapDate) + L"_" +
                       supplier_.code + L"_" + assortment_.code + L".PRC";
    std::filesystem::remove(files::ToPath(update_.FilePath));  // or it would ask
    if (!update_.SavePrcFile(folder)) throw files::FileError(files::kDeviceIoError);
    return update_.FilePath;
  }

 private:
  Supplier supplier_;
  Assortment assortment_;
  clsOrvPap update_;
};

}  // namespace

std::vector<std::wstring> WriteOpeningUpdates(const std::wstring& folder) {
  const Range profiles = Profiles();
  const Range plates = Plates();
  const Range tubes = Tubes();
  return {
      Update(kVeldhaven, kProfiles, 2025, 1, 6)
          .AddSupplier()
          .AddAssortment()
          .AddSeries(profiles)
          .AddArticles(profiles)
          .AddDiscount(kVeldhavenProfiles)
          .AddBasePrices(profiles, 0.94)
          .AddOverlengthBonuses(1.1)
          .AddPrices(profiles, 0.98, kVeldhavenProfiles.code)
          .Save(folder),
      Update(kVeldhaven, kPlates, 2025, 1, 13)
          .AddAssortment()
          .AddSeries(plates)
          .AddArticles(plates)
          .AddDiscount(kVeldhavenPlates)
          .AddBasePrices(plates, 0.88)
          .AddPrices(plates, 0.91, kVeldhavenPlates.code)
          .Save(folder),
      Update(kBrugmeer, kPlates, 2025, 2, 3)
          .AddSupplier()
          .AddAssortment()
          .AddDiscount(kBrugmeerPlates)
          .AddBasePrices(plates, 0.86)
          .AddPrices(plates, 0.9, kBrugmeerPlates.code)
          .Save(folder),
      Update(kBrugmeer, kTubes, 2025, 2, 10)
          .AddAssortment()
          .AddSeries(tubes)
          .AddArticles(tubes)
          .AddDiscount(kBrugmeerTubes)
          .AddBasePrices(tubes, 1.62)
          .AddPrices(tubes, 1.7, kBrugmeerTubes.code)
          .Save(folder),
  };
}

std::vector<std::wstring> WriteUpdates(const std::wstring& folder) {
  const Range profiles = Profiles();
  const Range plates = Plates();
  const Range tubes = Tubes();
  const Range square = SquareTubes();
  const Range stainless = StainlessTubes();
  const Range beams{{profiles.series.front()}, {}};
  return {
      Update(kVeldhaven, kPlates, 2004, 3, 15)
          .Remark(L"De prijzen van 2004, om te vergelijken.")
          .AddPrices(plates, 0.52, kVeldhavenPlates.code)
          .Save(folder),
      Update(kVeldhaven, kProfiles, 2026, 1, 5)
          .Remark(L"Jaarlijkse prijsronde.")
          .Remark(L"De kortingen zijn niet gewijzigd.")
          .AddPrices(profiles, 1.04, kVeldhavenProfiles.code)
          .Save(folder),
      Update(kOostrand, kStainlessTubes, 2026, 1, 12)
          .Remark(L"Nieuwe leverancier met een eigen assortiment.")
          .AddSupplier()
          .AddAssortment()
          .AddSeries(stainless)
          .AddArticles(stainless)
          .AddDiscount(kOostrandTubes)
          .AddBasePrices(stainless, 4.85)
          .AddPrices(stainless, 5.1, kOostrandTubes.code)
          .Save(folder),
      Update(kBrugmeerRenamed, kTubesRenamed, 2026, 2, 2)
          .Remark(L"Brugmeer levert voortaan ook vierkante kokers.")
          .AddSupplier()
          .AddAssortment()
          .AddSeries(square)
          .AddArticles(square)
          .AddDiscount(kBrugmeerSquare)
          .AddBasePrices(tubes, 1.68)
          .AddBasePrices(square, 1.05)
          .AddOverlengthBonuses(1.25)
          .AddPrices(tubes, 1.76, kBrugmeerTubes.code)
          .AddPrices(square, 1.12, kBrugmeerSquare.code)
          .Save(folder),
      Update(kVeldhaven, kPlates, 2026, 2, 9)
          .Remark(L"Met fouten: een serie van een ander assortiment, een korting van een andere "
                  L"leverancier en een onbekend artikel.")
          .AddSeries(beams)
          .AddDiscount(kBrugmeerPlates)
          .AddPrices(plates, 0.97, kVeldhavenPlates.code)
          .AddPriceLike(L"WG999-1500X3000", L"")
          .Save(folder),
      Update(kBrugmeer, kPlates, 2026, 2, 16)
          .Remark(L"Met een fout: de laatste regel noemt een onbekende korting.")
          .AddPrices(plates, 0.95, kBrugmeerPlates.code)
          .AddPriceLike(L"", L"B-ONBEKEND")
          .Save(folder),
  };
}

std::vector<std::wstring> WriteServerUpdates(const std::wstring& folder) {
  const Range profiles = Profiles();
  const Range tubes = Tubes();
  const Range stainless = StainlessTubes();
  return {
      Update(kVeldhaven, kProfiles, 2026, 3, 2)
          .Remark(L"Tussentijdse prijsronde.")
          .AddPrices(profiles, 1.07, kVeldhavenProfiles.code)
          .Save(folder),
      Update(kBrugmeer, kTubes, 2026, 3, 9)
          .AddBasePrices(tubes, 1.71)
          .AddPrices(tubes, 1.79, kBrugmeerTubes.code)
          .Save(folder),
      Update(kOostrand, kStainlessTubes, 2026, 3, 16)
          .Remark(L"Legeringstoeslag verlaagd.")
          .AddPrices(stainless, 4.98, kOostrandTubes.code)
          .Save(folder),
  };
}

}  // namespace demo
