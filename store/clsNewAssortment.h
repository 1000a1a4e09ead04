// One record of the section [NEW ASSORTMENT] and how it is written into the product table.
#pragma once

#include <cstdint>
#include <string>

#include "platform/database/connection.h"

// Lives for one record: filled, saved, read.
class clsNewAssortment {
 public:
  std::wstring AssCode;
  std::wstring Description;
  std::uint8_t DimUnit = 0;
  std::uint8_t PriceUnit = 0;
  bool BasePriceGroups = false;
  bool DiscountGroups = false;
  std::uint8_t FabrCode = 0;
  std::wstring Remark;
  std::wstring ResultText;  // the outcome of the save

  // Adds the assortment, or overwrites the one with this code, whose manufacturer code and remark
  // are kept: users may have made them their own. `vResult` says whether the row was written; an
  // error is in ResultText as "number: description".
  void SaveNewAssortment(database::Connection& vConnection, bool& vResult);
};
