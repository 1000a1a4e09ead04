// The commands of paptool, one file each, and what they share with main.
#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace paptool {

// Exit statuses.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;  // the work was not, or not wholly, done
inline constexpr int kWrongUsage =
    2;  // nothing was done: the command line names what cannot be used

// The work of the command that the user chose; returns an exit status.
using Work = std::function<int()>;

// Each adds its command to the parser; when the command line names it, it leaves its work in
// `work`, to be done after parsing. Both references must outlive the parsing. The work may throw
// text::RuntimeError and std::exception: main reports them and returns kFailed.
void AddApplyCommand(CLI::App& app, Work& work);
void AddCheckCommand(CLI::App& app, Work& work);
void AddCompactCommand(CLI::App& app, Work& work);
void AddDemoCommand(CLI::App& app, Work& work);
void AddProcessedCommand(CLI::App& app, Work& work);
void AddRowsCommand(CLI::App& app, Work& work);
void AddServeCommand(CLI::App& app, Work& work);  // not on Windows
void AddShowCommand(CLI::App& app, Work& work);
void AddTablesCommand(CLI::App& app, Work& work);

}  // namespace paptool
