// What is in a price-update file, as far as anybody reads it, and which of its lines nobody does.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "engine/PrcFileFormat.h"
#include "engine/clsOrvPap.h"

namespace paptool {

struct UnreadLine {
  enum class Reason {
    kOutside,     // of every section
    kEndless,     // the import would split it without end
    kFieldCount,  // not that of its section
    kNoDate,      // where the header has one
  };
  Reason reason = Reason::kOutside;
  std::size_t number = 0;  // of the line, from 1
  // Where the number of fields is wrong:
  PrcFileFormat::Section section{};
  std::size_t fields = 0;
  // Where a date of the header lies outside the calendar, what its reader says of that.
  std::wstring no_date{};
};

// The reason in words.
std::wstring Reason(const UnreadLine& line);

struct UpdateFileReport {
  clsOrvPap header;
  std::array<std::size_t, PrcFileFormat::kSections.size()> records{};  // indexed by section
  std::vector<UnreadLine> unread;
};

// Reads the file line by line and fills `report`, a new object. A line that the import would split
// without end is named, not split. Throws text::RuntimeError when the file cannot be read.
void ReadUpdateFile(const std::wstring& path, UpdateFileReport& report);

}  // namespace paptool
