// What is in a price-update file, as far as anybody reads it, and which of its lines nobody does.
#include "tools/paptool/update_file_report.h"

#include <optional>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "engine/PrcSectionTracker.h"
#include "platform/files/paths.h"
#include "platform/files/text_reader.h"
#include "platform/text/runtime_error.h"
#include "updates/PapHeaderReader.h"

namespace paptool {
namespace {

// PSplit runs DoEvents in the turns of its endless loop and nowhere else; this breaks out of the
// first.
class EndlessLoopBreaker final : public controls::EventPump {
 public:
  void DoEvents() override { throw ProcessEnding(); }
};

// How many fields the import finds in a record line; nothing when it would never stop looking.
std::optional<std::size_t> FieldCount(const std::wstring& line) {
  EndlessLoopBreaker breaker;
  SharedSettings settings = Shared();
  settings.objEventPump = &breaker;
  const SharedSettingsScope scope(settings);
  try {
    return PSplitCount(line);
  } catch (const ProcessEnding&) {
    return std::nullopt;
  }
}

// Whether a record line is read; if not, `unread` tells why.
bool IsRead(const std::wstring& line, PrcFileFormat::Section section, UnreadLine& unread) {
  const std::optional<std::size_t> fields = FieldCount(line);
  if (!fields) {
    unread.reason = UnreadLine::Reason::kEndless;
    return false;
  }
  unread.reason = UnreadLine::Reason::kFieldCount;
  unread.section = section;
  unread.fields = *fields;
  return *fields == PrcFileFormat::FormatOf(section).FieldCount;
}

// Whether a line belongs to the header and is read; if not, `unread` tells why.
bool ReadHeaderLine(PapHeaderReader& header, const std::wstring& line, UnreadLine& unread) {
  try {
    return header.ReadLine(line);
  } catch (const text::RuntimeError& error) {
    unread.reason = UnreadLine::Reason::kNoDate;
    unread.no_date = error.description();
    return false;
  }
}

}  // namespace

std::wstring Reason(const UnreadLine& line) {
  switch (line.reason) {
    case UnreadLine::Reason::kEndless:
      return L"endless: the first quoted text is not closed, an import would not get past this "
             L"line";
    case UnreadLine::Reason::kFieldCount: {
      const PrcFileFormat::SectionFormat& section = PrcFileFormat::FormatOf(line.section);
      return std::to_wstring(line.fields) + (line.fields == 1 ? L" field" : L" fields") +
             L" where " + std::wstring(section.Line) + L" has " +
             std::to_wstring(section.FieldCount);
    }
    case UnreadLine::Reason::kNoDate:
      return L"not read, and an import would not take the file: " + line.no_date;
    case UnreadLine::Reason::kOutside:
      break;
  }
  return L"outside every section";
}

void ReadUpdateFile(const std::wstring& path, UpdateFileReport& report) {
  using LineKind = PrcSectionTracker::LineKind;
  files::TextReader file(files::ToPath(path));
  PapHeaderReader header(report.header);
  PrcSectionTracker sections;
  for (std::size_t number = 1; !file.AtEnd(); ++number) {
    const std::wstring line = file.ReadLine();
    const LineKind kind = sections.Take(line);
    UnreadLine unread{.number = number};
    const bool in_header = ReadHeaderLine(header, line, unread);
    if (kind == LineKind::kRecord) {
      if (IsRead(line, sections.Current(), unread)) {
        ++report.records[static_cast<std::size_t>(sections.Current())];
      } else {
        report.unread.push_back(unread);
      }
    } else if (kind == LineKind::kOutside && !in_header) {
      report.unread.push_back(unread);
    }
  }
  report.header.FilePath = path;
  report.header.FileSize = files::FileSize(path);
}

}  // namespace paptool
