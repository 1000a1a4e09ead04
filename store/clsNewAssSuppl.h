// One record of the section [NEW ASSSUPPL] and how it is written into the product table.
#pragma once

#include <cstdint>
#include <string>

#include "platform/database/connection.h"

// Lives for one record: filled, saved, read.
class clsNewAssSuppl {
 public:
  std::wstring AssCode;
  std::wstring SupplierCode;
  std::int32_t PrcDiscountType = 0;
  std::wstring ResultText;  // the outcome of the save

  // Links the assortment with the supplier that delivers it, or changes the link; both must exist.
  // `vResult` says whether the row was written; a refusal or an error is in ResultText.
  void SaveNewAssSuppl(database::Connection& vConnection, bool& vResult);

 private:
  void SaveLink(database::Connection& vConnection, std::int32_t vAssNr, std::int32_t vSupplierID);
};
