// Tells when to give up waiting for a server.
#pragma once

#include <chrono>
#include <cstddef>

namespace transfer {

// Counts only the time spent waiting, so that whoever takes long over what came in blames nobody. A
// server must send at least a byte a second, measured over the whole limit: one that sends just
// enough not to be silent ends too.
class Patience {
 public:
  using Duration = std::chrono::steady_clock::duration;

  // Begins anew; `limit` is how long silence may last.
  void Begin(Duration limit);

  // So long was waited, and so many bytes came of it.
  void Waited(Duration time, std::size_t bytes);

  bool IsOver() const { return over_; }

 private:
  Duration limit_{};
  Duration waited_{};      // since the measurement began
  std::size_t bytes_ = 0;  // that came meanwhile
  bool over_ = false;
};

}  // namespace transfer
