// Tells when to give up waiting for a server.
#pragma once

#include <chrono>
#include <cstddef>

namespace transfer {

// What a server must send at least, in bytes a second: half of what the slowest line gives that
// anybody still uses, and a file of 10 MB is there, or given up, within three quarters of an hour.
inline constexpr double kLeastRate = 4000;

// Counts only the time spent waiting, so that whoever takes long over what came in blames nobody.
class Patience {
 public:
  using Duration = std::chrono::steady_clock::duration;

  // Begins anew. Over so many seconds of waiting as `silence` tells, the server must keep the least
  // rate: a trickle is as good as silence. `whole` is how much may be waited in all.
  void Begin(Duration silence, Duration whole = Duration::max());

  // So long was waited, and so many bytes came of it.
  void Waited(Duration time, std::size_t bytes);

  bool IsOver() const { return over_; }

 private:
  Duration silence_{};
  Duration left_{};        // of the whole
  Duration waited_{};      // since the measurement of the rate began
  std::size_t bytes_ = 0;  // that came meanwhile
  bool over_ = false;
};

}  // namespace transfer
