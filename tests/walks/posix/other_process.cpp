// Another process that does something beside the test.
#include "tests/walks/posix/other_process.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

namespace walks {
namespace {

[[noreturn]] void RunOther(const std::function<void()>& begin, int done) {
  try {
    begin();
    if (write(done, "!", 1) == 1) {
      for (;;) pause();
    }
  } catch (...) {
    _exit(1);
  }
  _exit(1);
}

}  // namespace

OtherProcess::OtherProcess(const std::function<void()>& begin) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
  process_ = fork();
  if (process_ == 0) RunOther(begin, ends[1]);
  close(ends[1]);
  char begun = 0;
  const bool ready = process_ > 0 && read(ends[0], &begun, 1) == 1;
  close(ends[0]);
  if (!ready) throw std::runtime_error("the other process did not begin");
}

OtherProcess::~OtherProcess() {
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}

}  // namespace walks
