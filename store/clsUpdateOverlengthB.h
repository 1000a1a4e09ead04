// One record of the section [UPDATE OVERLENGTHBONUS] and how it is written into the product table.
#pragma once

#include <cstdint>
#include <string>

#include "platform/database/recordset.h"

// Lives for one record: filled, saved, read.
class clsUpdateOverlengthB {
 public:
  double Begin = 0;
  double End = 0;
  double Price = 0;
  std::wstring ResultText;  // an error of the save; empty otherwise

  // Adds the bonus to the supplier `vSupplierID` through the given recordset of OverlengthBonus,
  // open to be changed, without looking for an earlier one. `vResult` says whether the row was
  // written.
  void SaveOverlengthBonus(database::Recordset& vOverlengthBonus, std::int32_t vSupplierID,
                           bool& vResult);
};
