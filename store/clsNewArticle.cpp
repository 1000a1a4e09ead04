// One record of the section [NEW ARTICLE] and how it is written into the product table.
#include "store/clsNewArticle.h"

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "platform/database/recordset.h"
#include "store/ProductTableSchema.h"
#include "store/RecordWriting.h"

namespace columns = ProductTable::Article;

namespace {

using database::CursorType;
using database::LockType;

// Opens an article's row of a dimension table, adding it when there is none; `vStatement` selects
// it.
void OpenDimensions(database::Recordset& vRecordset, const std::wstring& vStatement,
                    database::Connection& vConnection, const std::wstring& vIDColumn,
                    std::int32_t vID) {
  vRecordset.Open(vStatement, vConnection, CursorType::kForwardOnly, LockType::kOptimistic);
  if (!vRecordset.Eof()) return;
  vRecordset.AddNew();
  vRecordset(vIDColumn) = vID;
}

}  // namespace

void clsNewArticle::SaveNewArticle(database::Connection& vConnection, std::int32_t vAssNr,
                                   std::uint8_t vDimKind, bool& vResult) {
  vResult = false;
  try {
    database::Recordset serie;
    serie.Open(L"SELECT * FROM Serie WHERE SerieCode = '" + SerieCode + L"'", vConnection,
               CursorType::kForwardOnly, LockType::kOptimistic);
    if (serie.Eof()) {
      ResultText = RefusalText(ResultTexts::kArticleWithoutSerie, SerieCode);
      return;
    }
    if (NullToLong(serie(ProductTable::Serie::kAssNr).Value()) != vAssNr) {
      ResultText = RefusalText(ResultTexts::kArticleSerieOfOtherAssortment, SerieCode);
      return;
    }
    const std::int32_t serie_nr = NullToLong(serie(ProductTable::Serie::kSerieNr).Value());
    if (serie_nr <= 0) return;

    database::Recordset article;
    article.Open(L"SELECT * FROM Article WHERE Code = '" + Code + L"'", vConnection,
                 CursorType::kForwardOnly, LockType::kOptimistic);
    if (article.Eof()) {
      article.AddNew();
      ResultText = LanguageText(ResultTexts::kArticleAdded);
      article(columns::kfkSerie) = serie_nr;
      if (!Remark.empty()) article(columns::kRemark) = Remark;
    } else if (NullToLong(article(columns::kfkSerie).Value()) != serie_nr) {
      ResultText = RefusalText(ResultTexts::kArticleOfOtherSerie, Code);
      return;
    } else {
      ResultText = LanguageText(ResultTexts::kArticleChanged);
    }
    article(columns::kCode) = Code;
    article(columns::kDescription) = Description;
    article(columns::kDescription2) = Description2;
    article.Update();

    SaveDimensions(vConnection, NullToLong(article(columns::kID).Value()), vDimKind);
    vResult = true;
  } catch (...) {
    ResultText = ErrorResultText();
  }
}

void clsNewArticle::SaveDimensions(database::Connection& vConnection, std::int32_t vID,
                                   std::uint8_t vDimKind) const {
  const std::wstring id = std::to_wstring(vID);
  database::Recordset row;
  if (vDimKind == ProductTable::kDimensionKindProfile) {
    namespace profile = ProductTable::ArtDimL;
    OpenDimensions(row, L"SELECT * FROM ArtDimL WHERE ID = " + id, vConnection, profile::kID, vID);
    row(profile::kHt) = Ht;
    row(profile::kWb) = Wb;
    row(profile::kWu) = Wu;
    row(profile::ktfb) = tfb;
    row(profile::ktfu) = tfu;
    // The repeat is kept: it changes nothing, and this row has always been filled in just these
    // assignments, which can then be compared with the columns one by one.
    row(profile::ktfu) = tfu;
    row(profile::ktw) = tw;
    row(profile::kRi) = Ri;
    row(profile::kRo) = Ro;
    row(profile::kS) = S;
    row(profile::kSnet) = Snet;
    row(profile::kSlope) = Slope;
  } else if (vDimKind == ProductTable::kDimensionKindPlate) {
    namespace plate = ProductTable::ArtDimPl;
    OpenDimensions(row, L"SELECT * FROM ArtDimPl WHERE ID = " + id, vConnection, plate::kID, vID);
    row(plate::kt) = t;
  } else {
    namespace other = ProductTable::ArtOrvc;
    OpenDimensions(row, L"SELECT * FROM ArtOrvc WHERE ID = " + id, vConnection, other::kID, vID);
    row(other::kVolDim) = VolDim;
    row(other::kArea) = Area;
  }
  row.Update();
}
