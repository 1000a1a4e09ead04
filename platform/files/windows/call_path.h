// Paths as the calls of Windows take and give them.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

namespace files {

// The path for a call that opens, moves or deletes a file: as it is, or absolute and with the mark
// that lifts the limit of 260 characters where it comes near that. (By itself the limit is gone
// only where the machine's settings say so.)
std::wstring CallPath(const std::filesystem::path& path);

// The absolute path, "." and ".." resolved by name. Empty when the system refuses it.
std::wstring FullPath(const std::wstring& path);

// The path without the mark.
std::wstring WithoutMark(const std::wstring& path);

// The text that `call` puts into a buffer of a given size, or whose size it returns when that is
// too small. Empty when the call fails.
template <typename Call>
std::wstring FilledText(Call call) {
  std::wstring text(MAX_PATH, L'\0');
  while (true) {
    const DWORD size = call(text.data(), static_cast<DWORD>(text.size()));
    const bool fits = size < text.size();
    text.resize(size);
    if (fits) return text;
  }
}

}  // namespace files
