// The end of the user's session: log-off, or the shutdown of the machine.
#pragma once

#include <functional>
#include <memory>

namespace wx_windows {

// Hears while it lives that the session ends. Whether it may is never this program's decision:
// another one may still refuse, and a question or a message that nobody answers must not.
//
// The system may kill the program as soon as its windows know of the end; this one holds that back,
// for some seconds, until the program has left its work and destroys the object.
class SessionEnd {
 public:
  // `ends` is called on this thread when the session really ends, maybe from inside DoEvents and
  // maybe more than once. The toolkit must have started, and must outlive this.
  explicit SessionEnd(const std::function<void()>& ends);
  ~SessionEnd();
  SessionEnd(const SessionEnd&) = delete;
  SessionEnd& operator=(const SessionEnd&) = delete;

 private:
  class Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace wx_windows
