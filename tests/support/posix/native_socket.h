// What sockets need on this system alone.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace test_support {

using NativeSocket = int;
using AddressSize = socklen_t;

constexpr int kSocketType = SOCK_STREAM | SOCK_CLOEXEC;
constexpr int kSendFlags = MSG_NOSIGNAL;

inline void MakeLibraryReady() {}
inline void CloseNative(NativeSocket socket) { close(socket); }
inline bool HasInput(NativeSocket socket, int milliseconds) {
  pollfd waiting{.fd = socket, .events = POLLIN, .revents = 0};
  return poll(&waiting, 1, milliseconds) > 0;
}

}  // namespace test_support
