// Takes the header of a price-update file, line by line, into a price-update object.
#pragma once

#include <cstddef>
#include <string>

#include "engine/PapHeaderFields.h"
#include "engine/clsOrvPap.h"

// Section lines are compared in upper case but untrimmed, so one with leading blanks is a value of
// the section before it. Blank lines end nothing. The header ends at the line [NEW SUPPLIER] alone:
// in a file without it, every further line is offered to the last header section.
//
// The price-update object must outlive the reader.
class PapHeaderReader {
 public:
  explicit PapHeaderReader(clsOrvPap& vOrvPap) : m_orvPap(vOrvPap) {}

  // Takes the next line of the file. False when it means nothing here: it is behind the end of the
  // header, or a value before the first section. Throws text::RuntimeError 5 for a date outside the
  // calendar, which names section, line and value; the next line can be taken after that.
  bool ReadLine(const std::wstring& vLine);

  bool AtEnd() const { return m_atEnd; }

 private:
  void ReadValue(const std::wstring& vLine);

  clsOrvPap& m_orvPap;
  const PapHeaderField* m_current = nullptr;
  std::size_t m_line = 0;  // the number of the last line, from 1
  bool m_atEnd = false;
};
