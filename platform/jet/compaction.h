// Compaction: a new file with the contents of another one, without its gaps.
// docs/compaction.md tells what is carried over, what is refused, and what a kill leaves behind.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "platform/jet/page_store.h"

namespace jet {

struct CompactOptions {
  std::u16string password{};  // of the source; the copy has the same
  // Called now and then, never while a page or a file is being replaced, so that a window can stay
  // alive. What it throws ends the compaction.
  std::function<void()> progress{};
};

// Each opens the source for reading only, as its only owner, and keeps it until the end. Tables,
// rows, indexes, relationships, properties, queries and everything else of the catalog are carried
// over; the copy is checked as a whole, and appears complete or not at all. Cost grows with the
// file's size; memory holds eight bytes a row of the largest table and the page caches, and the
// keys of one index only where it must be made anew from the rows.
//
// Errors: what Database::Open throws (kInUse when anybody, this process included, has the source
// open); kNotSupported when the file holds what cannot be carried over whole, kDamaged when it
// contradicts itself, kDuplicateKey when rows break a unique index that must be made anew;
// kDiskFull, kIo. Nothing is left behind then.

// Makes the file `target`, whose folder must exist. kDatabaseExists.
void CompactFile(const std::filesystem::path& source, const std::filesystem::path& target,
                 const CompactOptions& options);

// Puts the compacted file in the place of `file`, or of the file that it is a link to. Until then,
// and when it fails, that is as it was; nobody else can open it in between. Also kReadOnly when it
// is write-protected.
void CompactInPlace(const std::filesystem::path& file, const CompactOptions& options);

// The same over pages that the caller supplies; `target` has none yet. After a failure it holds
// rubbish.
void CompactPages(PageStore& source, PageStore& target, const CompactOptions& options);

}  // namespace jet
