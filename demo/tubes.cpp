// Round and square tubes of the demo installation, from the dimensions of their standards.
#include <numbers>
#include <span>

#include "demo/catalogue.h"

namespace demo {
namespace {

// In mm.
struct Size {
  double outer;  // diameter, or side of a square
  double wall;
};

constexpr Size kSeamless[] = {
    {21.3, 2},    {21.3, 2.6}, {21.3, 3.2},  {26.9, 2.3},  {26.9, 2.6},  {26.9, 3.2},
    {33.7, 2.6},  {33.7, 3.2}, {33.7, 4},    {42.4, 2.6},  {42.4, 3.2},  {42.4, 4},
    {48.3, 2.6},  {48.3, 3.2}, {48.3, 4},    {48.3, 5},    {60.3, 2.9},  {60.3, 3.6},
    {60.3, 4},    {60.3, 5},   {76.1, 2.9},  {76.1, 3.6},  {76.1, 5},    {88.9, 3.2},
    {88.9, 4},    {88.9, 5},   {88.9, 6.3},  {114.3, 3.6}, {114.3, 4.5}, {114.3, 5},
    {114.3, 6.3}, {139.7, 4},  {139.7, 5},   {139.7, 6.3}, {168.3, 4.5}, {168.3, 5},
    {168.3, 6.3}, {168.3, 8},  {193.7, 5.6}, {193.7, 6.3}, {193.7, 8},   {219.1, 6.3},
    {219.1, 8},   {219.1, 10}, {244.5, 6.3}, {244.5, 8},   {244.5, 10},  {273, 6.3},
    {273, 8},     {273, 10},   {323.9, 7.1}, {323.9, 8},   {323.9, 10},  {323.9, 12.5},
};

constexpr Size kPrecision[] = {
    {6, 1},  {8, 1},    {10, 1},   {10, 1.5}, {12, 1}, {12, 1.5}, {12, 2}, {14, 1.5}, {15, 1.5},
    {15, 2}, {16, 1.5}, {16, 2},   {18, 1.5}, {18, 2}, {20, 1.5}, {20, 2}, {20, 2.5}, {22, 1.5},
    {22, 2}, {25, 2},   {25, 2.5}, {25, 3},   {28, 2}, {28, 2.5}, {30, 2}, {30, 3},   {35, 2},
    {35, 3}, {38, 2.5}, {38, 3},   {42, 2},   {42, 3}, {50, 3},   {50, 5},
};

constexpr Size kSquare[] = {
    {30, 2},  {30, 3},  {40, 3},  {40, 4},  {50, 3},  {50, 4},  {50, 5},  {60, 3},
    {60, 4},  {60, 5},  {80, 3},  {80, 4},  {80, 5},  {80, 6},  {100, 4}, {100, 5},
    {100, 6}, {100, 8}, {120, 5}, {120, 6}, {120, 8}, {150, 5}, {150, 6}, {150, 8},
};

constexpr Size kStainlessSizes[] = {
    {21.3, 2}, {26.9, 2},   {33.7, 2}, {33.7, 2.6}, {42.4, 2}, {42.4, 2.6}, {48.3, 2},  {48.3, 2.6},
    {60.3, 2}, {60.3, 2.6}, {76.1, 2}, {88.9, 2},   {88.9, 3}, {114.3, 2},  {114.3, 3},
};

// `area` is that of the cross-section in mm2, `outline` in mm.
Product Tube(const std::wstring& serie, const std::wstring& code, const std::wstring& name,
             double area, double outline, double density) {
  Product product;
  product.mass = Rounded(area * density / 1000, 3);
  product.surface = Rounded(outline / 1000, 4);
  clsNewArticle& article = product.article;
  article.SerieCode = serie;
  article.Code = code;
  article.Description = name;
  article.Description2 = Number(product.mass) + L" kg/m";
  article.VolDim = Rounded(area / 1000, 5);  // dm3/m
  article.Area = product.surface;
  return product;
}

void AddRound(Range& range, const std::wstring& serie, const std::wstring& description,
              std::span<const Size> sizes, double density) {
  range.series.push_back(Serie(serie, description, density, false));
  for (const Size& size : sizes) {
    const std::wstring code = serie + CodeNumber(size.outer) + L"X" + CodeNumber(size.wall);
    const std::wstring name = description + L" " + Number(size.outer) + L" x " + Number(size.wall);
    const double area = std::numbers::pi * (size.outer - size.wall) * size.wall;
    range.products.push_back(Tube(serie, code, name, area, std::numbers::pi * size.outer, density));
  }
}

}  // namespace

Range Tubes() {
  Range range;
  AddRound(range, L"NL", L"Buis naadloos P235GH", kSeamless, kSteel);
  AddRound(range, L"PR", L"Precisiebuis E235+N", kPrecision, kSteel);
  return range;
}

Range SquareTubes() {
  constexpr double kThinWall = 6;  // the corners of thicker walls are rounder
  Range range;
  range.series.push_back(Serie(L"VK", L"Koker vierkant S235JRH", kSteel, false));
  for (const Size& size : kSquare) {
    const double outer_radius = (size.wall <= kThinWall ? 2.0 : 2.5) * size.wall;
    const double inner_radius = outer_radius - size.wall;
    const double area =
        4 * size.wall * (size.outer - size.wall) -
        (4 - std::numbers::pi) * (outer_radius * outer_radius - inner_radius * inner_radius);
    const double outline = 4 * size.outer - (8 - 2 * std::numbers::pi) * outer_radius;
    const std::wstring side = Number(size.outer);
    std::wstring name = L"Koker ";
    name.append(side).append(L" x ").append(side).append(L" x ").append(Number(size.wall));
    const std::wstring code = L"VK" + CodeNumber(size.outer) + L"X" + CodeNumber(size.wall);
    range.products.push_back(Tube(L"VK", code, name + L" S235JRH", area, outline, kSteel));
  }
  return range;
}

Range StainlessTubes() {
  Range range;
  AddRound(range, L"RVS", L"Buis roestvast 1.4301", kStainlessSizes, kStainless);
  return range;
}

}  // namespace demo
