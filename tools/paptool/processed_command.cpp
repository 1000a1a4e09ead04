// paptool processed: the register of processed updates.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/errors.h"
#include "platform/text/code_page.h"
#include "platform/text/strings.h"
#include "tools/paptool/commands.h"
#include "tools/paptool/console.h"
#include "tools/paptool/product_table_options.h"
#include "tools/paptool/table_text.h"
#include "updates/PriceUpdatesTable.h"

namespace paptool {
namespace {

// The column names that the table would have.
std::string ColumnNamesOfNewTable() {
  std::string line;
  for (const wchar_t* const name : PriceUpdatesTable::kColumns) {
    if (!line.empty()) line += '\t';
    line += text::WideToUtf8(name);
  }
  return line;
}

// Where the column stands; 3061 when the table has none of this name.
std::size_t PositionOf(std::wstring_view column, const jet::Table& table) {
  const std::optional<std::size_t> position = table.FindColumn(text::WideToUtf16(column));
  if (!position) database::Fail(database::Failure::kUnknownColumns, {L"1"});
  return *position;
}

// Null comes first, as in every query.
bool IsEarlier(const jet::Value& a, const jet::Value& b) {
  const auto* date_a = std::get_if<jet::Date>(&a);
  const auto* date_b = std::get_if<jet::Date>(&b);
  if (date_b == nullptr) return false;
  return date_a == nullptr || date_a->days < date_b->days;
}

void PrintByDateProcessed(const jet::Table& table) {
  const std::size_t processed = PositionOf(PriceUpdatesTable::kDateProcessed, table);
  std::vector<jet::Row> rows;
  jet::Table::Scan scan = table.ScanRows();
  while (std::optional<jet::StoredRowValues> row = scan.Next()) {
    rows.push_back(std::move(row->values));
  }
  std::stable_sort(rows.begin(), rows.end(), [&](const jet::Row& a, const jet::Row& b) {
    return IsEarlier(a[processed], b[processed]);
  });
  PrintLine(ColumnNames(table));
  for (const jet::Row& row : rows) PrintLine(RowText(row));
}

int Processed(const ProductTableOptions& options) {
  const std::unique_ptr<jet::Database> database = OpenToRead(options);
  return database::Translated(options.AbsolutePath(), [&] {
    const std::vector<std::u16string> tables = database->TableNames();
    const auto found = std::find_if(tables.begin(), tables.end(), [](const std::u16string& name) {
      return text::EqualsNoCase(text::Utf16ToWide(name), PriceUpdatesTable::kTable);
    });
    if (found == tables.end()) {
      PrintLine(ColumnNamesOfNewTable());
    } else {
      PrintByDateProcessed(database->OpenTable(*found));
    }
    return kDone;
  });
}

}  // namespace

void AddProcessedCommand(CLI::App& app, Work& work) {
  CLI::App* command =
      app.add_subcommand("processed", "Print which updates were applied to a product table");
  auto options = std::make_shared<ProductTableOptions>();
  AddProductTableOptions(*command, *options);
  command->footer(
      "A line of column names, then a line an update, the oldest first, printed as `paptool rows`\n"
      "prints the table PriceUpdates. Only the column names when nothing was ever applied.");
  command->callback([&work, options] { work = [options] { return Processed(*options); }; });
}

}  // namespace paptool
