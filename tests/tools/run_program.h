// Runs a program as a user would, and keeps what it said.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

// Output in bytes, as the program wrote it.
struct ProgramOutcome {
  int status = -1;  // exit status
  std::string out;
  std::string err;
};

// Runs the program with these arguments (UTF-8, without double quotes inside) and waits for its
// end. Its output passes through two files in `scratch`.
ProgramOutcome RunProgram(const std::filesystem::path& program,
                          const std::vector<std::string>& arguments,
                          const std::filesystem::path& scratch);
