// Runs a program through the command interpreter.
#include "tests/tools/run_program.h"

#include <cstdlib>

#include "platform/text/code_page.h"
#include "tests/support/temporary_folder.h"

namespace {

std::wstring Quoted(const std::wstring& text) { return L'"' + text + L'"'; }

}  // namespace

ProgramOutcome RunProgram(const std::filesystem::path& program,
                          const std::vector<std::string>& arguments,
                          const std::filesystem::path& scratch) {
  const std::filesystem::path out = scratch / "stdout.txt";
  const std::filesystem::path err = scratch / "stderr.txt";
  std::filesystem::path file = program;
  std::wstring command = Quoted(file.make_preferred().wstring());
  for (const std::string& argument : arguments) {
    command += L" " + Quoted(text::Utf8ToWide(argument));
  }
  command += L" >" + Quoted(out.wstring()) + L" 2>" + Quoted(err.wstring());

  // The interpreter takes the first and the last quote of what it is given for its own.
  const int status = _wsystem(Quoted(command).c_str());
  return {status, test_support::ReadAll(out), test_support::ReadAll(err)};
}
