// One record of the section [NEW DISCOUNT] and how it is written into the product table.
#pragma once

#include <cstdint>
#include <string>

#include "platform/database/connection.h"

// Lives for one record: filled, saved, read.
class clsNewDiscount {
 public:
  std::wstring Code;
  std::wstring Description;
  double DiscPercA = 0;
  double DiscPercB = 0;
  double DiscPercC = 0;
  std::wstring ResultText;  // the outcome of the save

  // Adds the discount to the supplier `vSupplierID`, or renames that supplier's discount of this
  // code, whose percentages are kept: they are what the user negotiated. A code that only other
  // suppliers use is refused. `vResult` says whether the row was written; a refusal or an error is
  // in ResultText.
  void SaveNewDiscount(database::Connection& vConnection, std::int32_t vSupplierID, bool& vResult);
};
