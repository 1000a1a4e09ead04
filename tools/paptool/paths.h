// Paths as the command line gives them.
#pragma once

#include <string>

namespace paptool {

// What is wrong with an argument that must be a path; empty when nothing is. For
// CLI::Option::check.
std::string PathProblem(const std::string& utf8);

// The path text of an argument in UTF-8, not empty, made absolute from the current folder.
std::wstring AbsolutePath(const std::string& utf8);

}  // namespace paptool
