// A database file in the making: see the header.
#include "platform/jet/new_file.h"

#include <utility>

#include "platform/jet/file_steps.h"

namespace jet {

namespace {

std::filesystem::path NeighbourOf(std::filesystem::path target) { return target += ".~new"; }

}  // namespace

NewFile::NewFile(std::filesystem::path target)
    : target_(std::move(target)), path_(NeighbourOf(target_)) {
  RemoveLeftover(path_);
  pages_ = OpenPageStore(path_, OpenMode::kCreate);
}

NewFile::~NewFile() {
  if (path_.empty()) return;
  pages_.reset();
  std::error_code ignored;
  std::filesystem::remove(path_, ignored);
}

void NewFile::TakeRightsOf(const std::filesystem::path& other) noexcept {
  GiveRights(path_, other);
}

void NewFile::Appear() {
  pages_->Sync();
  pages_.reset();
  MoveToFreeName(path_, target_);
  path_.clear();
}

void NewFile::Replace(std::unique_ptr<PageStore> held_target) {
  pages_->Sync();
  pages_.reset();
  MoveOver(path_, target_, std::move(held_target));
  path_.clear();
}

}  // namespace jet
