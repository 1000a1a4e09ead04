// The program's arguments, its own file, and its output in UTF-8, whatever the system makes of
// them.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace paptool {

// The arguments in UTF-8, without the program's name.
std::vector<std::string> Arguments(int argc, const char* const* argv);

// The files that arguments stand for: patterns such as "PAP32\\*.PRC" where the system leaves that
// to programs, each pattern's files in order. A pattern without files, and what is none, as it is.
std::vector<std::string> FilesOf(const std::vector<std::string>& arguments);

// The file of the running program, links resolved. Throws text::RuntimeError when the system does
// not tell.
std::filesystem::path ProgramFile();

// Makes standard output and error take UTF-8 as it is, line ends included, and survive a reader
// that goes away. Call it before any output.
void PrepareOutput();

// Write a line as it is: to standard output, to standard error, and there with "paptool: " in
// front.
void PrintLine(std::string_view utf8);
void PrintLine(std::wstring_view line);
void PrintMessage(std::wstring_view line);
void PrintError(std::wstring_view line);

// A text of several lines as one: line ends, however many together, become " / ".
std::wstring OneLine(std::wstring_view text);

// Whether everything written to standard output has reached the system.
bool FlushOutput();

}  // namespace paptool
