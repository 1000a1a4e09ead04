// paptool compact: a product table without the gaps that its changes have left.
#include <CLI/CLI.hpp>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <system_error>

#include "platform/database/errors.h"
#include "platform/files/paths.h"
#include "platform/jet/compaction.h"
#include "tools/paptool/commands.h"
#include "tools/paptool/console.h"
#include "tools/paptool/product_table_options.h"

namespace paptool {
namespace {

// For the report only: what cannot be measured is told as 0.
std::uintmax_t SizeOf(const std::filesystem::path& file) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(file, error);
  return error ? 0 : size;
}

int Compact(const ProductTableOptions& options) {
  const std::wstring path = options.AbsolutePath();
  const std::filesystem::path file = files::ToPath(path);
  const std::uintmax_t before = SizeOf(file);
  database::Translated(path, [&] {
    jet::CompactInPlace(file, {.password = ReadOptions(options).password, .progress = {}});
  });
  PrintLine("ok: " + std::to_string(before) + " bytes before, " + std::to_string(SizeOf(file)) +
            " after");
  return kDone;
}

}  // namespace

void AddCompactCommand(CLI::App& app, Work& work) {
  CLI::App* command = app.add_subcommand("compact", "Compact the file in place, safely");
  auto options = std::make_shared<ProductTableOptions>();
  AddProductTableOptions(*command, *options);
  command->footer(
      "Writes a new file beside the product table, checks it as a whole, and puts it in the\n"
      "product table's place in one step; until then, and when anything fails, the product\n"
      "table is as it was. Needs room on the disk for the second file. Prints both sizes.");
  command->callback([&work, options] { work = [options] { return Compact(*options); }; });
}

}  // namespace paptool
