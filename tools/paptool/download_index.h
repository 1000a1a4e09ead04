// The download index of a folder of price-update files.
#pragma once

#include <string>

namespace paptool {

// The index as clients read it (docs/downloads.md), in the code page of its names: a line for each
// update file of the folder, from its header. Left out are files that cannot be read, and those
// whose name the index cannot hold (a comma) or a client would refuse. Commas in other fields
// become semicolons. Throws text::RuntimeError when the folder cannot be read.
std::string DownloadIndex(const std::wstring& folder);

}  // namespace paptool
