// Takes the right to write or to read a file away: its permissions, and an administrator's rights.
#include "tests/support/file_protection.h"

#include <utility>

#include "tests/support/posix/ordinary_user.h"

namespace test_support {

using std::filesystem::perms;

struct WriteProtection::Impl {
  OrdinaryUser user;
};

WriteProtection::WriteProtection(std::filesystem::path file) : file_(std::move(file)) {
  std::filesystem::permissions(file_, perms::owner_read | perms::group_read | perms::others_read);
  impl_ = std::make_unique<Impl>();
}

WriteProtection::~WriteProtection() {
  impl_.reset();
  std::filesystem::permissions(file_, perms::owner_all);
}

struct ReadProtection::Impl {
  OrdinaryUser user;
};

ReadProtection::ReadProtection(std::filesystem::path file) : file_(std::move(file)) {
  std::filesystem::permissions(file_, perms::none);
  impl_ = std::make_unique<Impl>();
}

ReadProtection::~ReadProtection() {
  impl_.reset();
  std::filesystem::permissions(file_, perms::owner_all);
}

}  // namespace test_support
