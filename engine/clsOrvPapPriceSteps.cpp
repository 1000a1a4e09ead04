// The steps of an import that replace prices: base prices, overlength bonuses and article prices.
//
// Each of them clears before it writes, so that the file's prices replace the stored ones instead
// of adding to them. A section without records clears nothing. What the writing needs is looked for
// before the clearing, so that nothing is cleared that cannot be written again.
#include <array>
#include <span>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "engine/RecordStep.h"
#include "engine/clsOrvPap.h"
#include "platform/database/recordset.h"
#include "platform/text/conversion.h"
#include "store/ProductTableSchema.h"

namespace {

using database::CursorType;
using database::LockType;

void OpenDynamic(database::Recordset& vRecordset, const std::wstring& vStatement,
                 database::Connection& vConnection) {
  vRecordset.Open(vStatement, vConnection, CursorType::kDynamic, LockType::kOptimistic);
}

// Throws the database's error when one of the columns is missing.
void RequireColumns(database::Recordset& vRecordset, std::span<const wchar_t* const> vColumns) {
  for (const wchar_t* column : vColumns) vRecordset.Fields(column);
}

}  // namespace

bool clsOrvPap::SaveBasePrices() {
  try {
    if (!BasePrices) return true;
    if (BasePrices->empty()) {
      RaiseProgressInit(0);
      return true;
    }
    BeginStep(ImportTexts::kBasePrices, BasePrices);

    database::Recordset groups;
    OpenDynamic(groups,
                L"SELECT DISTINCTROW BPG.* From BPG Where BPG.fkSupplier = " +
                    std::to_wstring(m_supplierID) + L" ORDER BY BPG.Code",
                *m_connection);
    database::Recordset steps;
    OpenDynamic(steps, L"SELECT * FROM BasePrice", *m_connection);
    RequireColumns(groups, ProductTable::BPG::kColumns);
    RequireColumns(steps, ProductTable::BasePrice::kColumns);
    for (clsUpdateBasePrice& record : *BasePrices) {
      // A group that does not exist yet has nothing to delete, which is no failure.
      bool deleted = false;
      record.DeleteBasePrice(groups, deleted);
      DoEvents();
    }
    return SaveRecords(
        BasePrices,
        [&](clsUpdateBasePrice& vRecord, bool& vResult) {
          // Where the deleting failed with an error, that is the refusal: new steps would stand
          // beside the old ones.
          if (vRecord.ResultText.empty()) {
            vRecord.SaveBasePrice(groups, steps, m_supplierID, vResult);
          }
        },
        [](const clsUpdateBasePrice& vRecord) {
          return vRecord.Code + L" - " + vRecord.Description;
        });
  } catch (...) {
    ShowErrorMessage(L"clsOrvPap.SaveBasePrices (Function)");
    RaiseErrorInHand();
    return false;
  }
}

bool clsOrvPap::SaveOverlengthBonuses() {
  try {
    if (!OverlengthBonuses) return true;
    if (OverlengthBonuses->empty()) {
      RaiseProgressInit(0);
      return true;
    }
    BeginStep(ImportTexts::kOverlengthBonuses, OverlengthBonuses);

    database::Recordset bonuses;
    OpenDynamic(
        bonuses,
        L"SELECT * FROM OverlengthBonus WHERE fkSupplier = " + std::to_wstring(m_supplierID),
        *m_connection);
    RequireColumns(bonuses, ProductTable::OverlengthBonus::kColumns);
    if (!bonuses.Eof()) {
      RaiseShowListMessage(LanguageText(ImportTexts::kClearingOverlengthBonuses), L"", false,
                           false);
    }
    while (!bonuses.Eof()) {
      bonuses.Delete();
      bonuses.MoveNext();
      DoEvents();
    }

    return SaveRecords(
        OverlengthBonuses,
        [&](clsUpdateOverlengthB& vRecord, bool& vResult) {
          vRecord.SaveOverlengthBonus(bonuses, m_supplierID, vResult);
        },
        [](const clsUpdateOverlengthB& vRecord) {
          return text::FormatNumber(vRecord.Begin) + L" - " + text::FormatNumber(vRecord.End);
        });
  } catch (...) {
    ShowErrorMessage(L"clsOrvPap.SaveOverlengthBonuses (Function)");
    RaiseErrorInHand();
    return false;
  }
}

// An article of the assortment that the file does not name keeps its price per unit, but loses its
// surcharges, group, discount and supplier article number.
bool clsOrvPap::SavePriceData() {
  try {
    if (!PriceData) return true;
    if (PriceData->empty()) {
      RaiseProgressInit(0);
      return true;
    }
    BeginStep(ImportTexts::kPriceData, PriceData);

    const std::wstring articles_of_assortment =
        L"IN (SELECT Article.ID FROM Serie INNER JOIN Article ON Serie.SerieNr = Article.fkSerie "
        L"WHERE Serie.AssNr=" +
        std::to_wstring(m_assNr) + L")";
    const std::wstring supplier_id = std::to_wstring(m_supplierID);

    database::Recordset prices;
    OpenDynamic(prices,
                L"SELECT * FROM ArtPrice WHERE fkArticle " + articles_of_assortment +
                    L"AND fkSupplier = " + supplier_id,
                *m_connection);
    RequireColumns(prices, ProductTable::ArtPrice::kColumns);
    database::Recordset articles;
    OpenDynamic(articles,
                L"SELECT Article.ID, Article.Code FROM Article WHERE ID " + articles_of_assortment,
                *m_connection);
    database::Recordset groups;
    OpenDynamic(groups, L"SELECT * FROM BPG WHERE fkSupplier = " + supplier_id, *m_connection);
    database::Recordset discounts;
    OpenDynamic(discounts, L"SELECT * FROM Discount WHERE fkSupplier = " + supplier_id,
                *m_connection);
    RequireColumns(groups, std::array{ProductTable::BPG::kID, ProductTable::BPG::kCode});
    RequireColumns(discounts,
                   std::array{ProductTable::Discount::kID, ProductTable::Discount::kCode});
    ClearArticlePrices(prices);

    return SaveRecords(
        PriceData,
        [&](clsUpdatePriceData& vRecord, bool& vResult) {
          vRecord.SaveArtPrice(prices, articles, groups, discounts, m_supplierID, vResult);
        },
        [](const clsUpdatePriceData& vRecord) { return vRecord.Code; });
  } catch (...) {
    ShowErrorMessage(L"clsOrvPap.SavePriceData (Function)");
    RaiseErrorInHand();
    return false;
  }
}

void clsOrvPap::ClearArticlePrices(database::Recordset& vArtPrice) const {
  namespace columns = ProductTable::ArtPrice;
  if (!vArtPrice.Eof()) {
    RaiseShowListMessage(LanguageText(ImportTexts::kClearingPriceData), L"", false, false);
  }
  while (!vArtPrice.Eof()) {
    for (const wchar_t* column :
         {columns::kOverPrice, columns::kSawPrice, columns::kBlastPrice, columns::kCoatPrice,
          columns::kfkBPG, columns::kfkDiscount, columns::kArtNrSupplier}) {
      vArtPrice(column) = text::Null{};
    }
    vArtPrice.Update();
    vArtPrice.MoveNext();
    DoEvents();
  }
}
