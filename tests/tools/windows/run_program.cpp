// Runs a program without the command interpreter, which has an opinion on quotes and names.
#include "tests/tools/run_program.h"

#include <windows.h>

#include <stdexcept>

#include "platform/text/code_page.h"
#include "tests/support/temporary_folder.h"

namespace {

std::wstring Quoted(const std::wstring& text) { return L'"' + text + L'"'; }

// A new file that the program takes for one of its standard streams.
class OutputFile {
 public:
  explicit OutputFile(const std::filesystem::path& path) {
    SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
    file_ = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                        FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file_ == INVALID_HANDLE_VALUE) throw std::runtime_error("no file for the output");
  }
  ~OutputFile() { CloseHandle(file_); }
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  HANDLE handle() const { return file_; }

 private:
  HANDLE file_;
};

int Run(std::wstring command, const std::filesystem::path& out, const std::filesystem::path& err) {
  const OutputFile out_file(out);
  const OutputFile err_file(err);
  STARTUPINFOW start{};
  start.cb = sizeof(start);
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = out_file.handle();
  start.hStdError = err_file.handle();
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                      &process)) {
    throw std::runtime_error("the program cannot be started");
  }
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD status = 0;
  GetExitCodeProcess(process.hProcess, &status);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return static_cast<int>(status);
}

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
  const int status = Run(command, out, err);
  return {status, test_support::ReadAll(out), test_support::ReadAll(err)};
}
