// paptool show: what is in price-update files.
#include <CLI/CLI.hpp>
#include <memory>
#include <vector>

#include "engine/PapHeaderFields.h"
#include "platform/text/code_page.h"
#include "platform/text/date.h"
#include "platform/text/runtime_error.h"
#include "tools/paptool/commands.h"
#include "tools/paptool/console.h"
#include "tools/paptool/paths.h"
#include "tools/paptool/update_file_report.h"
#include "tools/paptool/value_text.h"

namespace paptool {
namespace {

std::wstring HeaderValue(const clsOrvPap& header, const PapHeaderField& field) {
  if (field.Text != nullptr) return header.*field.Text;
  const double date = header.*field.Date;
  return date == text::kUnsetDate ? std::wstring() : text::FormatDate(date);
}

void PrintField(std::wstring_view name, std::wstring_view value) {
  PrintLine(text::WideToUtf8(name) + ": " + text::WideToUtf8(value));
}

void Print(const UpdateFileReport& report) {
  PrintField(L"File", report.header.FilePath);
  PrintField(L"Size", std::to_wstring(report.header.FileSize));
  for (const PapHeaderField& field : kPapHeaderFields) {
    const std::wstring_view name = field.Section.substr(1, field.Section.size() - 2);
    // Escaped, since a remark may have several lines.
    PrintLine(text::WideToUtf8(name) + ": " +
              Escaped(text::WideToUtf8(HeaderValue(report.header, field))));
  }
  for (std::size_t i = 0; i < report.records.size(); ++i) {
    PrintField(PrcFileFormat::kSections[i].Line, std::to_wstring(report.records[i]));
  }
  for (const UnreadLine& line : report.unread) {
    PrintField(L"line " + std::to_wstring(line.number), Reason(line));
  }
}

int Show(const std::vector<std::string>& updates) {
  int status = kDone;
  bool first = true;
  for (const std::string& file : FilesOf(updates)) {
    const std::wstring path = AbsolutePath(file);
    try {
      UpdateFileReport report;
      ReadUpdateFile(path, report);
      if (!first) PrintLine("");
      first = false;
      Print(report);
    } catch (const text::RuntimeError& error) {
      PrintError(L"cannot read " + path + L": " + error.description());
      status = kFailed;
    }
  }
  return status;
}

}  // namespace

void AddShowCommand(CLI::App& app, Work& work) {
  CLI::App* command = app.add_subcommand("show", "Print what is in price-update files");
  auto updates = std::make_shared<std::vector<std::string>>();
  command->add_option("PRC", *updates, "The update files")->required()->check(PathProblem);
  command->footer(
      "Prints the header, a line a section with its number of records, and the lines that no\n"
      "reader takes, each with its number and the reason. Nothing is changed.");
  command->callback([&work, updates] { work = [updates] { return Show(*updates); }; });
}

}  // namespace paptool
