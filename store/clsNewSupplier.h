// One record of the section [NEW SUPPLIER] and how it is written into the product table.
#pragma once

#include <string>

#include "platform/database/connection.h"

// Lives for one record: filled, saved, read.
class clsNewSupplier {
 public:
  std::wstring Code;
  std::wstring Description;
  double ToA = 0;
  double ToB = 0;
  std::wstring ResultText;  // the outcome of the save

  // Adds the supplier, or overwrites the one with this code. `vResult` says whether the row was
  // written; an error is in ResultText as "number: description".
  void SaveNewSupplier(database::Connection& vConnection, bool& vResult);
};
