// Arguments come as UTF-16 from the system; the console and the C library are told to leave UTF-8
// alone.
#include "tools/paptool/console.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <shellapi.h>
#include <shlwapi.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "platform/files/file_error.h"
#include "platform/text/code_page.h"

namespace paptool {
namespace {

std::vector<std::wstring> FilesOfPattern(const std::wstring& argument) {
  const std::size_t name_at = argument.find_last_of(L"\\/:") + 1;
  const std::wstring pattern = argument.substr(name_at);
  if (pattern.find_first_of(L"*?") == std::wstring::npos) return {argument};
  std::vector<std::wstring> files;
  WIN32_FIND_DATAW found{};
  const HANDLE search = FindFirstFileW(argument.c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return {argument};
  do {
    const bool is_file = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    // The search goes by short names, too, where "*.PRC" also fits "old.PRC_1".
    if (is_file && PathMatchSpecW(found.cFileName, pattern.c_str()))
      files.push_back(argument.substr(0, name_at) + found.cFileName);
  } while (FindNextFileW(search, &found));
  FindClose(search);
  if (files.empty()) return {argument};
  std::ranges::sort(files);
  return files;
}

}  // namespace

std::vector<std::string> Arguments(int, const char* const*) {
  int count = 0;
  const std::unique_ptr<LPWSTR, decltype(&LocalFree)> wide(
      CommandLineToArgvW(GetCommandLineW(), &count), &LocalFree);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(text::WideToUtf8(wide.get()[i]));
  return arguments;
}

std::vector<std::string> FilesOf(const std::vector<std::string>& arguments) {
  std::vector<std::string> files;
  for (const std::string& argument : arguments) {
    for (const std::wstring& file : FilesOfPattern(text::Utf8ToWide(argument)))
      files.push_back(text::WideToUtf8(file));
  }
  return files;
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
  // The console is the user's: later programs are to find it as it was.
  static const UINT before = GetConsoleOutputCP();
  std::atexit([] {
    if (before != 0) SetConsoleOutputCP(before);
  });
  SetConsoleOutputCP(CP_UTF8);
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
}

}  // namespace paptool
