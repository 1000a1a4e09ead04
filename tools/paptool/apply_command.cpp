// paptool apply: does with price updates what the wizard's import page does.
#include <CLI/CLI.hpp>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>
#include <vector>

#include "app/modGeneralFunctions.h"
#include "app/modShared.h"
#include "engine/clsOrvPap.h"
#include "platform/files/paths.h"
#include "platform/files/program_folder.h"
#include "platform/language/language_provider.h"
#include "platform/text/code_page.h"
#include "platform/text/runtime_error.h"
#include "platform/text/strings.h"
#include "store/modProductTable.h"
#include "tools/paptool/commands.h"
#include "tools/paptool/console.h"
#include "tools/paptool/console_prompt.h"
#include "tools/paptool/paths.h"
#include "tools/paptool/product_table_options.h"
#include "tools/paptool/update_file_report.h"
#include "updates/modSharedPap.h"
#include "wizard/usrImport.h"

namespace paptool {
namespace {

constexpr wchar_t kProductTableExtension[] = L"PT";

struct ApplyOptions {
  ProductTableOptions product_table;
  bool no_backup = false;
  std::string log = "paplog.txt";
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
                    (files::FileExists(name)
                         ? L", or lang/dutch.lng beside paptool, which every language needs."
                         : L": name a file, or one of the folder lang such as english.lng."));
      return false;
  }
}

// Why the log must not be begun at `log`, which loses what is there; nothing when it may. Product
// tables and updates are recognised by their names, and the files of this run whatever their names.
std::optional<std::wstring> UnusableLog(const std::wstring& log,
                                        const std::vector<std::wstring>& files_in_use) {
  const std::filesystem::path target = files::FollowLink(files::ToPath(log));
  for (const std::wstring& path : {log, files::ToText(target)}) {
    if (IsPapFile(path) || text::ToUpper(GetExtension(path)) == kProductTableExtension) {
      return L"that is no name for a log, a product table or a price update has such a one: " + log;
    }
  }
  for (const std::wstring& file : files_in_use) {
    if (files::IsSameFile(log, file)) return L"the log would overwrite " + file;
  }
  return std::nullopt;
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

// Names the lines that the import will not get past. It is begun all the same: what comes before
// such a line in the list of updates is applied.
void WarnOfEndlessLines(const std::wstring& path) {
  UpdateFileReport report;
  ReadUpdateFile(path, report);
  for (const UnreadLine& line : report.unread) {
    if (line.reason != UnreadLine::Reason::kEndless) continue;
    PrintError(path + L", line " + std::to_wstring(line.number) + L": " + Reason(line) +
               L". Interrupt it, close the quotes and apply the update again.");
  }
}

// Prints the page's list at the moments at which a window would show it.
class ListPrinter final : public controls::EventPump {
 public:
  explicit ListPrinter(const controls::ListView& list) : list_(list) {}

  void DoEvents() override {
    const std::vector<controls::ListItem>& items = list_.Items();
    for (; printed_ < items.size(); ++printed_) {
      const controls::ListItem& item = items[printed_];
      PrintLine((item.colour == controls::kRed ? L"! " : L"") + OneLine(item.text) + L'\t' +
                OneLine(item.sub_items.front()));
    }
    static_cast<void>(FlushOutput());  // what fails here still fails in the end
  }

 private:
  const controls::ListView& list_;
  std::size_t printed_ = 0;
};

int Apply(const ApplyOptions& options) {
  ConsolePrompt prompt;
  language::FileLanguageProvider texts(files::ProgramFolder());
  SharedSettings settings;
  settings.objPrompt = &prompt;
  settings.objLanguage = &texts;
  settings.strLogFile = AbsolutePath(options.log);
  const SharedSettingsScope scope(settings);
  if (!LoadLanguage(texts, options.language)) return kWrongUsage;

  const std::wstring product_table = options.product_table.AbsolutePath();
  std::vector<std::wstring> files_in_use = {product_table};
  std::vector<std::shared_ptr<clsOrvPap>> updates;
  for (const std::string& file : FilesOf(options.updates)) {
    files_in_use.push_back(AbsolutePath(file));
    updates.push_back(std::make_shared<clsOrvPap>());
    if (const auto reason = Unusable(files_in_use.back(), *updates.back())) {
      PrintError(*reason);
      return kWrongUsage;
    }
    WarnOfEndlessLines(updates.back()->FilePath);
  }
  if (const auto reason = UnusableLog(settings.strLogFile, files_in_use)) {
    PrintError(*reason);
    return kWrongUsage;
  }

  ProductTablePassword = text::Utf8ToWide(options.product_table.password);
  usrImport page;
  ListPrinter printer(page.lvResults);
  settings.objEventPump = &printer;
  const bool done = page.StartImport(product_table, updates, !options.no_backup);
  return done && page.Complete() ? kDone : kFailed;
}

}  // namespace

void AddApplyCommand(CLI::App& app, Work& work) {
  CLI::App* command = app.add_subcommand("apply", "Apply price updates to a product table");
  auto options = std::make_shared<ApplyOptions>();
  AddProductTableOptions(*command, options->product_table);
  command->add_flag("--no-backup", options->no_backup,
                    "Make no copy of the product table before each update");
  command->add_option("--log", options->log, "Where to write the log of all messages")
      ->check(PathProblem)
      ->type_name("FILE")
      ->capture_default_str();
  command
      ->add_option("--language", options->language,
                   "A language file, or the name of one in the folder lang; Dutch without it")
      ->type_name("FILE");
  command->add_option("PRC", options->updates, "The update files, applied in this order")
      ->required()
      ->check(PathProblem);
  command->footer(
      "Prints a line a message: message, tab, detail. A line that begins with \"! \" is an error,\n"
      "such as a record that was refused. Then, or when an update was not applied whole or not\n"
      "recorded as processed, or a backup or the log could not be made (which standard error\n"
      "tells), the exit status is 1. It is 2 when nothing was tried. The product table is changed\n"
      "in place. The copy made before each update lies beside it, named from the update's\n"
      "assortment, supplier and date.");
  command->callback([&work, options] { work = [options] { return Apply(*options); }; });
}

}  // namespace paptool
