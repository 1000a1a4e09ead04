// Runs paptool on files in a temporary folder.
#include "tests/tools/paptool_test.h"

#include "demo/product_table.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"

PaptoolTest::PaptoolTest() = default;

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

std::string PaptoolTest::MakeLanguageFile() const {
  std::string texts = "language file: Test\n";
  for (int number = 50; number <= 104; ++number) {
    const bool filled = number == 67 || (number >= 101 && number <= 103);
    texts +=
        std::to_string(number) + " text: T" + std::to_string(number) + (filled ? " %s" : "") + "\n";
  }
  folder.Write("test.lng", texts);
  return Path("test.lng");
}

std::vector<std::string> Lines(const std::string& output) {
  std::vector<std::string> lines;
  std::size_t at = 0;
  while (at < output.size()) {
    const std::size_t end = output.find('\n', at);
    lines.push_back(output.substr(at, end - at));
    if (end == std::string::npos) break;
    at = end + 1;
  }
  return lines;
}
