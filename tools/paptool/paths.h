// Paths as the command line gives them.
#pragma once

#include <string>

namespace paptool {

// The path text of an argument in UTF-8, made absolute from the current folder.
std::wstring AbsolutePath(const std::string& utf8);

}  // namespace paptool
