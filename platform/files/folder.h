// The files of a folder, and deleting a file.
#pragma once

#include <string>
#include <vector>

namespace files {

// The full paths of the files (no folders, nothing that is no regular file) in `folder`: its
// absolute path and the name of each. In the order in which Windows enumerates them; elsewhere by
// name, letter case ignored, which is the order that Windows gives. Throws text::RuntimeError 76
// when there is no such folder, 70 when it may not be read, 57 when reading it fails.
std::vector<std::wstring> FilesIn(const std::wstring& folder);

// Deletes a file, one that is marked read-only too. Throws text::RuntimeError 53 when there is no
// such file (a folder is none), 76 when not even its folder exists, 70 when it may not be deleted
// or is in use.
void RemoveFile(const std::wstring& path);

}  // namespace files
