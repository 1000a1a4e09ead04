// Follows the lines of a price-update file and tells which data section each of them belongs to.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/PrcFileFormat.h"
#include "platform/text/strings.h"

class PrcSectionTracker {
 public:
  enum class LineKind {
    kBlank,        // ends the current section
    kSectionLine,  // starts a section
    kRecord,       // of the current section
    kOutside,      // of no data section
  };

  // Takes the next line of the file. Outer blanks and letter case do not matter.
  LineKind Take(const std::wstring& vLine) {
    const std::wstring_view trimmed = text::Trim(vLine);
    if (trimmed.empty()) {
      m_current.reset();
      return LineKind::kBlank;
    }
    if (const auto section = SectionOf(trimmed)) {
      m_current = section;
      return LineKind::kSectionLine;
    }
    return m_current ? LineKind::kRecord : LineKind::kOutside;
  }

  // The section of the last line; only after a record or a section line.
  PrcFileFormat::Section Current() const { return m_current.value(); }

 private:
  // A record may be much longer than any section line: it is not copied.
  static std::optional<PrcFileFormat::Section> SectionOf(std::wstring_view vLine) {
    if (vLine.front() != L'[') return std::nullopt;
    return PrcFileFormat::SectionOf(text::ToUpper(vLine));
  }

  std::optional<PrcFileFormat::Section> m_current;
};
