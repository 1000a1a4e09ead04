// Runs a program with windows and, beside it, a script that uses them as a user would.
#include "tests/walks/wx/robot.h"

#include <wx/module.h>
#include <wx/timer.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "tests/walks/wx/screen.h"

namespace walks {
namespace {

using std::chrono::milliseconds;

constexpr int kTick = 5;           // milliseconds
constexpr milliseconds kLook{10};  // between two looks for what a script waits for
constexpr std::chrono::seconds kPatience{60};

// Where the two threads meet: one piece of work of the script at a time.
class Meeting {
 public:
  enum class Outcome { kDone, kEnded, kNobodyCame };

  Outcome Do(const std::function<void()>& work) {
    std::packaged_task<void()> task(work);
    std::future<void> done = task.get_future();
    {
      const std::lock_guard lock(mutex_);
      task_ = std::move(task);
    }
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (done.wait_for(kLook) != std::future_status::ready) {
      if (AwaitEnd(milliseconds(0))) return Outcome::kEnded;
      if (std::chrono::steady_clock::now() > end) return Outcome::kNobodyCame;
    }
    done.get();  // throws what the work has thrown
    return Outcome::kDone;
  }

  // On the windows' thread. Comes again in the middle of work that handles events.
  void Serve() {
    std::packaged_task<void()> task;
    {
      const std::lock_guard lock(mutex_);
      std::swap(task, task_);
    }
    if (task.valid()) task();
  }

  void End() { end_.set_value(); }
  bool AwaitEnd(milliseconds patience) const {
    return ended_.wait_for(patience) == std::future_status::ready;
  }

 private:
  std::mutex mutex_;
  std::packaged_task<void()> task_;
  std::promise<void> end_;
  std::future<void> ended_ = end_.get_future();
};

Meeting& TheMeeting() {
  static Meeting meeting;
  return meeting;
}

// The toolkit makes it when it starts, before the program has a window.
class RobotModule final : public wxModule {
 public:
  bool OnInit() override {
    timer_ = std::make_unique<Timer>();
    return timer_->Start(kTick);
  }
  void OnExit() override { timer_.reset(); }

 private:
  class Timer final : public wxTimer {
    void Notify() override { TheMeeting().Serve(); }
  };
  std::unique_ptr<Timer> timer_;

  wxDECLARE_DYNAMIC_CLASS(RobotModule);
};
wxIMPLEMENT_DYNAMIC_CLASS(RobotModule, wxModule);

[[noreturn]] void GiveUp(const std::string& what, const std::string& screen) {
  std::printf("The walk waited in vain for: %s\nOn the screen:\n%s\n", what.c_str(),
              screen.c_str());
  std::fflush(nullptr);
  std::_Exit(1);
}

}  // namespace

void Play(const std::function<void()>& program, const std::function<void()>& script) {
  std::thread user([&script] {
    script();
    AwaitEnd();
  });
  program();
  TheMeeting().End();
  user.join();
}

void OnWindows(const std::function<void()>& work) {
  switch (TheMeeting().Do(work)) {
    case Meeting::Outcome::kDone:
      return;
    case Meeting::Outcome::kEnded:
      GiveUp("the windows' thread", "nothing: the program has ended");
    case Meeting::Outcome::kNobodyCame:
      GiveUp("the windows' thread", "unknown: it handles no events");
  }
}

void Await(const std::string& what, const std::function<bool()>& there) {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (!Ask<bool>(there)) {
    if (std::chrono::steady_clock::now() > end) GiveUp(what, Ask<std::string>(Everything));
    std::this_thread::sleep_for(kLook);
  }
}

void AwaitEnd() {
  if (!TheMeeting().AwaitEnd(kPatience))
    GiveUp("the end of the program", Ask<std::string>(Everything));
}

}  // namespace walks
