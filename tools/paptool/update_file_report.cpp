// What is in a price-update file, as far as anybody reads it, and which of its lines nobody does.
#include "tools/paptool/update_file_report.h"

#include <optional>
#include <utility>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "engine/PrcSectionTracker.h"
#include "platform/files/paths.h"
#include "platform/files/text_reader.h"
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
std::optional<std::size_t> FieldCount(std::wstring line) {
  EndlessLoopBreaker breaker;
  SharedSettings settings = Shared();
  settings.objEventPump = &breaker;
  const SharedSettingsScope scope(settings);
  try {
    return PSplit(line).size() - 1;  // index 0 holds no field
  } catch (const ProcessEnding&) {
    return std::nullopt;
  }
}

// Whether a record line is read; if not, `unread` tells why.
bool IsRead(std::wstring line, PrcFileFormat::Section section, UnreadLine& unread) {
  const std::optional<std::size_t> fields = FieldCount(std::move(line));
  if (!fields) {
    unread.reason = UnreadLine::Reason::kEndless;
    return false;
  }
  unread.reason = UnreadLine::Reason::kFieldCount;
  unread.section = section;
  unread.fields = *fields;
  return *fields == PrcFileFormat::FormatOf(section).FieldCount;
}

}  // namespace

void ReadUpdateFile(const std::wstring& path, UpdateFileReport& report) {
  using LineKind = PrcSectionTracker::LineKind;
  files::TextReader file(files::ToPath(path));
  PapHeaderReader header(report.header);
  PrcSectionTracker sections;
  for (std::size_t number = 1; !file.AtEnd(); ++number) {
    std::wstring line = file.ReadLine();
    const LineKind kind = sections.Take(line);
    const bool in_header = header.ReadLine(line);
    UnreadLine unread{.number = number};
    if (kind == LineKind::kRecord) {
      if (IsRead(std::move(line), sections.Current(), unread)) {
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
