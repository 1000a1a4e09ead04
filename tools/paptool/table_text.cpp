// Tables as lines of tab-separated text.
#include "tools/paptool/table_text.h"

#include "platform/text/code_page.h"
#include "tools/paptool/value_text.h"

namespace paptool {

std::string ColumnNames(const jet::Table& table) {
  std::string line;
  for (const jet::ColumnDefinition& column : table.columns()) {
    if (!line.empty()) line += '\t';
    line += Escaped(text::WideToUtf8(text::Utf16ToWide(column.name)));
  }
  return line;
}

std::string RowText(const jet::Row& row) {
  std::string line;
  bool first = true;
  for (const jet::Value& value : row) {
    if (!first) line += '\t';
    first = false;
    line += ValueText(value);
  }
  return line;
}

}  // namespace paptool
