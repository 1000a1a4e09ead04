// One record of the section [UPDATE PRICEDATA] and how it is written into the product table.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/database/recordset.h"

// The price of an article at a supplier. Lives for one record: filled, saved, read.
class clsUpdatePriceData {
 public:
  std::wstring Code;          // of the article
  std::wstring BPGCode;       // may be empty
  std::wstring DiscountCode;  // may be empty
  // A price without a value is written as Null.
  std::optional<double> PriceDim;
  std::optional<double> OverPrice;
  std::optional<double> SawPrice;
  std::optional<double> BlastPrice;
  std::optional<double> CoatPrice;
  std::wstring ArtNrSupplier;
  std::wstring ResultText;  // the outcome of the save

  // Adds the price, or overwrites the one that `vArtPrice` holds for the article. The article and,
  // where the record names them, discount and base-price group must be among the rows of the given
  // recordsets; otherwise the record is refused. A group or discount that the record does not name
  // is left as it is in the row. `vArtPrice` must be open to be changed. `vResult` says whether the
  // row was written; a refusal or an error is in ResultText.
  void SaveArtPrice(database::Recordset& vArtPrice, database::Recordset& vArticle,
                    database::Recordset& vBPG, database::Recordset& vDiscount,
                    std::int32_t vSupplierID, bool& vResult);
};
