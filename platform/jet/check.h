// Is a whole file sound? Every page, row, long value, index and rule, as one list of problems.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/jet/database.h"

namespace jet {

struct CheckReport {
  std::size_t tables = 0;             // user tables
  std::size_t rows = 0;               // their live rows
  std::size_t index_entries = 0;      // the entries of their physical indexes
  std::vector<std::string> problems;  // one line each, in UTF-8; empty when the file is sound
  // What other writers leave behind in sound files, and this engine does not: pages and values
  // that nothing refers to, counters that are off.
  std::vector<std::string> notes;
};

// Reads the file only, once a commit that was cut off is taken back. Throws only what opening
// throws, and kIo; damage beyond that becomes problems. Both lists end early, with the number of
// further lines, when they grow long.
CheckReport CheckFile(const std::filesystem::path& path, const OpenOptions& options = {});
// The same over pages that the caller supplies.
CheckReport CheckPages(std::unique_ptr<PageStore> store, const OpenOptions& options = {});

}  // namespace jet
