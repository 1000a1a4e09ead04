// One record of the section [NEW ARTICLE] and how it is written into the product table.
#pragma once

#include <cstdint>
#include <string>

#include "platform/database/connection.h"

// Lives for one record: filled, saved, read.
class clsNewArticle {
 public:
  std::wstring SerieCode;
  std::wstring Code;
  std::wstring Description;
  std::wstring Description2;
  std::wstring Remark;
  // The dimension values; which of them count is decided by the dimension kind.
  double Ht = 0;
  double Wb = 0;
  double Wu = 0;
  double tfb = 0;
  double tfu = 0;
  double tw = 0;
  double Ri = 0;
  double Ro = 0;
  double S = 0;
  double Snet = 0;
  double Slope = 0;
  double t = 0;
  double VolDim = 0;
  double Area = 0;
  std::wstring ResultText;  // the outcome of the save

  // Adds the article to its series, or overwrites the one with this code, whose remark is kept, and
  // writes its dimensions into the table for `vDimKind` (ProductTableSchema.h). Its series must
  // belong to the assortment `vAssNr`; an article of another series is refused, never moved.
  // `vResult` says whether both rows were written; a refusal or an error is in ResultText (no text
  // where the series does not exist at all).
  void SaveNewArticle(database::Connection& vConnection, std::int32_t vAssNr, std::uint8_t vDimKind,
                      bool& vResult);

 private:
  void SaveDimensions(database::Connection& vConnection, std::int32_t vID,
                      std::uint8_t vDimKind) const;
};
