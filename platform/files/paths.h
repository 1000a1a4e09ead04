// Between the program's wide path texts and the system's paths, and simple questions about files.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace files {

// A wide text as a path and back: UTF-8 elsewhere, as it is on Windows. Neither touches the disk.
// Every path comes back as it was: a byte that is no UTF-8 (a name from an older system) becomes a
// lone surrogate, which prints as a replacement character.
std::filesystem::path ToPath(const std::wstring& text);
std::wstring ToText(const std::filesystem::path& path);

// The system's own separator between folders: L'\\' on Windows, L'/' elsewhere.
constexpr wchar_t Separator() {
  return static_cast<wchar_t>(std::filesystem::path::preferred_separator);
}

// True for both separators that path texts may use: a backslash everywhere and the system's own.
constexpr bool IsSeparator(wchar_t character) {
  return character == L'\\' || character == Separator();
}

// True when there is a file (no folder, device or pipe, which could be read for ever), or a folder,
// that this process may look at. Never throw.
bool FileExists(const std::wstring& path);
bool FolderExists(const std::wstring& path);

// True when both paths lead to one file that exists, over links and by whatever names. Never
// throws.
bool IsSameFile(const std::wstring& left, const std::wstring& right);

// The size in bytes. Throws the RuntimeError of files/file_error.h when there is no such file.
std::uint64_t FileSize(const std::wstring& path);

// Whether the path does not depend on the current folder. On Windows \\server\share and a drive
// with a separator do not. These two, and never the standard library's, which on Windows may take a
// path on a server for a relative one.
bool IsAbsolute(const std::wstring& path);

// The path made absolute from the current folder; on Windows also without . and .., which that
// system takes away by name. Throws text::RuntimeError 76 when the system refuses it: it is empty,
// or there is no current folder.
std::wstring AbsolutePath(const std::wstring& path);

// The file that a link leads to, for whoever must not replace the link. A path that is no link
// comes back as it is, and so does a link that leads nowhere.
std::filesystem::path FollowLink(const std::filesystem::path& path);

// The system's short (8.3) form of the path; the path as it is where the system has none that fits
// 255 characters: it has no such names, or the drive or the server has not. On Windows the result
// is empty when neither a file nor a folder is there.
std::wstring ShortPath(const std::wstring& path);

}  // namespace files
