// The options that say which product table a command works on, and opening it to look inside.
#include "tools/paptool/product_table_options.h"

#include <CLI/CLI.hpp>
#include <filesystem>

#include "platform/database/errors.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "store/modProductTable.h"
#include "tools/paptool/paths.h"

namespace paptool {

ProductTableOptions::ProductTableOptions() : password(text::WideToUtf8(kProductTablePassword)) {}

std::wstring ProductTableOptions::AbsolutePath() const { return paptool::AbsolutePath(table); }

void AddProductTableOptions(CLI::App& command, ProductTableOptions& options) {
  command.add_option("--table", options.table, "The product table, a .pt file")
      ->required()
      ->check(PathProblem)
      ->type_name("PT");
  command
      .add_option("--password", options.password,
                  "Its database password, if it is not that of all product tables; \"\" for none")
      ->type_name("TEXT");
}

jet::OpenOptions ReadOptions(const ProductTableOptions& options) {
  return {.password = text::WideToUtf16(text::Utf8ToWide(options.password)), .read_only = true};
}

std::unique_ptr<jet::Database> OpenToRead(const ProductTableOptions& options) {
  const std::wstring path = options.AbsolutePath();
  return database::Translated(
      path, [&] { return jet::Database::Open(files::ToPath(path), ReadOptions(options)); });
}

}  // namespace paptool
