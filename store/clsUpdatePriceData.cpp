// One record of the section [UPDATE PRICEDATA] and how it is written into the product table.
#include "store/clsUpdatePriceData.h"

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "store/ProductTableSchema.h"
#include "store/RecordWriting.h"

namespace columns = ProductTable::ArtPrice;

void clsUpdatePriceData::SaveArtPrice(database::Recordset& vArtPrice, database::Recordset& vArticle,
                                      database::Recordset& vBPG, database::Recordset& vDiscount,
                                      std::int32_t vSupplierID, bool& vResult) {
  vResult = false;
  try {
    if (!FindInAll(vArticle, CodeCriterion(Code))) {
      ResultText = RefusalText(ResultTexts::kPriceWithoutArticle, Code);
      return;
    }
    const std::int32_t article_id = NullToLong(vArticle(ProductTable::Article::kID).Value());
    ResultText = LanguageText(ResultTexts::kArticlePriceWritten);

    std::int32_t discount_id = 0;
    if (!DiscountCode.empty()) {
      if (!FindInAll(vDiscount, CodeCriterion(DiscountCode))) {
        ResultText = RefusalText(ResultTexts::kPriceWithoutDiscount, DiscountCode);
        return;
      }
      discount_id = NullToLong(vDiscount(ProductTable::Discount::kID).Value());
    }

    std::int32_t bpg_id = 0;
    if (!BPGCode.empty()) {
      if (!FindInAll(vBPG, CodeCriterion(BPGCode))) {
        ResultText = RefusalText(ResultTexts::kPriceWithoutBasePriceGroup, BPGCode);
        return;
      }
      bpg_id = NullToLong(vBPG(ProductTable::BPG::kID).Value());
    }

    if (!FindInAll(vArtPrice, L"fkArticle = " + std::to_wstring(article_id))) vArtPrice.AddNew();
    vArtPrice(columns::kfkSupplier) = vSupplierID;
    vArtPrice(columns::kfkArticle) = article_id;
    if (bpg_id != 0) vArtPrice(columns::kfkBPG) = bpg_id;
    if (discount_id != 0) vArtPrice(columns::kfkDiscount) = discount_id;
    vArtPrice(columns::kPriceDim) = NullWhenAbsent(PriceDim);
    vArtPrice(columns::kOverPrice) = NullWhenAbsent(OverPrice);
    vArtPrice(columns::kSawPrice) = NullWhenAbsent(SawPrice);
    vArtPrice(columns::kBlastPrice) = NullWhenAbsent(BlastPrice);
    vArtPrice(columns::kCoatPrice) = NullWhenAbsent(CoatPrice);
    vArtPrice(columns::kArtNrSupplier) = NullWhenEmpty(ArtNrSupplier);
    vArtPrice.Update();
    vResult = true;
  } catch (...) {
    ResultText = ErrorResultText();
  }
}
