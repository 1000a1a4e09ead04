// paptool check: is a product table sound?
#include <CLI/CLI.hpp>
#include <memory>

#include "platform/database/errors.h"
#include "platform/files/paths.h"
#include "platform/jet/check.h"
#include "tools/paptool/commands.h"
#include "tools/paptool/console.h"
#include "tools/paptool/product_table_options.h"

namespace paptool {
namespace {

int Check(const ProductTableOptions& options) {
  const std::wstring path = options.AbsolutePath();
  const jet::CheckReport report = database::Translated(
      path, [&] { return jet::CheckFile(files::ToPath(path), ReadOptions(options)); });
  for (const std::string& problem : report.problems) PrintLine(problem);
  if (!report.problems.empty()) {
    PrintError(L"this product table is damaged: work on a backup of it, not on this file.");
    return kFailed;
  }
  PrintLine("ok: " + std::to_string(report.tables) + " tables, " + std::to_string(report.rows) +
            " rows, " + std::to_string(report.index_entries) + " index entries");
  return kDone;
}

}  // namespace

void AddCheckCommand(CLI::App& app, Work& work) {
  CLI::App* command = app.add_subcommand("check", "Check every page, row and index of the file");
  auto options = std::make_shared<ProductTableOptions>();
  AddProductTableOptions(*command, *options);
  command->footer(
      "Reads only, but that a change which was cut off is taken back first. Prints one\n"
      "line and exits with 0 when the file is sound, otherwise a line a problem, and\n"
      "exits with 1.");
  command->callback([&work, options] { work = [options] { return Check(*options); }; });
}

}  // namespace paptool
