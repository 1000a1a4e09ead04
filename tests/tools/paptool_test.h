// Runs paptool on files in a temporary folder.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/jet/database.h"
#include "tests/support/temporary_folder.h"
#include "tests/tools/run_program.h"

class PaptoolTest : public testing::Test {
 protected:
  ProgramOutcome Run(const std::vector<std::string>& arguments) const;
  // The path of a file in the folder, as paptool prints it.
  std::string Path(const std::filesystem::path& name) const;
  // A new product table, empty but for its identity row.
  std::string MakeProductTable() const;
  // A database without a password that holds `table` with these rows.
  std::string MakeDatabase(const jet::TableSpec& table, std::vector<jet::Row> rows) const;

  const test_support::TemporaryFolder folder;
};

// The lines of an output, without their ends.
std::vector<std::string> Lines(const std::string& output);
