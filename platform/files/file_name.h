// Whether a name from elsewhere may be used as a file's.
#pragma once

#include <string_view>

namespace files {

// True for a name that on every system is that of a file in the folder it is put behind: no
// separator, no drive, no "." or "..", no device ("con", "LPT1.txt"), no control character, nothing
// that Windows forbids or drops from a name. What it names need not exist.
bool IsPlainFileName(std::wstring_view name);

}  // namespace files
