// Takes the header of a price-update file, line by line, into a price-update object.
#include "updates/PapHeaderReader.h"

#include "platform/text/runtime_error.h"
#include "platform/text/strings.h"
#include "updates/PapDate.h"

namespace {

const PapHeaderField* FindField(const std::wstring& vLine) {
  for (const PapHeaderField& field : kPapHeaderFields) {
    if (text::EqualsNoCase(field.Section, vLine)) return &field;
  }
  return nullptr;
}

// A damaged file may have a line of any length where a date belongs.
constexpr std::size_t kShownOfADate = 20;

}  // namespace

bool PapHeaderReader::ReadLine(const std::wstring& vLine) {
  if (m_atEnd) return false;
  ++m_line;
  if (text::Trim(vLine).empty()) return true;
  using PrcFileFormat::Section;
  if (const PapHeaderField* field = FindField(vLine)) {
    m_current = field;
  } else if (text::EqualsNoCase(vLine, PrcFileFormat::FormatOf(Section::kNewSupplier).Line)) {
    m_atEnd = true;
  } else if (m_current != nullptr) {
    ReadValue(vLine);
  } else {
    return false;
  }
  return true;
}

void PapHeaderReader::ReadValue(const std::wstring& vLine) {
  if (m_current->Date != nullptr) {
    try {
      m_orvPap.*m_current->Date = PapDateOf(vLine);
    } catch (const text::RuntimeError& error) {
      throw text::RuntimeError(error.number(),
                               error.description() + L" (" + std::wstring(m_current->Section) +
                                   L" in line " + std::to_wstring(m_line) + L": '" +
                                   vLine.substr(0, kShownOfADate) + L"' is no date)");
    }
  } else if (m_current->Text == &clsOrvPap::Remark) {
    std::wstring& remark = m_orvPap.Remark;
    if (!remark.empty()) remark += L"\r\n";
    remark += vLine;
  } else {
    m_orvPap.*m_current->Text = text::Trim(vLine);
  }
}
