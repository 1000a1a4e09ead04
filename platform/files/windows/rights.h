// What a new version of a file takes over from the old one on Windows.
#pragma once

#include <windows.h>

#include <filesystem>

namespace files {

// Gives a file the access rights of another that do not come from its folder, and its marks
// (hidden, system, not indexed). Best effort: that it cannot be done must not make a replacement
// fail.
void GiveRights(const std::filesystem::path& file, const std::filesystem::path& like) noexcept;

// Lets the system compress an open file if it does so with the other one. Best effort, too.
void CompressAs(HANDLE file, const std::filesystem::path& like) noexcept;

}  // namespace files
