// The host product: a process of its own, because a lock says nothing to the process that has it.
#include "tests/walks/host_product.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

#include "platform/files/file_lock.h"

namespace walks {
namespace {

[[noreturn]] void Hold(const std::filesystem::path& file, int done) {
  try {
    const files::FileLock held(file, files::MissingFile::kHoldNothing);
    if (write(done, "!", 1) == 1) {
      for (;;) pause();
    }
  } catch (...) {
    _exit(1);
  }
  _exit(1);
}

}  // namespace

HostProduct::HostProduct(const std::filesystem::path& product_table) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
  native_ = fork();
  if (native_ == 0) Hold(product_table, ends[1]);
  close(ends[1]);
  char begun = 0;
  const bool ready = native_ > 0 && read(ends[0], &begun, 1) == 1;
  close(ends[0]);
  if (!ready) throw std::runtime_error("the product table cannot be held");
}

HostProduct::~HostProduct() {
  const auto process = static_cast<pid_t>(native_);
  kill(process, SIGKILL);
  waitpid(process, nullptr, 0);
}

}  // namespace walks
