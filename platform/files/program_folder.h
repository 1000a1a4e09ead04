// Where the running program lives.
#pragma once

#include <filesystem>

namespace files {

// The folder of the started executable with links resolved, so that a link on the desktop still
// finds the files beside the program. Throws text::RuntimeError when the system does not tell.
std::filesystem::path ProgramFolder();

}  // namespace files
