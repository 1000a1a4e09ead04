// A timer that beats on the windows' thread, and the gaps between its beats.
#include "bench/wx/beats.h"

#include <wx/timer.h>

#include <chrono>

#include "tests/walks/wx/screen.h"

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kBeat = 10;  // milliseconds

}  // namespace

class Beats::Timer final : public wxTimer {
 public:
  double largest = 0;
  std::string at;

 private:
  void Notify() override {
    const std::chrono::duration<double, std::milli> gap = Clock::now() - last_;
    if (gap.count() > largest) {
      largest = gap.count();
      at = walks::Title();
      if (at == "Apply price updates") {
        at += ", " + std::to_string(static_cast<int>(walks::Progress() * 100)) + " %";
      }
    }
    last_ = Clock::now();
  }

  Clock::time_point last_ = Clock::now();
};

Beats::Beats() : timer_(std::make_unique<Timer>()) { timer_->Start(kBeat); }
Beats::~Beats() = default;

double Beats::LargestGap() const { return timer_->largest; }
const std::string& Beats::At() const { return timer_->at; }

}  // namespace bench
