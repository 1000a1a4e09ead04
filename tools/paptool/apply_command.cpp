// paptool apply: brings price updates into a product table.
#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <vector>

#include "app/modShared.h"
#include "engine/clsOrvPap.h"
#include "platform/files/paths.h"
#include "platform/files/program_folder.h"
#include "platform/language/language_provider.h"
#include "platform/text/code_page.h"
#include "platform/text/runtime_error.h"
#include "store/modProductTable.h"
#include "tools/paptool/commands.h"
#include "tools/paptool/console.h"
#include "tools/paptool/console_prompt.h"
#include "tools/paptool/paths.h"
#include "tools/paptool/product_table_options.h"
#include "updates/modSharedPap.h"

namespace paptool {
namespace {

struct ApplyOptions {
  ProductTableOptions product_table;
  std::string language;
  std::vector<std::string> updates;
};

// Makes the program speak the language of the file; empty for the default one. A relative name may
// also be one that the program brings along.
bool LoadLanguage(language::LanguageProvider& provider, const std::string& file) {
  std::wstring name;
  if (!file.empty()) {
    const std::wstring path = AbsolutePath(file);
    name = files::FileExists(path) ? path : text::Utf8ToWide(file);
  }
  switch (provider.LoadLanguageFile(name)) {
    case language::kLoaded:
      return true;
    case language::kUnknownFormat:
      PrintError(L"not a language file: " + name);
      return false;
    default:
      PrintError(
          name.empty()
              ? L"the folder lang with the program's texts is missing: put it beside paptool."
              : L"cannot read the language file " + name +
                    L": name a file, or one of the folder lang such as english.lng.");
      return false;
  }
}

// Why an update cannot be applied at all; nothing when it can. Fills its header.
std::optional<std::wstring> Unusable(const std::wstring& path, clsOrvPap& update) {
  if (!IsPapFile(path)) return L"not a price update, its name does not end in .PRC: " + path;
  if (!files::FileExists(path)) return L"there is no such file: " + path;
  try {
    ReadPapHeader(path, update);
  } catch (const text::RuntimeError& error) {
    return L"cannot read " + path + L": " + error.description();
  }
  if (!IsPapVersion(update.Version)) {
    return L"not a price update of version " + std::wstring(PrcFileFormat::kVersion) + L": " +
           path + L" (`paptool show` tells what is in it)";
  }
  return std::nullopt;
}

// Closes the product table whatever happens.
struct ProductConnectionCloser {
  ~ProductConnectionCloser() { ProductConnection.reset(); }
};

int Apply(const ApplyOptions& options) {
  ConsolePrompt prompt;
  language::FileLanguageProvider texts(files::ProgramFolder());
  SharedSettings settings;
  settings.objPrompt = &prompt;
  settings.objLanguage = &texts;
  const SharedSettingsScope scope(settings);
  if (!LoadLanguage(texts, options.language)) return kWrongUsage;

  std::vector<std::unique_ptr<clsOrvPap>> updates;
  for (const std::string& file : options.updates) {
    updates.push_back(std::make_unique<clsOrvPap>());
    if (const auto reason = Unusable(AbsolutePath(file), *updates.back())) {
      PrintError(*reason);
      return kWrongUsage;
    }
  }

  const std::wstring table = options.product_table.AbsolutePath();
  const ProductConnectionCloser closer;
  ProductTablePassword = text::Utf8ToWide(options.product_table.password);
  if (!OpenProductTable(table)) return kFailed;
  ProductConnection.reset();  // each update opens it for itself

  int status = kDone;
  for (const std::unique_ptr<clsOrvPap>& update : updates) {
    update->ShowListMessage = [&status](const std::wstring& message, const std::wstring& detail,
                                        bool show_in_list, bool error) {
      if (!show_in_list && !error) return;
      if (error) status = kFailed;
      PrintLine((error ? L"! " : L"") + OneLine(message) + L'\t' + OneLine(detail));
    };
    if (!update->UpdatePT(table)) status = kFailed;
  }
  return status;
}

}  // namespace

void AddApplyCommand(CLI::App& app, Work& work) {
  CLI::App* command = app.add_subcommand("apply", "Apply price updates to a product table");
  auto options = std::make_shared<ApplyOptions>();
  AddProductTableOptions(*command, options->product_table);
  command
      ->add_option("--language", options->language,
                   "A language file, or the name of one in the folder lang; Dutch without it")
      ->type_name("FILE");
  command->add_option("PRC", options->updates, "The update files, applied in this order")
      ->required();
  command->footer(
      "Prints a line a message: message, tab, detail. A line that begins with \"! \" is a record\n"
      "that was refused; then the exit status is 1. It is 2 when nothing was tried. The product\n"
      "table is changed in place: keep a copy of it.");
  command->callback([&work, options] { work = [options] { return Apply(*options); }; });
}

}  // namespace paptool
