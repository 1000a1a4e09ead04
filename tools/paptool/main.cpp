// paptool: the price import without a window, and a look into update files and product tables.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <ios>
#include <optional>

#include "platform/files/standard_streams.h"
#include "platform/text/code_page.h"
#include "platform/text/runtime_error.h"
#include "tools/paptool/commands.h"
#include "tools/paptool/console.h"

namespace paptool {
namespace {

// What the user can do about an error, by its number; empty when there is no more to say.
std::wstring Advice(std::int32_t number) {
  switch (number) {
    case 3024:  // no such file
    case 3044:  // no such folder
      return L" Look at the path given with --table.";
    case 3031:  // wrong password
      return L" Give the right one with --password.";
    case 3045:  // in use
      return L" Close the program that has it open.";
    case 3051:  // opened exclusively by somebody else, or no permission
      return L" Is it a file, and may you read and write it and its folder?";
    case 3078:  // no such table
    case 3112:  // a system table
      return L" `paptool tables` lists the tables there are.";
    case 3343:  // no database
      return L" Is this file a product table?";
    default:
      return {};
  }
}

// Parses the command line; an exit status when that is all there is to do, as for --help.
std::optional<int> Parse(CLI::App& app, std::vector<std::string> arguments) {
  std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the end
  try {
    app.parse(std::move(arguments));
    return std::nullopt;
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == kDone ? kDone : kWrongUsage;
  }
}

// Whether a command line may begin with this.
bool IsKnown(CLI::App& app, const std::string& first) {
  if (first.starts_with('-')) return app.get_option_no_throw(first) != nullptr;
  return !app.get_subcommands(
                 [&first](const CLI::App* command) { return command->get_name() == first; })
              .empty();
}

int Run(const std::vector<std::string>& arguments) {
  CLI::App app("Brings price updates into an Orvane product table, and looks into both.",
               "paptool");
  app.allow_windows_style_options(false);  // a path may begin with "/"
  app.set_version_flag("--version", "paptool " ORVPAP_VERSION);
  app.require_subcommand(1);
  app.footer("Every command has --help. Exit status: 0 done, 1 not wholly done, 2 wrong usage.");
  app.failure_message([](const CLI::App* failed, const CLI::Error& error) {
    std::string command = failed->get_name();
    for (const CLI::App* chosen : failed->get_subcommands()) command += ' ' + chosen->get_name();
    return "paptool: " + std::string(error.what()) + "\n`" + command +
           " --help` tells how it is used.\n";
  });
  Work work;
  AddApplyCommand(app, work);
  AddShowCommand(app, work);
  AddTablesCommand(app, work);
  AddRowsCommand(app, work);
  AddCheckCommand(app, work);
  AddProcessedCommand(app, work);
  AddCompactCommand(app, work);
  AddDemoCommand(app, work);
  AddServeCommand(app, work);

  if (!arguments.empty() && !IsKnown(app, arguments.front())) {
    const bool is_option = arguments.front().starts_with('-');
    PrintError((is_option ? L"there is no option " : L"there is no command ") +
               text::Utf8ToWide(arguments.front()) + L"; `paptool --help` tells how it is used.");
    return kWrongUsage;
  }
  if (const std::optional<int> status = Parse(app, arguments)) return *status;
  return work();
}

// The exit status.
int Main(int argc, const char* const* argv) {
  try {
    files::ReserveStandardStreams();
    std::ios::sync_with_stdio(false);  // quicker; all output goes through streams
    PrepareOutput();
    int status = Run(Arguments(argc, argv));
    if (!FlushOutput()) {
      PrintError(L"the output could not be written.");
      status = std::max(status, kFailed);
    }
    return status;
  } catch (const text::RuntimeError& error) {
    PrintError(OneLine(error.description()) + Advice(error.number()));
  } catch (const std::exception& error) {
    PrintError(OneLine(text::Utf8ToWide(error.what())));
  }
  return kFailed;
}

}  // namespace
}  // namespace paptool

int main(int argc, char** argv) { return paptool::Main(argc, argv); }
