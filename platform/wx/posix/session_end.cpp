// The end of the user's session: the display goes away, and nobody is told before.
#include "platform/wx/session_end.h"

namespace wx_windows {

class SessionEnd::Parts {};

SessionEnd::SessionEnd(const std::function<void()>&) {}
SessionEnd::~SessionEnd() = default;

}  // namespace wx_windows
