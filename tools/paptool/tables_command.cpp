// paptool tables: the tables of a product table with their numbers of rows.
#include <CLI/CLI.hpp>
#include <memory>

#include "platform/database/errors.h"
#include "platform/text/code_page.h"
#include "tools/paptool/commands.h"
#include "tools/paptool/console.h"
#include "tools/paptool/product_table_options.h"

namespace paptool {
namespace {

int Tables(const ProductTableOptions& options) {
  const std::unique_ptr<jet::Database> database = OpenToRead(options);
  return database::Translated(options.AbsolutePath(), [&] {
    for (const std::u16string& name : database->TableNames()) {
      PrintLine(text::WideToUtf8(text::Utf16ToWide(name)) + '\t' +
                std::to_string(database->OpenTable(name).row_count()));
    }
    return kDone;
  });
}

}  // namespace

void AddTablesCommand(CLI::App& app, Work& work) {
  CLI::App* command = app.add_subcommand("tables", "Print the tables with their row counts");
  auto options = std::make_shared<ProductTableOptions>();
  AddProductTableOptions(*command, *options);
  command->footer("A line a table, in name order: name, tab, number of rows.");
  command->callback([&work, options] { work = [options] { return Tables(*options); }; });
}

}  // namespace paptool
