// Another process that does something beside the test.
#pragma once

#include <functional>

#include <sys/types.h>

namespace walks {

// Must begin before this process has threads or windows.
class OtherProcess {
 public:
  // Lets the other process call `begin` and then sleep, holding what it holds. Returns when it
  // does; throws std::runtime_error when it cannot.
  explicit OtherProcess(const std::function<void()>& begin);
  // Ends it.
  ~OtherProcess();
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;

 private:
  pid_t process_;
};

}  // namespace walks
