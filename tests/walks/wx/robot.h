// Runs a program with windows and, beside it, a script that uses them as a user would.
#pragma once

#include <functional>
#include <string>

namespace walks {

// The script's thread and the windows' meet in these calls alone. A script that waits in vain ends
// the process with status 1, after telling what it waited for and what stood on the screen: a
// program that hangs cannot be ended otherwise.

// Runs `program`, which shows windows, on this thread, and `script` on another; returns when both
// have ended. Once for a process.
void Play(const std::function<void()>& program, const std::function<void()>& script);

// What follows is for the script.

// Runs `work` on the windows' thread when its event loop comes to timers, be it that of a message
// box or of DoEvents in the middle of the program's work, and waits for it. It must not wait
// itself. An exception that it throws is thrown here.
void OnWindows(const std::function<void()>& work);
template <class Result>
Result Ask(const std::function<Result()>& question) {
  Result answer{};
  OnWindows([&] { answer = question(); });
  return answer;
}

// Waits until `there`, called on the windows' thread again and again, is true.
void Await(const std::string& what, const std::function<bool()>& there);
// Waits until the program has ended.
void AwaitEnd();

}  // namespace walks
