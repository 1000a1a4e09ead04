// One record of the section [NEW SERIE] and how it is written into the product table.
#include "store/clsNewSerie.h"

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "platform/database/recordset.h"
#include "store/ProductTableSchema.h"
#include "store/RecordWriting.h"

namespace columns = ProductTable::Serie;

void clsNewSerie::SaveNewSerie(database::Connection& vConnection, std::int32_t vAssNr,
                               bool& vResult) {
  vResult = false;
  try {
    database::Recordset serie;
    serie.Open(L"SELECT * FROM Serie WHERE SerieCode = '" + SerieCode + L"'", vConnection,
               database::CursorType::kForwardOnly, database::LockType::kOptimistic);
    if (serie.Eof()) {
      serie.AddNew();
      serie(columns::kAssNr) = vAssNr;
      if (!Remark.empty()) serie(columns::kRemark) = Remark;
      ResultText = LanguageText(ResultTexts::kSerieAdded);
    } else if (NullToLong(serie(columns::kAssNr).Value()) != vAssNr) {
      ResultText = RefusalText(ResultTexts::kSerieOfOtherAssortment, SerieCode);
      return;
    } else {
      ResultText = LanguageText(ResultTexts::kSerieChanged);
    }
    serie(columns::kSerieCode) = SerieCode;
    serie(columns::kDescription) = Description;
    serie(columns::kDensity) = Density;
    serie(columns::kUseOverlengthBonus) = UseOverlengthBonus;
    serie.Update();
    vResult = true;
  } catch (...) {
    ResultText = ErrorResultText();
  }
}
