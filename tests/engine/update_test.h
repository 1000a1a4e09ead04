// Applies update files written as texts to a product table, and records what the import tells.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/clsOrvPap.h"
#include "tests/support/surface_test.h"

class UpdateTest : public test_support::ProductTableTest {
 protected:
  // The next update: of supplier S1 for the assortment BEAMS, with these lines in its file.
  clsOrvPap& NextUpdate(const std::string& lines);
  // Applies it. Its messages are in `shown` and `logged`, as "message|detail".
  bool Apply();
  // Both, of an update with no more to it than its lines.
  bool Apply(const std::string& lines);

  // Two suppliers S1 and S2, two assortments BEAMS (with the dimension kind 1) and PLATES (2),
  // which both suppliers deliver, a series and articles in each, groups and discounts.
  void ApplyOpeningUpdates();

  std::vector<std::string> shown;    // those that the list of results shows; errors begin with "! "
  std::vector<std::string> logged;   // all of them
  std::vector<std::int32_t> maxima;  // of the progress bar
  std::vector<std::int32_t> progress;

 private:
  std::unique_ptr<clsOrvPap> update_;
};
