// Tells when to give up waiting for a server.
#include "platform/transfer/patience.h"

namespace transfer {

void Patience::Begin(Duration limit) {
  *this = {};
  limit_ = limit;
}

void Patience::Waited(Duration time, std::size_t bytes) {
  waited_ += time;
  bytes_ += bytes;
  if (waited_ < limit_) return;
  const std::chrono::duration<double> seconds = waited_;
  over_ = bytes_ == 0 || static_cast<double>(bytes_) < seconds.count();
  waited_ = {};
  bytes_ = 0;
}

}  // namespace transfer
