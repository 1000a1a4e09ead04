// The file writer of a price update: header and records as a file in the program's own layout.
#include <initializer_list>
#include <string>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "engine/PapHeaderFields.h"
#include "engine/clsOrvPap.h"
#include "platform/files/paths.h"
#include "platform/files/text_writer.h"

namespace {

using PrcFileFormat::Section;

// A quote inside a text has no escape in this format; it is written as it stands.
std::wstring Quoted(const std::wstring& vText) { return L'"' + vText + L'"'; }

std::wstring TruthValue(bool vValue) { return vValue ? L"True" : L"False"; }

std::wstring OptionalDecimal(const std::optional<double>& vValue) {
  return FormatDecimalValue(vValue ? text::Variant(*vValue) : text::Variant());
}

std::wstring Line(std::initializer_list<std::wstring> vFields) {
  std::wstring line;
  for (const std::wstring& field : vFields) {
    if (&field != vFields.begin()) line += L',';
    line += field;
  }
  return line;
}

std::wstring LineOf(const clsNewSupplier& vRecord) {
  return Line({Quoted(vRecord.Code), Quoted(vRecord.Description), FormatDecimal(vRecord.ToA),
               FormatDecimal(vRecord.ToB)});
}

std::wstring LineOf(const clsNewAssortment& vRecord) {
  return Line({Quoted(vRecord.AssCode), Quoted(vRecord.Description),
               std::to_wstring(vRecord.DimUnit), std::to_wstring(vRecord.PriceUnit),
               TruthValue(vRecord.BasePriceGroups), TruthValue(vRecord.DiscountGroups),
               std::to_wstring(vRecord.FabrCode), Quoted(vRecord.Remark)});
}

std::wstring LineOf(const clsNewAssSuppl& vRecord) {
  return Line({Quoted(vRecord.AssCode), Quoted(vRecord.SupplierCode),
               std::to_wstring(vRecord.PrcDiscountType)});
}

std::wstring LineOf(const clsNewSerie& vRecord) {
  return Line({Quoted(vRecord.SerieCode), Quoted(vRecord.Description),
               FormatDecimal(vRecord.Density), TruthValue(vRecord.UseOverlengthBonus),
               Quoted(vRecord.Remark)});
}

std::wstring LineOf(const clsNewArticle& vRecord) {
  return Line({Quoted(vRecord.SerieCode), Quoted(vRecord.Code),
               Quoted(StripControlChars(vRecord.Description)),
               Quoted(StripControlChars(vRecord.Description2)), FormatDecimal(vRecord.Ht),
               FormatDecimal(vRecord.Wb), FormatDecimal(vRecord.Wu), FormatDecimal(vRecord.tfb),
               FormatDecimal(vRecord.tfu), FormatDecimal(vRecord.tw), FormatDecimal(vRecord.Ri),
               FormatDecimal(vRecord.Ro), FormatDecimal(vRecord.S), FormatDecimal(vRecord.Snet),
               FormatDecimal(vRecord.Slope), FormatDecimal(vRecord.t),
               FormatDecimal(vRecord.VolDim), FormatDecimal(vRecord.Area), Quoted(vRecord.Remark)});
}

std::wstring LineOf(const clsNewDiscount& vRecord) {
  return Line({Quoted(vRecord.Code), Quoted(vRecord.Description), FormatDecimal(vRecord.DiscPercA),
               FormatDecimal(vRecord.DiscPercB), FormatDecimal(vRecord.DiscPercC)});
}

std::wstring LineOf(const clsUpdateBasePrice& vRecord) {
  return Line({Quoted(vRecord.Code), Quoted(vRecord.Description), FormatDecimal(vRecord.DimUnit),
               FormatDecimal(vRecord.PriceUnit), FormatDecimal(vRecord.Begin),
               FormatDecimal(vRecord.End), FormatDecimal(vRecord.BasePrice)});
}

std::wstring LineOf(const clsUpdateOverlengthB& vRecord) {
  return Line(
      {FormatDecimal(vRecord.Begin), FormatDecimal(vRecord.End), FormatDecimal(vRecord.Price)});
}

std::wstring LineOf(const clsUpdatePriceData& vRecord) {
  return Line({Quoted(vRecord.Code), OptionalDecimal(vRecord.PriceDim),
               OptionalDecimal(vRecord.OverPrice), OptionalDecimal(vRecord.SawPrice),
               OptionalDecimal(vRecord.BlastPrice), OptionalDecimal(vRecord.CoatPrice),
               Quoted(vRecord.BPGCode), Quoted(vRecord.DiscountCode),
               Quoted(vRecord.ArtNrSupplier)});
}

// A section line stands above its records, an empty line below them, also where there are none.
template <class Record>
void WriteSection(files::TextWriter& vFile, Section vSection,
                  const clsOrvPap::Collection<Record>& vRecords) {
  vFile.WriteLine(PrcFileFormat::FormatOf(vSection).Line);
  if (vRecords) {
    for (const Record& record : *vRecords) vFile.WriteLine(LineOf(record));
  }
  vFile.WriteLine(L"");
}

// The value line of a header section. The version written is the writer's own; the date of the
// update itself is written even when it is not set.
std::wstring HeaderValue(const clsOrvPap& vOrvPap, const PapHeaderField& vField) {
  if (vField.Text == &clsOrvPap::Version) return std::wstring(PrcFileFormat::kVersion);
  if (vField.Text != nullptr) return vOrvPap.*vField.Text;
  const double date = vOrvPap.*vField.Date;
  if (date == text::kUnsetDate && vField.Date != &clsOrvPap::PapDate) return {};
  return text::FormatCompactDate(date);
}

// The file's own name; a path without a folder is all name.
std::wstring FileNameOf(const std::wstring& vFilePath) {
  const std::wstring name = GetFileName(vFilePath);
  return name.empty() ? vFilePath : name;
}

}  // namespace

bool clsOrvPap::SavePrcFile(const std::wstring& vTargetFolder) const {
  try {
    const std::wstring path = AddBackslash(vTargetFolder) + FileNameOf(FilePath);
    if (files::FileExists(path)) {
      const std::wstring question = L"Wilt u het bestand '" + path + L"' overschrijven?";
      if (!Shared().objPrompt->AskYesNo(question, Shared().strApplicationTitle)) return false;
    }

    files::TextWriter file(files::ToPath(path));
    for (const PapHeaderField& field : kPapHeaderFields) {
      file.WriteLine(field.Section);
      file.WriteLine(HeaderValue(*this, field));
      file.WriteLine(L"");
    }
    WriteSection(file, Section::kNewSupplier, NewSuppliers);
    WriteSection(file, Section::kNewAssortment, NewAssortments);
    WriteSection(file, Section::kNewAssSuppl, NewAssSuppls);
    WriteSection(file, Section::kNewSerie, NewSeries);
    WriteSection(file, Section::kNewArticle, NewArticles);
    WriteSection(file, Section::kNewDiscount, NewDiscounts);
    WriteSection(file, Section::kUpdateBasePrice, BasePrices);
    WriteSection(file, Section::kUpdateOverlengthBonus, OverlengthBonuses);
    WriteSection(file, Section::kUpdatePriceData, PriceData);
    file.Close();
    return true;
  } catch (...) {
    ShowErrorMessage(L"clsOrvPap.SavePrcFile (Function)");
    return false;
  }
}
