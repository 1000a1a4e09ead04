// Lets a test that runs as the administrator feel what an ordinary user may not do.
#pragma once

#include <unistd.h>

#include <stdexcept>

namespace test_support {

// While it lives, this process acts for a user without any rights of its own, where it may do so;
// where it may not, it is an ordinary user's already. Process-wide.
class OrdinaryUser {
 public:
  OrdinaryUser() : user_(geteuid()), group_(getegid()) {
    constexpr uid_t kNobody = 65534;
    if (user_ != 0) return;
    if (setegid(kNobody) != 0 || seteuid(kNobody) != 0)
      throw std::runtime_error("cannot step down");
  }
  ~OrdinaryUser() {
    if (user_ == 0 && (seteuid(user_) != 0 || setegid(group_) != 0)) _exit(1);
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

 private:
  uid_t user_;
  gid_t group_;
};

}  // namespace test_support
