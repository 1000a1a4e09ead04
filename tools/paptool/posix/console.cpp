// Arguments and output are UTF-8 already; the kernel knows the program's file.
#include "tools/paptool/console.h"

#include <csignal>

#include "platform/files/file_error.h"

namespace paptool {

std::vector<std::string> Arguments(int argc, const char* const* argv) {
  return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

// The shell has seen to it.
std::vector<std::string> FilesOf(const std::vector<std::string>& arguments) { return arguments; }

std::filesystem::path ProgramFile() {
  std::error_code error;
  std::filesystem::path file = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) throw files::FileError(files::kFileNotFound);
  return file;
}

// A reader that has gone away ends the output and not the program, which may be writing a database.
void PrepareOutput() { std::signal(SIGPIPE, SIG_IGN); }

}  // namespace paptool
