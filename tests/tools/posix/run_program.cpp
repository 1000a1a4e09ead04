// Runs a program through the shell.
#include "tests/tools/run_program.h"

#include <sys/wait.h>

#include <cstdlib>

#include "tests/support/temporary_folder.h"

namespace {

// Nothing inside single quotes has a meaning but the quote itself.
std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char character : text) {
    if (character == '\'') {
      quoted += "'\\''";
    } else {
      quoted += character;
    }
  }
  return quoted + "'";
}

}  // namespace

ProgramOutcome RunProgram(const std::filesystem::path& program,
                          const std::vector<std::string>& arguments,
                          const std::filesystem::path& scratch) {
  const std::filesystem::path out = scratch / "stdout.txt";
  const std::filesystem::path err = scratch / "stderr.txt";
  std::string command = Quoted(program.string());
  for (const std::string& argument : arguments) command += " " + Quoted(argument);
  command += " >" + Quoted(out.string()) + " 2>" + Quoted(err.string());

  const int status = std::system(command.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, test_support::ReadAll(out),
          test_support::ReadAll(err)};
}
