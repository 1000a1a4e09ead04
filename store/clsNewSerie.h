// One record of the section [NEW SERIE] and how it is written into the product table.
#pragma once

#include <cstdint>
#include <string>

#include "platform/database/connection.h"

// Lives for one record: filled, saved, read.
class clsNewSerie {
 public:
  std::wstring SerieCode;
  std::wstring Description;
  double Density = 0;
  bool UseOverlengthBonus = false;
  std::wstring Remark;
  std::wstring ResultText;  // the outcome of the save

  // Adds the series to the assortment `vAssNr`, or overwrites the one with this code, whose remark
  // is kept. A series of another assortment is refused, never moved. `vResult` says whether the row
  // was written; a refusal or an error is in ResultText.
  void SaveNewSerie(database::Connection& vConnection, std::int32_t vAssNr, bool& vResult);
};
