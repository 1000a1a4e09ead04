// One line of the download index: a price-update file on the download server.
#include "updates/clsDownloadFileInfo.h"

#include <cstddef>
#include <optional>
#include <string_view>

#include "app/modGeneralFunctions.h"
#include "platform/text/strings.h"
#include "updates/PapDate.h"

namespace {

// Gives out the fields of a line, trimmed, one after the other.
class Fields {
 public:
  explicit Fields(std::wstring_view vLine) : m_rest(vLine) {}

  std::optional<std::wstring> Next() {
    if (!m_rest) return std::nullopt;
    const std::size_t comma = m_rest->find(L',');
    std::wstring field(text::Trim(m_rest->substr(0, comma)));
    if (comma == std::wstring_view::npos) {
      m_rest.reset();
    } else {
      m_rest->remove_prefix(comma + 1);
    }
    return field;
  }

  std::wstring NextText() { return Next().value_or(L""); }

 private:
  std::optional<std::wstring_view> m_rest;  // nothing behind the last field
};

// The unset date for what is no date of the calendar: a bad date costs the line nothing else.
double DateIn(const std::wstring& vText) {
  try {
    return PapDateOf(vText);
  } catch (const text::RuntimeError&) {
    return 0;
  }
}

}  // namespace

bool clsDownloadFileInfo::AddLine(const std::wstring& vLine) {
  if (vLine.empty()) return false;
  Fields fields(vLine);
  FileName = fields.NextText();
  AssortmentDescription = fields.NextText();
  SupplierDescription = fields.NextText();
  if (const std::optional<std::wstring> date = fields.Next()) Date = DateIn(*date);
  Size = ParseDecimal(fields.NextText());
  Remark = fields.NextText();
  SetCodes();
  return true;
}

void clsDownloadFileInfo::SetCodes() {
  constexpr std::size_t kNone = std::wstring::npos;
  const std::size_t first = FileName.find(L'_');
  const std::size_t second = first == kNone ? kNone : FileName.find(L'_', first + 1);
  const std::size_t point = second == kNone ? kNone : FileName.find(L'.', second + 1);
  if (point == kNone) return;
  SupplierCode = FileName.substr(first + 1, second - first - 1);
  AssortmentCode = FileName.substr(second + 1, point - second - 1);
}
