// The section reader of a price update: from the lines of its file to record collections.
#include <cstddef>
#include <utility>
#include <vector>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "engine/PrcSectionTracker.h"
#include "engine/clsOrvPap.h"
#include "platform/files/paths.h"
#include "platform/files/text_reader.h"
#include "platform/text/strings.h"

namespace {

using PrcFileFormat::Section;

// Hands out the fields of a record line one after the other, each trimmed and converted. The caller
// has checked how many there are.
class FieldReader {
 public:
  explicit FieldReader(const std::vector<std::wstring>& vFields) : m_fields(vFields) {}

  std::wstring Text() { return NullToString(Next()); }
  double Decimal() { return ParseDecimal(Text()); }
  // A number as the user's locale writes it.
  double LocaleNumber() { return NullToDouble(Next()); }
  std::uint8_t Byte() { return NullToByte(Next()); }
  std::int32_t Long() { return NullToLong(Next()); }
  bool Boolean() { return NullToBoolean(Next()); }

 private:
  text::Variant Next() { return text::Trim(m_fields.at(++m_index)); }

  const std::vector<std::wstring>& m_fields;
  std::size_t m_index = 0;  // PSplit leaves index 0 empty
};

clsNewSupplier ReadNewSupplier(FieldReader vFields) {
  clsNewSupplier record;
  record.Code = vFields.Text();
  record.Description = vFields.Text();
  // The two amounts are read by the locale, unlike every other decimal of the file. Files in use
  // rely on it as it is.
  record.ToA = vFields.LocaleNumber();
  record.ToB = vFields.LocaleNumber();
  return record;
}

clsNewAssortment ReadNewAssortment(FieldReader vFields) {
  clsNewAssortment record;
  record.AssCode = vFields.Text();
  record.Description = vFields.Text();
  record.DimUnit = vFields.Byte();
  record.PriceUnit = vFields.Byte();
  record.BasePriceGroups = vFields.Boolean();
  record.DiscountGroups = vFields.Boolean();
  record.FabrCode = vFields.Byte();
  record.Remark = vFields.Text();
  return record;
}

clsNewAssSuppl ReadNewAssSuppl(FieldReader vFields) {
  clsNewAssSuppl record;
  record.AssCode = vFields.Text();
  record.SupplierCode = vFields.Text();
  record.PrcDiscountType = vFields.Long();
  return record;
}

clsNewSerie ReadNewSerie(FieldReader vFields) {
  clsNewSerie record;
  record.SerieCode = vFields.Text();
  record.Description = vFields.Text();
  record.Density = vFields.Decimal();
  record.UseOverlengthBonus = vFields.Boolean();
  record.Remark = vFields.Text();
  return record;
}

clsNewArticle ReadNewArticle(FieldReader vFields) {
  clsNewArticle record;
  record.SerieCode = vFields.Text();
  record.Code = vFields.Text();
  record.Description = vFields.Text();
  record.Description2 = vFields.Text();
  record.Ht = vFields.Decimal();
  record.Wb = vFields.Decimal();
  record.Wu = vFields.Decimal();
  record.tfb = vFields.Decimal();
  record.tfu = vFields.Decimal();
  record.tw = vFields.Decimal();
  record.Ri = vFields.Decimal();
  record.Ro = vFields.Decimal();
  record.S = vFields.Decimal();
  record.Snet = vFields.Decimal();
  record.Slope = vFields.Decimal();
  record.t = vFields.Decimal();
  record.VolDim = vFields.Decimal();
  record.Area = vFields.Decimal();
  record.Remark = vFields.Text();
  return record;
}

clsNewDiscount ReadNewDiscount(FieldReader vFields) {
  clsNewDiscount record;
  record.Code = vFields.Text();
  record.Description = vFields.Text();
  record.DiscPercA = vFields.Decimal();
  record.DiscPercB = vFields.Decimal();
  record.DiscPercC = vFields.Decimal();
  return record;
}

clsUpdateBasePrice ReadBasePrice(FieldReader vFields) {
  clsUpdateBasePrice record;
  record.Code = vFields.Text();
  record.Description = vFields.Text();
  record.DimUnit = vFields.Byte();
  record.PriceUnit = vFields.Byte();
  record.Begin = vFields.Decimal();
  record.End = vFields.Decimal();
  record.BasePrice = vFields.Decimal();
  return record;
}

clsUpdateOverlengthB ReadOverlengthBonus(FieldReader vFields) {
  clsUpdateOverlengthB record;
  record.Begin = vFields.Decimal();
  record.End = vFields.Decimal();
  record.Price = vFields.Decimal();
  return record;
}

clsUpdatePriceData ReadPriceData(FieldReader vFields) {
  clsUpdatePriceData record;
  record.Code = vFields.Text();
  record.PriceDim = vFields.Decimal();
  record.OverPrice = vFields.Decimal();
  record.SawPrice = vFields.Decimal();
  record.BlastPrice = vFields.Decimal();
  record.CoatPrice = vFields.Decimal();
  record.BPGCode = vFields.Text();
  record.DiscountCode = vFields.Text();
  record.ArtNrSupplier = vFields.Text();
  return record;
}

template <class Record>
void Add(clsOrvPap::Collection<Record>& vCollection, Record vRecord) {
  if (!vCollection) vCollection.emplace();
  vCollection->push_back(std::move(vRecord));
}

}  // namespace

bool clsOrvPap::GetPrcData() {
  try {
    NewSuppliers.emplace();
    NewAssortments.emplace();
    NewAssSuppls.emplace();
    NewSeries.emplace();
    NewArticles.emplace();
    NewDiscounts.emplace();
    BasePrices.emplace();
    OverlengthBonuses.emplace();
    PriceData.emplace();

    files::TextReader file(files::ToPath(FilePath));
    PrcSectionTracker sections;
    do {  // an empty file has no first line, which is an error
      std::wstring line = file.ReadLine();
      if (sections.Take(line) == PrcSectionTracker::LineKind::kRecord) {
        ReadRecord(sections.Current(), std::move(line));
      }
      DoEvents();
    } while (!file.AtEnd());
    return true;
  } catch (...) {
    ShowErrorMessage(L"clsOrvPap.GetPrcData (Function)");
    RaiseErrorInHand();
    return false;
  }
}

void clsOrvPap::ReadRecord(Section vSection, std::wstring vLine) {
  if (PSplitCount(vLine) != PrcFileFormat::FormatOf(vSection).FieldCount) return;
  const std::vector<std::wstring> fields = PSplit(vLine);
  const FieldReader reader(fields);
  switch (vSection) {
    case Section::kNewSupplier:
      return Add(NewSuppliers, ReadNewSupplier(reader));
    case Section::kNewAssortment:
      return Add(NewAssortments, ReadNewAssortment(reader));
    case Section::kNewAssSuppl:
      return Add(NewAssSuppls, ReadNewAssSuppl(reader));
    case Section::kNewSerie:
      return Add(NewSeries, ReadNewSerie(reader));
    case Section::kNewArticle:
      return Add(NewArticles, ReadNewArticle(reader));
    case Section::kNewDiscount:
      return Add(NewDiscounts, ReadNewDiscount(reader));
    case Section::kUpdateBasePrice:
      return Add(BasePrices, ReadBasePrice(reader));
    case Section::kUpdateOverlengthBonus:
      return Add(OverlengthBonuses, ReadOverlengthBonus(reader));
    case Section::kUpdatePriceData:
      return Add(PriceData, ReadPriceData(reader));
  }
}
