// Runs a program with windows and, beside it, a script that uses them as a user would.
#include "tests/walks/wx/robot.h"

#include <wx/module.h>
#include <wx/timer.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <exception>
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
    std::unique_lock lock(mutex_);
    work_ = &work;
    changed_.wait_for(lock, kPatience, [this] { return work_ == nullptr || ended_; });
    const bool done = std::exchange(work_, nullptr) == nullptr;
    if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
    if (done) return Outcome::kDone;
    return ended_ ? Outcome::kEnded : Outcome::kNobodyCame;
  }

  // On the windows' thread. Comes again in the middle of work that handles events.
  void Serve() {
    std::unique_lock lock(mutex_);
    if (work_ == nullptr || serving_) return;
    serving_ = true;
    const std::function<void()>& work = *work_;
    lock.unlock();
    std::exception_ptr failure;
    try {
      work();
    } catch (...) {
      failure = std::current_exception();
    }
    lock.lock();
    failure_ = failure;
    work_ = nullptr;
    serving_ = false;
    changed_.notify_all();
  }

  void End() {
    const std::lock_guard lock(mutex_);
    ended_ = true;
    changed_.notify_all();
  }

  bool AwaitEnd() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, kPatience, [this] { return ended_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  const std::function<void()>* work_ = nullptr;
  std::exception_ptr failure_;
  bool serving_ = false;
  bool ended_ = false;
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
  if (!TheMeeting().AwaitEnd()) GiveUp("the end of the program", Ask<std::string>(Everything));
}

}  // namespace walks
