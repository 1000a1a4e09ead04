// A timer that beats on the windows' thread, and the gaps between its beats.
#pragma once

#include <memory>
#include <string>

namespace bench {

// Beats every 10 ms while it lives. Of the windows' thread alone.
class Beats {
 public:
  Beats();
  ~Beats();
  Beats(const Beats&) = delete;
  Beats& operator=(const Beats&) = delete;

  // In milliseconds.
  double LargestGap() const;
  // What the wizard showed at the end of that gap: the title and how far the work was.
  const std::string& At() const;

 private:
  class Timer;
  std::unique_ptr<Timer> timer_;
};

}  // namespace bench
