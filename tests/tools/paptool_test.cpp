// Runs paptool on files in a temporary folder.
#include "tests/tools/paptool_test.h"

#include <sstream>

#include "demo/product_table.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"

ProgramOutcome PaptoolTest::Run(const std::vector<std::string>& arguments) const {
  return RunProgram(PAPTOOL_FILE, arguments, folder.path());
}

std::string PaptoolTest::Path(const std::filesystem::path& name) const {
  return text::WideToUtf8(folder.Text(name));
}

std::string PaptoolTest::MakeProductTable() const {
  demo::CreateProductTable(folder.Text("Orv.pt"));
  return Path("Orv.pt");
}

std::string PaptoolTest::MakeDatabase(const jet::TableSpec& table,
                                      std::vector<jet::Row> rows) const {
  const auto database = jet::Database::Create(folder / "values.mdb");
  database->CreateTable(table);
  for (jet::Row& row : rows) database->OpenTable(table.name).Insert(row);
  return Path("values.mdb");
}

std::vector<std::string> Lines(const std::string& output) {
  std::istringstream text(output);
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}
