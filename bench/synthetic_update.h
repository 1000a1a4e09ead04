// A made-up price update of any size, and its articles one by one.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace bench {

struct SyntheticArticle {
  std::string code;
  std::string description;
  std::string description2;
  double height = 0;  // mm, like all dimensions
  double width = 0;
  double flange = 0;
  double web = 0;
  double section = 0;  // mm2
  double price = 0;
  double surcharge = 0;
  std::string supplier_number;
};

// The i-th article; codes differ, are not in order, and stay the same from run to run.
SyntheticArticle MakeArticle(std::size_t i);

// Writes an update file: one supplier, one assortment of dimension kind 1, their link, one series,
// `articles` articles and a price for each. Throws std::runtime_error when it cannot be written.
void WriteSyntheticUpdate(const std::filesystem::path& path, std::size_t articles);

}  // namespace bench
