// A made-up price update of any size, and its articles one by one.
#include "bench/synthetic_update.h"

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace bench {
namespace {

std::string Format(const char* format, auto... values) {
  char text[160];
  const int length = std::snprintf(text, sizeof text, format, values...);
  return std::string(text, static_cast<std::size_t>(length));
}

// A one-to-one scrambling of 32 bits, so that codes arrive in no order.
std::uint32_t Scramble(std::uint32_t value) {
  value *= 0x9e3779b1U;
  value ^= value >> 15;
  return value * 0x85ebca77U;
}

constexpr const char* kHeader =
    "[VERSION]\r\n3.2\r\n\r\n"
    "[DATE]\r\n20260105\r\n\r\n"
    "[ASSORTMENTCODE]\r\nBENCH\r\n\r\n"
    "[ASSORTMENTDESCRIPTION]\r\nSynthetic sections\r\n\r\n"
    "[SUPPLIERCODE]\r\nBENCHSUP\r\n\r\n"
    "[SUPPLIERDESCRIPTION]\r\nSynthetic supplier\r\n\r\n"
    "[PrcDate]\r\n20260105\r\n\r\n"
    "[Remark]\r\n\r\n"
    "[NEW SUPPLIER]\r\n\"BENCHSUP\",\"Synthetic supplier\",0,0\r\n\r\n"
    "[NEW ASSORTMENT]\r\n\"BENCH\",\"Synthetic sections\",1,1,False,False,1,\"\"\r\n\r\n"
    "[NEW ASSSUPPL]\r\n\"BENCH\",\"BENCHSUP\",1\r\n\r\n"
    "[NEW SERIE]\r\n\"BENCHSER\",\"Synthetic series\",7.85,False,\"\"\r\n\r\n";

}  // namespace

SyntheticArticle MakeArticle(std::size_t i) {
  const auto number = static_cast<std::uint32_t>(i);
  SyntheticArticle article;
  article.code = Format("B%010u", Scramble(number));
  article.height = 80 + number % 920;
  article.width = 40 + number % 260;
  article.flange = 5 + number % 35;
  article.web = 4 + number % 20;
  article.section = article.height * article.web + 2 * article.width * article.flange;
  article.description =
      Format("Section %.0f x %.0f x %.0f", article.height, article.width, article.web);
  article.description2 = Format("S235JR+AR lot %u", number);
  article.price = 600 + number % 7919 * 0.05;
  article.surcharge = number % 97 * 0.25;
  article.supplier_number = Format("%07u", number);
  return article;
}

void WriteSyntheticUpdate(const std::filesystem::path& path, std::size_t articles) {
  std::ofstream file(path, std::ios::binary);
  file << kHeader << "[NEW ARTICLE]\r\n";
  for (std::size_t i = 0; i < articles; ++i) {
    const SyntheticArticle a = MakeArticle(i);
    file << Format("\"BENCHSER\",\"%s\",\"%s\",\"%s\",%g,%g,%g,%g,%g,%g,0,0,%g,%g,0,0,0,0,\"\"\r\n",
                   a.code.c_str(), a.description.c_str(), a.description2.c_str(), a.height, a.width,
                   a.width, a.flange, a.flange, a.web, a.section, a.section);
  }
  file << "\r\n[UPDATE PRICEDATA]\r\n";
  for (std::size_t i = 0; i < articles; ++i) {
    const SyntheticArticle a = MakeArticle(i);
    file << Format("\"%s\",%.2f,%.2f,%.2f,%.2f,%.2f,\"\",\"\",\"%s\"\r\n", a.code.c_str(), a.price,
                   a.surcharge, a.surcharge, a.surcharge, a.surcharge, a.supplier_number.c_str());
  }
  file << "\r\n";
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path.string());
}

}  // namespace bench
