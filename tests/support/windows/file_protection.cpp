// Takes the right to write or to read a file away: its attribute, and somebody who has it open.
#include <utility>

#include "platform/files/file_lock.h"
#include "tests/support/file_protection.h"

namespace test_support {

using std::filesystem::perms;

struct WriteProtection::Impl {};

WriteProtection::WriteProtection(std::filesystem::path file) : file_(std::move(file)) {
  std::filesystem::permissions(file_, perms::owner_read);
}

WriteProtection::~WriteProtection() { std::filesystem::permissions(file_, perms::owner_all); }

struct ReadProtection::Impl {
  files::FileLock somebody;
};

ReadProtection::ReadProtection(std::filesystem::path file)
    : file_(std::move(file)),
      impl_(new Impl{files::FileLock(file_, files::MissingFile::kHoldNothing)}) {}

ReadProtection::~ReadProtection() = default;

}  // namespace test_support
