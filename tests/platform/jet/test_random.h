// Random numbers that are the same on every run and every system.
#pragma once

#include <cstdint>
#include <limits>
#include <random>

namespace jet::test {

class Random {
 public:
  using result_type = std::uint32_t;
  explicit Random(std::uint32_t seed) : engine_(seed) {}

  static constexpr result_type min() { return 0; }
  static constexpr result_type max() { return std::numeric_limits<result_type>::max(); }
  result_type operator()() { return static_cast<result_type>(engine_()); }

 private:
  std::mt19937 engine_;
};

}  // namespace jet::test
