// What a commit is about to overwrite, kept in a file beside the database until the commit is
// whole.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <span>
#include <vector>

#include "platform/jet/page_store.h"

namespace jet {

// One write of a commit, as the file stores the page.
struct JournalledWrite {
  PageNumber number = 0;
  const PageBytes* before = nullptr;  // null: not in the file yet, or given with an earlier write
  const PageBytes* after = nullptr;
};

// A process killed between two writes of a commit leaves some pages new and some old. The journal
// holds the old ones and fingerprints of the new, so that OpenRecovered can tell whether the commit
// was whole and takes back one that was not. Guards against the end of the process, not of the
// machine: nothing here waits for the disk.
class UndoJournal {
 public:
  // Makes no file yet. Where none can be made (a folder that may not be written) commits go on
  // without.
  explicit UndoJournal(const std::filesystem::path& database);
  // Removes the file: every commit is whole.
  ~UndoJournal();
  UndoJournal(const UndoJournal&) = delete;
  UndoJournal& operator=(const UndoJournal&) = delete;

  // To be called before the first of a commit's writes, with all of them in order; `page_count` is
  // the file's before them, and by `page_zero` it is told later whether another program has written
  // to the file since. Nothing marks the end: a commit whose pages are all in the file was whole.
  // kDiskFull when it cannot be written; the commit must then not begin.
  void Keep(PageNumber page_count, const PageBytes& page_zero,
            const std::vector<JournalledWrite>& writes);

  // Leaves the file as it is: the commit failed and could not be put back either.
  void Leave() noexcept;

 private:
  bool Put(std::span<const std::byte> bytes);  // over what the file has

  std::filesystem::path path_;
  std::filebuf file_;
  bool unavailable_ = false;      // or of no more use
  std::vector<std::byte> bytes_;  // reused
};

// As OpenPageStore, after the commit that a killed process has left half done in the file is taken
// back. A journal that does not belong to the file's present contents is dropped, and the file left
// as it is. kReadOnly when a commit has to be taken back and the file may not be written.
// kCannotOpen and kIo when there is a journal that cannot be read, kCannotOpen also when one of no
// more use can neither be removed nor emptied before the file is to be changed (names: the
// journal).
std::unique_ptr<PageStore> OpenRecovered(const std::filesystem::path& database, OpenMode mode);

}  // namespace jet
