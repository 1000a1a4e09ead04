// Tells when to give up waiting for a server.
#include "platform/transfer/patience.h"

namespace transfer {

void Patience::Begin(Duration silence, Duration whole) {
  *this = {};
  silence_ = silence;
  left_ = whole;
}

void Patience::Waited(Duration time, std::size_t bytes) {
  left_ -= time;
  if (left_ <= Duration::zero()) over_ = true;
  waited_ += time;
  bytes_ += bytes;
  if (waited_ < silence_) return;
  const std::chrono::duration<double> seconds = waited_;
  if (static_cast<double>(bytes_) < kLeastRate * seconds.count()) over_ = true;
  waited_ = {};
  bytes_ = 0;
}

}  // namespace transfer
