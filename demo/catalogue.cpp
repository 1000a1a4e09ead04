// What the product ranges of the demo installation share.
#include "demo/catalogue.h"

#include <cmath>

#include "platform/text/conversion.h"
#include "platform/text/locale.h"

namespace demo {

clsNewSerie Serie(const std::wstring& code, const std::wstring& description, double density,
                  bool overlength_bonus) {
  clsNewSerie serie;
  serie.SerieCode = code;
  serie.Description = description;
  serie.Density = density;
  serie.UseOverlengthBonus = overlength_bonus;
  return serie;
}

std::wstring Number(double value) {
  const text::ScopedLocale dutch({.decimal_mark = L',', .thousands_mark = L'.'});
  return text::FormatNumber(value);
}

std::wstring CodeNumber(double value) {
  const text::ScopedLocale neutral({.decimal_mark = L'.', .thousands_mark = L','});
  return text::FormatNumber(value);
}

double Rounded(double value, int decimals) {
  const double factor = std::pow(10.0, decimals);
  return std::round(value * factor) / factor;
}

}  // namespace demo
