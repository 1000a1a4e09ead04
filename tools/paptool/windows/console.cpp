// Arguments come as UTF-16 from the system; the console and the C library are told to leave UTF-8
// alone.
#include "tools/paptool/console.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <shellapi.h>

#include <cstdio>
#include <memory>

#include "platform/files/file_error.h"
#include "platform/text/code_page.h"

namespace paptool {

std::vector<std::string> Arguments(int, const char* const*) {
  int count = 0;
  const std::unique_ptr<LPWSTR, decltype(&LocalFree)> wide(
      CommandLineToArgvW(GetCommandLineW(), &count), &LocalFree);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(text::WideToUtf8(wide.get()[i]));
  return arguments;
}

std::filesystem::path ProgramFile() {
  constexpr DWORD kLongestPath = 32768;  // characters, in the system's longest form
  std::wstring path(kLongestPath, L'\0');
  const DWORD length = GetModuleFileNameW(nullptr, path.data(), kLongestPath);
  if (length == 0 || length == kLongestPath) throw files::FileError(files::kFileNotFound);
  path.resize(length);
  return path;
}

void PrepareOutput() {
  SetConsoleOutputCP(CP_UTF8);
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
}

}  // namespace paptool
