// Copies a file so that the target is never half of it.
#pragma once

#include <string>

namespace files {

// Copies `source` over `target`, which may exist; a link is followed to the file that it leads to.
// The target is the old file or the new one at every moment (platform/files/temporary_neighbour.h),
// and is locked against other owners until the new one is in place; on Windows only where an open
// file can be renamed over another: NTFS on Windows 10 1607 or newer does that, FAT, exFAT and many
// network shares do not. There the lock ends just before the renaming: whoever opens the target in
// between makes the copy fail. The source may be open, here or elsewhere, and stays locked by whom
// it was; nobody keeps others from changing it meanwhile. On Windows somebody who has the target
// open for a moment is waited for, some two seconds, and makes the copy fail by writing to it.
//
// Throws text::RuntimeError, with the target as it was: 53 or 76 when the source is missing or the
// target's folder is; 70 when either may not be opened, somebody holds the target, or both are the
// same file; 61 when the disk is full; 57 when reading or writing fails.
void CopyFileAtomically(const std::wstring& source, const std::wstring& target);

}  // namespace files
