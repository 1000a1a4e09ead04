// One record of the section [UPDATE BASEPRICE] and how it is written into the product table.
#pragma once

#include <cstdint>
#include <string>

#include "platform/database/recordset.h"

// One price step of a base-price group. Lives for one record: filled, saved, read.
class clsUpdateBasePrice {
 public:
  std::wstring Code;
  std::wstring Description;
  std::uint8_t DimUnit = 0;
  std::uint8_t PriceUnit = 0;
  double Begin = 0;
  double End = 0;
  double BasePrice = 0;
  std::wstring ResultText;  // the outcome of the save

  // Adds the group, or overwrites the one with this code, and adds one price step to it. The
  // recordsets are the supplier's BPG rows and the BasePrice table, both open to be changed; they
  // must outlive the call. `vResult` says whether the rows were written; an error is in ResultText.
  void SaveBasePrice(database::Recordset& vBPG, database::Recordset& vBasePrice,
                     std::int32_t vSupplierID, bool& vResult);

  // Deletes all price steps of the group. `vResult` is no when there is no such group, ResultText
  // is empty then, or after an error, which is in ResultText.
  void DeleteBasePrice(database::Recordset& vBPG, bool& vResult);
};
