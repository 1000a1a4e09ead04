// A database file in the making, which gets its name when it is complete.
#pragma once

#include <filesystem>
#include <memory>

#include "platform/jet/page_store.h"

namespace jet {

// Built as TARGET.~new, beside its target. Whoever looks at the target sees nothing or the old file
// before the last step, and the whole new file after it, also when the process is killed at any
// moment. What a kill leaves behind is at most that neighbour, and the next new file for the same
// target takes it away.
class NewFile {
 public:
  // Creates the neighbour, without pages. kInUse when somebody else is making the same file;
  // kPathNotFound, kCannotOpen, kDiskFull, kIo.
  explicit NewFile(std::filesystem::path target);
  // Removes the neighbour if it has not got its name.
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  PageStore& pages() { return *pages_; }

  // See GiveRights in platform/jet/file_steps.h.
  void TakeRightsOf(const std::filesystem::path& other) noexcept;

  // The last step, after everything has been handed to the disk: the target did not exist
  // (kDatabaseExists), or it is replaced, held by its owner until that is done. Ends the use of
  // pages(). kCannotOpen, kDiskFull, kIo; the target is then as it was.
  void Appear();
  void Replace(std::unique_ptr<PageStore> held_target);

 private:
  std::filesystem::path target_;
  std::filesystem::path path_;
  std::unique_ptr<PageStore> pages_;
};

}  // namespace jet
