// Steps on whole files for which the standard library has no words.
#pragma once

#include <filesystem>
#include <memory>

#include "platform/jet/page_store.h"

namespace jet {

// The absolute path of the file that a path leads to, through links; a path that leads nowhere as
// it is.
std::filesystem::path FileItself(const std::filesystem::path& path);

// Removes a file that a killed process left behind; none is fine. kInUse when somebody has it open,
// kCannotOpen.
void RemoveLeftover(const std::filesystem::path& path);

// Gives a file the owner and the access rights of another, where the system keeps them in the file.
// Best effort: that it cannot be done must not make a replacement fail.
void GiveRights(const std::filesystem::path& file, const std::filesystem::path& like) noexcept;

// Gives a closed file another name, which nothing has yet, and makes that last. kDatabaseExists
// when something has the name; kCannotOpen, kIo.
void MoveToFreeName(const std::filesystem::path& file, const std::filesystem::path& name);

// Puts a closed file in the place of another one, and makes that last. Whoever holds that one does
// so until the step is done, where the system lets files be replaced while they are open. At no
// moment is there no file of this name. kInUse, kCannotOpen, kIo.
void MoveOver(const std::filesystem::path& file, const std::filesystem::path& target,
              std::unique_ptr<PageStore> held_target);

}  // namespace jet
