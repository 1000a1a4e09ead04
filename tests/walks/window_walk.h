// A demo installation for a walk through the wizard's real windows.
#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/modShared.h"
#include "demo/installation.h"
#include "platform/database/recordset.h"
#include "platform/jet/database.h"
#include "platform/registry/registry.h"
#include "tests/support/scripted_server.h"
#include "tests/support/temporary_folder.h"
#include "tests/walks/wx/robot.h"
#include "tests/walks/wx/screen.h"

namespace walks {

// The titles of the steps.
inline constexpr char kWelcome[] = "Orvane 3.2 Price Update Wizard";
inline constexpr char kTarget[] = "Choose the product table";
inline constexpr char kProcessed[] = "Processed price updates";
inline constexpr char kDownload[] = "Download price updates";
inline constexpr char kSelect[] = "Choose price updates";
inline constexpr char kImport[] = "Apply price updates";

// The captions of the buttons and of the question whether to ask the server.
inline constexpr char kNext[] = "Next >>";
inline constexpr char kPrevious[] = "<< Previous";
inline constexpr char kClose[] = "Close";
inline constexpr char kOk[] = "OK";
inline constexpr char kBackup[] = "Make a backup before each price update";
inline constexpr char kDoNotCheck[] = "Do not check";

// The wizard starts, in English, in a new demo installation. Its settings are the only thing
// that it shares with an earlier run there.
class WindowWalk : public testing::Test {
 protected:
  WindowWalk();

  // Runs the wizard while `script` uses it, from the welcome to its end. Once for a process.
  void Walk(const std::function<void()>& script);
  // Before it: what the server does with a request; by itself it offers the files of the folder
  // `server` of the installation.
  test_support::ScriptedServer::Answer answer;
  // Before it: the only update that is offered has these lines; so many that its import takes a
  // while.
  void OfferOnly(const std::string& lines) const;
  void OfferLongUpdate() const;

  // For scripts, which look where the robot may and then expect.
  static void ExpectStep(const std::string& title, const std::string& buttons);
  static std::vector<std::string> RowsNow() { return Ask<std::vector<std::string>>(Rows); }
  static std::string MessageNow() { return Ask<std::string>(Message); }
  // Presses Next until the step with this title is there.
  static void GoTo(const std::string& title);
  // To the select page, without asking the server, and without backups of the product table.
  static void GoToSelect();
  // Whether an import is under way; on the windows' thread.
  static bool AmidImport();
  // Checks these rows of the list and no others.
  static void CheckOnly(const std::vector<std::size_t>& rows);

  // The installation afterwards.
  std::string Setting(const std::string& name) const;
  // The update files in the product table's register, in the order in which they
  // were applied.
  std::vector<std::string> Register() const;
  // The file names in the installation, without folders and programs.
  std::vector<std::string> Files() const;
  // As another program opens the product table.
  static jet::OpenOptions WithPassword();
  // What a program leaves that was closed in the middle of its work: a product table that is sound,
  // and no file that it had made for the while.
  void ExpectCleanEnd() const;
  // The product table passes the check of its file; the independent readers get a copy.
  void ExpectSound() const;

  test_support::TemporaryFolder folder;
  const std::filesystem::path installation = folder / "demo";
  const std::filesystem::path table = installation / demo::kProductTableFile;
  const std::filesystem::path updates = installation / demo::kUpdateFolder;
  const std::filesystem::path on_server = installation / demo::kServerFolder;
  const std::filesystem::path compacted = installation / "Orv.pt_tmp";
  std::vector<std::string> requests;  // the paths that the server was asked for

 private:
  std::string Served(const std::string& path) const;

  std::unique_ptr<registry::Registry> registry_;
  SharedSettings shared_;
};

}  // namespace walks
