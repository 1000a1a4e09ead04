// Steps on whole files for which the standard library has no words.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "platform/jet/page_store.h"

namespace jet {

// The absolute path of the file that a path leads to, through links and without short names; a path
// that leads nowhere as it is.
std::filesystem::path FileItself(const std::filesystem::path& path);

// Whether a step, which returns that, has succeeded. On Windows one that fails is repeated for some
// tenths of a second: scanners and indexes hold a file that was just written, or deleted.
bool TryPatiently(const std::function<bool()>& step);

// Removes a file that a killed process left behind; none is fine. kInUse when somebody has it open,
// kCannotOpen.
void RemoveLeftover(const std::filesystem::path& path);

// Gives a file the access rights of another, with its owner where rights are the owner's, on
// Windows with its marks (hidden ...). Best effort: that it cannot be done must not make a
// replacement fail.
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
