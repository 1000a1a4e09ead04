// Beams, channels and angles of the demo installation, from the dimensions of their standards.
#include <numbers>
#include <span>

#include "demo/catalogue.h"

namespace demo {
namespace {

// All lengths in mm.
struct Beam {
  double size;  // in the name
  double h;
  double b;
  double tw;
  double tf;
  double r;
};

struct Channel {
  double h;
  double b;
  double tw;
  double tf;
  double r1;
  double r2;
  double area;     // cm2
  double surface;  // m2/m
};

struct Angle {
  double a;
  double b;
  double t;
  double r1;  // at the root; at the toes half of it
};

constexpr Beam kHEA[] = {
    {100, 96, 100, 5, 8, 12},       {120, 114, 120, 5, 8, 12},     {140, 133, 140, 5.5, 8.5, 12},
    {160, 152, 160, 6, 9, 15},      {180, 171, 180, 6, 9.5, 15},   {200, 190, 200, 6.5, 10, 18},
    {220, 210, 220, 7, 11, 18},     {240, 230, 240, 7.5, 12, 21},  {260, 250, 260, 7.5, 12.5, 24},
    {280, 270, 280, 8, 13, 24},     {300, 290, 300, 8.5, 14, 27},  {320, 310, 300, 9, 15.5, 27},
    {340, 330, 300, 9.5, 16.5, 27}, {360, 350, 300, 10, 17.5, 27}, {400, 390, 300, 11, 19, 27},
    {450, 440, 300, 11.5, 21, 27},  {500, 490, 300, 12, 23, 27},   {550, 540, 300, 12.5, 24, 27},
    {600, 590, 300, 13, 25, 27},    {650, 640, 300, 13.5, 26, 27}, {700, 690, 300, 14.5, 27, 27},
    {800, 790, 300, 15, 28, 30},    {900, 890, 300, 16, 30, 30},   {1000, 990, 300, 16.5, 31, 30},
};

constexpr Beam kHEB[] = {
    {100, 100, 100, 6, 10, 12},    {120, 120, 120, 6.5, 11, 12},    {140, 140, 140, 7, 12, 12},
    {160, 160, 160, 8, 13, 15},    {180, 180, 180, 8.5, 14, 15},    {200, 200, 200, 9, 15, 18},
    {220, 220, 220, 9.5, 16, 18},  {240, 240, 240, 10, 17, 21},     {260, 260, 260, 10, 17.5, 24},
    {280, 280, 280, 10.5, 18, 24}, {300, 300, 300, 11, 19, 27},     {320, 320, 300, 11.5, 20.5, 27},
    {340, 340, 300, 12, 21.5, 27}, {360, 360, 300, 12.5, 22.5, 27}, {400, 400, 300, 13.5, 24, 27},
    {450, 450, 300, 14, 26, 27},   {500, 500, 300, 14.5, 28, 27},   {550, 550, 300, 15, 29, 27},
    {600, 600, 300, 15.5, 30, 27}, {650, 650, 300, 16, 31, 27},     {700, 700, 300, 17, 32, 27},
    {800, 800, 300, 17.5, 33, 30}, {900, 900, 300, 18.5, 35, 30},   {1000, 1000, 300, 19, 36, 30},
};

constexpr Beam kIPE[] = {
    {80, 80, 46, 3.8, 5.2, 5},      {100, 100, 55, 4.1, 5.7, 7},     {120, 120, 64, 4.4, 6.3, 7},
    {140, 140, 73, 4.7, 6.9, 7},    {160, 160, 82, 5, 7.4, 9},       {180, 180, 91, 5.3, 8, 9},
    {200, 200, 100, 5.6, 8.5, 12},  {220, 220, 110, 5.9, 9.2, 12},   {240, 240, 120, 6.2, 9.8, 15},
    {270, 270, 135, 6.6, 10.2, 15}, {300, 300, 150, 7.1, 10.7, 15},  {330, 330, 160, 7.5, 11.5, 18},
    {360, 360, 170, 8, 12.7, 18},   {400, 400, 180, 8.6, 13.5, 21},  {450, 450, 190, 9.4, 14.6, 21},
    {500, 500, 200, 10.2, 16, 21},  {550, 550, 210, 11.1, 17.2, 24}, {600, 600, 220, 12, 19, 24},
};

constexpr Channel kUNP[] = {
    {80, 45, 6, 8, 8, 4, 11.0, 0.312},
    {100, 50, 6, 8.5, 8.5, 4.5, 13.5, 0.372},
    {120, 55, 7, 9, 9, 4.5, 17.0, 0.434},
    {140, 60, 7, 10, 10, 5, 20.4, 0.489},
    {160, 65, 7.5, 10.5, 10.5, 5.5, 24.0, 0.546},
    {180, 70, 8, 11, 11, 5.5, 28.0, 0.611},
    {200, 75, 8.5, 11.5, 11.5, 6, 32.2, 0.661},
    {220, 80, 9, 12.5, 12.5, 6.5, 37.4, 0.718},
    {240, 85, 9.5, 13, 13, 6.5, 42.3, 0.775},
    {260, 90, 10, 14, 14, 7, 48.3, 0.834},
    {280, 95, 10, 15, 15, 7.5, 53.3, 0.890},
    {300, 100, 10, 16, 16, 8, 58.8, 0.950},
    {320, 100, 14, 17.5, 17.5, 8.75, 75.8, 0.982},
    {350, 100, 14, 16, 16, 8, 77.3, 1.05},
    {380, 102, 13.5, 16, 16, 8, 80.4, 1.11},
    {400, 110, 14, 18, 18, 9, 91.5, 1.18},
};

constexpr Angle kEqualAngles[] = {
    {20, 20, 3, 3.5},   {25, 25, 3, 3.5},   {25, 25, 4, 3.5},   {30, 30, 3, 5},
    {30, 30, 4, 5},     {35, 35, 4, 5},     {40, 40, 4, 6},     {40, 40, 5, 6},
    {45, 45, 4.5, 7},   {50, 50, 4, 7},     {50, 50, 5, 7},     {50, 50, 6, 7},
    {60, 60, 5, 8},     {60, 60, 6, 8},     {60, 60, 8, 8},     {65, 65, 7, 9},
    {70, 70, 6, 9},     {70, 70, 7, 9},     {75, 75, 6, 9},     {75, 75, 8, 9},
    {80, 80, 8, 10},    {80, 80, 10, 10},   {90, 90, 7, 11},    {90, 90, 8, 11},
    {90, 90, 9, 11},    {90, 90, 10, 11},   {100, 100, 8, 12},  {100, 100, 10, 12},
    {100, 100, 12, 12}, {120, 120, 10, 13}, {120, 120, 12, 13}, {130, 130, 12, 14},
    {150, 150, 10, 16}, {150, 150, 12, 16}, {150, 150, 15, 16}, {160, 160, 15, 17},
    {180, 180, 16, 18}, {180, 180, 18, 18}, {200, 200, 16, 18}, {200, 200, 18, 18},
    {200, 200, 20, 18}, {200, 200, 24, 18},
};

constexpr Angle kUnequalAngles[] = {
    {30, 20, 3, 4},     {40, 20, 4, 4},     {45, 30, 4, 4.5},   {50, 30, 5, 5},
    {60, 30, 5, 5},     {60, 40, 5, 6},     {60, 40, 6, 6},     {65, 50, 5, 6},
    {70, 50, 6, 7},     {75, 50, 6, 7},     {75, 50, 8, 7},     {80, 40, 6, 7},
    {80, 40, 8, 7},     {80, 60, 7, 8},     {100, 50, 6, 8},    {100, 50, 8, 8},
    {100, 65, 7, 10},   {100, 65, 8, 10},   {100, 65, 10, 10},  {100, 75, 8, 10},
    {100, 75, 10, 10},  {100, 75, 12, 10},  {120, 80, 8, 11},   {120, 80, 10, 11},
    {120, 80, 12, 11},  {125, 75, 8, 11},   {125, 75, 10, 11},  {125, 75, 12, 11},
    {135, 65, 8, 11},   {135, 65, 10, 11},  {150, 75, 9, 12},   {150, 75, 10, 12},
    {150, 90, 10, 12},  {150, 90, 12, 12},  {150, 100, 10, 12}, {150, 100, 12, 12},
    {200, 100, 10, 15}, {200, 100, 12, 15}, {200, 100, 15, 15}, {200, 150, 12, 15},
    {200, 150, 15, 15},
};

// What a rounding of radius r adds to a square corner's area (and takes from its outline, twice).
constexpr double kFillet = 1 - std::numbers::pi / 4;
constexpr double kOutlineLoss = 2 - std::numbers::pi / 2;

// Fills what all profiles have in common; `area` in mm2, `surface` in m2/m.
Product Profile(const std::wstring& serie, const std::wstring& code, const std::wstring& name,
                double area, double surface) {
  Product product;
  product.mass = Rounded(area * kSteel / 1000, 2);
  product.surface = Rounded(surface, 3);
  clsNewArticle& article = product.article;
  article.SerieCode = serie;
  article.Code = code;
  article.Description = name;
  article.Description2 =
      Number(product.mass) + L" kg/m - " + Number(product.surface) + L" m\u00b2/m";
  article.S = Rounded(area, 1);
  article.Snet = article.S;
  return product;
}

void AddBeams(Range& range, const std::wstring& serie, const std::wstring& description,
              std::span<const Beam> beams) {
  range.series.push_back(Serie(serie, description, kSteel, true));
  for (const Beam& beam : beams) {
    const double area =
        2 * beam.b * beam.tf + (beam.h - 2 * beam.tf) * beam.tw + 4 * kFillet * beam.r * beam.r;
    const double outline = 4 * beam.b + 2 * beam.h - 2 * beam.tw - 4 * kOutlineLoss * beam.r;
    const std::wstring size = CodeNumber(beam.size);
    std::wstring name = serie;
    name.append(L" ").append(size).append(L" S235JR");
    Product product = Profile(serie, serie + size, name, area, outline / 1000);
    clsNewArticle& article = product.article;
    article.Ht = beam.h;
    article.Wb = article.Wu = beam.b;
    article.tfb = article.tfu = beam.tf;
    article.tw = beam.tw;
    article.Ri = beam.r;
    range.products.push_back(product);
  }
}

void AddChannels(Range& range) {
  constexpr double kSlopeUpTo300 = 8;  // percent, of the flanges' inner sides
  constexpr double kSlopeAbove300 = 5;
  range.series.push_back(Serie(L"UNP", L"UNP-profielen S235JR", kSteel, true));
  for (const Channel& channel : kUNP) {
    const std::wstring size = CodeNumber(channel.h);
    Product product = Profile(L"UNP", L"UNP" + size, L"UNP " + size + L" S235JR",
                              channel.area * 100, channel.surface);
    clsNewArticle& article = product.article;
    article.Ht = channel.h;
    article.Wb = article.Wu = channel.b;
    article.tfb = article.tfu = channel.tf;
    article.tw = channel.tw;
    article.Ri = channel.r1;
    article.Ro = channel.r2;
    article.Slope = channel.h <= 300 ? kSlopeUpTo300 : kSlopeAbove300;
    range.products.push_back(product);
  }
}

void AddAngles(Range& range, const std::wstring& serie, const std::wstring& description,
               std::span<const Angle> angles) {
  range.series.push_back(Serie(serie, description, kSteel, false));
  for (const Angle& angle : angles) {
    const double r2 = angle.r1 / 2;
    const double area =
        angle.t * (angle.a + angle.b - angle.t) + kFillet * (angle.r1 * angle.r1 - 2 * r2 * r2);
    const double outline =
        2 * (angle.a + angle.b) - kOutlineLoss * angle.r1 - 2 * kOutlineLoss * r2;
    const std::wstring code =
        L"L" + CodeNumber(angle.a) + L"X" + CodeNumber(angle.b) + L"X" + CodeNumber(angle.t);
    const std::wstring name = L"Hoekstaal " + Number(angle.a) + L" x " + Number(angle.b) + L" x " +
                              Number(angle.t) + L" S235JR";
    Product product = Profile(serie, code, name, area, outline / 1000);
    clsNewArticle& article = product.article;
    article.Ht = angle.a;
    article.Wb = angle.b;
    article.tfb = angle.t;
    article.tw = angle.t;
    article.Ri = angle.r1;
    article.Ro = r2;
    range.products.push_back(product);
  }
}

}  // namespace

Range Profiles() {
  Range range;
  AddBeams(range, L"HEA", L"HEA-balken S235JR", kHEA);
  AddBeams(range, L"HEB", L"HEB-balken S235JR", kHEB);
  AddBeams(range, L"IPE", L"IPE-balken S235JR", kIPE);
  AddChannels(range);
  AddAngles(range, L"L-GEL", L"Hoekstaal gelijkzijdig S235JR", kEqualAngles);
  AddAngles(range, L"L-ONG", L"Hoekstaal ongelijkzijdig S235JR", kUnequalAngles);
  return range;
}

}  // namespace demo
