// Price-update files on disk: which files are any, and what their headers say.
#pragma once

#include <string>

#include "engine/clsOrvPap.h"

// Whether a file of this name or path is a price update: by its extension, in any case.
bool IsPapFile(const std::wstring& vFileName);

// Whether an update of this version, as its header spells it, can be applied.
bool IsPapVersion(const std::wstring& vVersion);

// Fills the header values of `vOrvPap`, a new object, its FilePath and its FileSize from the file.
// Any version is read. Throws text::RuntimeError when the file cannot be read
// (platform/files/file_error.h) and 5 when a date lies outside the calendar; `vOrvPap` is then
// filled in part.
void ReadPapHeader(const std::wstring& vPath, clsOrvPap& vOrvPap);
