// paptool rows: the rows of one table as tab-separated text.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <vector>

#include "platform/database/errors.h"
#include "platform/text/code_page.h"
#include "tools/paptool/commands.h"
#include "tools/paptool/console.h"
#include "tools/paptool/product_table_options.h"
#include "tools/paptool/table_text.h"

namespace paptool {
namespace {

struct RowsOptions {
  ProductTableOptions product_table;
  std::string table;
};

int Rows(const RowsOptions& options) {
  const std::unique_ptr<jet::Database> database = OpenToRead(options.product_table);
  return database::Translated(options.product_table.AbsolutePath(), [&] {
    const jet::Table& table =
        database->OpenTable(text::WideToUtf16(text::Utf8ToWide(options.table)));
    const std::vector<std::u16string> names = database->TableNames();
    if (std::find(names.begin(), names.end(), table.name()) == names.end()) {
      database::Fail(database::Failure::kNoReadPermission, {text::Utf16ToWide(table.name())});
    }
    PrintLine(ColumnNames(table));
    jet::Table::Scan rows = table.ScanRows();
    while (const std::optional<jet::StoredRowValues> row = rows.Next()) {
      PrintLine(RowText(row->values));
    }
    return kDone;
  });
}

}  // namespace

void AddRowsCommand(CLI::App& app, Work& work) {
  CLI::App* command = app.add_subcommand("rows", "Print the rows of a table");
  auto options = std::make_shared<RowsOptions>();
  AddProductTableOptions(*command, options->product_table);
  command->add_option("TABLE", options->table, "The table's name; `paptool tables` lists them all")
      ->required();
  command->footer(
      "A line of column names, then a line a row, separated by tabs. Null is \\N; tab, CR, LF and\n"
      "backslash in a text are \\t \\r \\n \\\\. UTF-8.");
  command->callback([&work, options] { work = [options] { return Rows(*options); }; });
}

}  // namespace paptool
