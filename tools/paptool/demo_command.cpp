// paptool demo: makes a demo installation.
#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <system_error>

#include "app/modShared.h"
#include "demo/installation.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "tools/paptool/commands.h"
#include "tools/paptool/console.h"
#include "tools/paptool/console_prompt.h"
#include "tools/paptool/paths.h"

namespace paptool {
namespace {

struct DemoOptions {
  std::string folder;
  bool force = false;
};

// Where it cannot be told, making the installation will say why.
bool IsThere(const std::filesystem::path& path) {
  std::error_code ignored;
  return std::filesystem::exists(path, ignored);
}

int Demo(const DemoOptions& options) {
  const std::wstring folder = AbsolutePath(options.folder);
  const std::filesystem::path table = files::ToPath(folder) / demo::kProductTableFile;
  if (!options.force && IsThere(table)) {
    PrintError(L"there is a product table already: " + files::ToText(table) +
               L"\nGive another folder, or --force to make a new one in its place.");
    return kWrongUsage;
  }

  ConsolePrompt prompt;
  SharedSettings settings;
  settings.objPrompt = &prompt;
  const SharedSettingsScope scope(settings);
  try {
    demo::MakeInstallation(files::ToPath(folder), ProgramFile());
  } catch (const std::filesystem::filesystem_error& error) {
    PrintError(L"the demo installation cannot be made in " + folder + L": " +
               text::Utf8ToWide(error.code().message()) +
               L". Give a folder that you may write to.");
    return kFailed;
  }
  PrintLine(L"The demo installation is in " + folder + L".");
  return kDone;
}

}  // namespace

void AddDemoCommand(CLI::App& app, Work& work) {
  CLI::App* command = app.add_subcommand(
      "demo", "Make a demo installation: product table, update files, settings, texts");
  auto options = std::make_shared<DemoOptions>();
  command->add_option("DIR", options->folder, "The folder; it is made where it is missing")
      ->required()
      ->check(PathProblem);
  command->add_flag("--force", options->force,
                    "Replace a product table that is in the folder already");
  command->footer(
      "Puts the programs there too, so that the folder runs by itself. On Windows the settings\n"
      "come from the registry: `reg import registry.reg`, as administrator, puts them there.");
  command->callback([&work, options] { work = [options] { return Demo(*options); }; });
}

}  // namespace paptool
