// What the suppliers of the demo installation sell: steel as European standards describe it.
#pragma once

#include <string>
#include <vector>

#include "store/clsNewArticle.h"
#include "store/clsNewSerie.h"

namespace demo {

// A product: the article as an update file tells it, and what its price depends on.
struct Product {
  clsNewArticle article;
  double mass = 0;     // kg a metre; of a plate: kg a plate
  double surface = 0;  // m2 a metre; of a plate: both sides
};

// The products of one assortment and the series they belong to.
struct Range {
  std::vector<clsNewSerie> series;
  std::vector<Product> products;
};

// Wide-flange beams, channels and angles; dimensions of EN 10365 and EN 10056-1.
Range Profiles();

// Hot and cold rolled, galvanised and tread plates in stock formats.
Range Plates();

// Seamless tubes (EN 10220) and precision tubes (EN 10305-1).
Range Tubes();

// Square hollow sections (EN 10219-2).
Range SquareTubes();

// Stainless tubes (ISO 1127).
Range StainlessTubes();

// The density of structural steel and of stainless steel, kg/dm3.
inline constexpr double kSteel = 7.85;
inline constexpr double kStainless = 7.93;

// For the files of this folder: a series, and a number as descriptions write it ("48,3").
clsNewSerie Serie(const std::wstring& code, const std::wstring& description, double density,
                  bool overlength_bonus);
std::wstring Number(double value);

// The same as codes write it ("48.3").
std::wstring CodeNumber(double value);

// Rounded to so many decimals.
double Rounded(double value, int decimals);

}  // namespace demo
