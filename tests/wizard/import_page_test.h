// The import page on a product table, with update files written as texts; keeps what it tells.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/support/fixed_clock.h"
#include "tests/support/recording_clipboard.h"
#include "tests/support/scripted_event_pump.h"
#include "tests/support/surface_test.h"
#include "wizard/usrImport.h"

class ImportPageTest : public test_support::ProductTableTest {
 protected:
  ImportPageTest();

  // Adds an update of supplier S1 for the assortment BEAMS to those that Start applies. The file
  // brings both along and ends with these lines.
  clsOrvPap& Add(const std::wstring& vFileName, const std::string& vLines = "");
  // A price for an article that there is not: the last line of an update that is refused there.
  static constexpr char kRefusedPrice[] = "[UPDATE PRICEDATA]\r\nX,1,1,1,1,1,,,\r\n";

  // Runs the import of the updates added; the page must not know them afterwards.
  bool Start(bool vMakeBackup = false);

  // The list, a line an item, "message|detail"; a red one begins with "! ".
  std::vector<std::string> Listed() const;
  // What the list shows of an update that is applied: these lines.
  static std::vector<std::string> Applied(const clsOrvPap& vOrvPap);
  // The lines of the log.
  std::vector<std::string> Logged() const;
  // File names and times of the register.
  std::vector<std::string> Register();

  static constexpr double kNoon = 45000.5;  // 2023-03-15 12:00
  // Text 57 of a backup made by Add's updates.
  std::string BackupLine() const;
  const std::filesystem::path backup = folder / "BEAMS_S1_20260105.pt";
  const std::filesystem::path log = folder / "program/paplog.txt";

  test_support::FixedClock clock{kNoon};
  test_support::ScriptedEventPump pump;
  test_support::RecordingClipboard clipboard;
  usrImport page;
  std::vector<std::string> heard;  // the page's events, in their order
  std::vector<std::shared_ptr<clsOrvPap>> updates;
};
