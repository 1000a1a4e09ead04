// Plates of the demo installation: stock thicknesses in stock formats.
#include <span>

#include "demo/catalogue.h"

namespace demo {
namespace {

// In mm.
struct Format {
  double width;
  double length;
};

constexpr Format kSmall[] = {{1000, 2000}, {1250, 2500}};
constexpr Format kLarge[] = {{1250, 2500}, {1500, 3000}};
constexpr Format kMedium[] = {{1250, 2500}};

constexpr double kHotRolled[] = {3, 4, 5, 6, 8, 10, 12, 15, 20, 25, 30, 35, 40, 50, 60, 80, 100};
constexpr double kColdRolled[] = {0.5, 0.75, 0.8, 1, 1.25, 1.5, 2, 2.5, 3};
constexpr double kGalvanised[] = {0.5, 0.75, 1, 1.25, 1.5, 2, 2.5, 3};
constexpr double kTread[] = {3, 4, 5, 6, 8, 10};

struct Kind {
  const wchar_t* code;
  const wchar_t* description;
  std::span<const double> thicknesses;
  std::span<const Format> formats;
  double extra;  // kg/m2 beyond thickness times density: a coating, or a pattern of studs
};

constexpr Kind kKinds[] = {
    {L"WG", L"Plaat warmgewalst S235JR", kHotRolled, kLarge, 0},
    {L"KG", L"Plaat koudgewalst DC01", kColdRolled, kSmall, 0},
    {L"SZ", L"Plaat verzinkt DX51D Z275", kGalvanised, kMedium, 0.275},
    {L"TR", L"Tranenplaat S235JR", kTread, kMedium, 3.0},
};

Product Plate(const Kind& kind, double thickness, const Format& format) {
  const double area = format.width * format.length / 1e6;
  const std::wstring size = CodeNumber(format.width) + L"X" + CodeNumber(format.length);
  Product product;
  product.mass = Rounded(area * (thickness * kSteel + kind.extra), 2);
  product.surface = 2 * area;
  clsNewArticle& article = product.article;
  article.SerieCode = kind.code;
  article.Code = kind.code + CodeNumber(thickness) + L"-" + size;
  article.Description = std::wstring(kind.description) + L" " + Number(thickness) + L" mm";
  article.Description2 = Number(format.width) + L" x " + Number(format.length) + L" mm - " +
                         Number(product.mass) + L" kg";
  article.t = thickness;
  return product;
}

}  // namespace

Range Plates() {
  Range range;
  for (const Kind& kind : kKinds) {
    range.series.push_back(Serie(kind.code, kind.description, kSteel, false));
    for (const double thickness : kind.thicknesses) {
      for (const Format& format : kind.formats) {
        range.products.push_back(Plate(kind, thickness, format));
      }
    }
  }
  return range;
}

}  // namespace demo
