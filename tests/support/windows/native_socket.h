// What sockets need on this system alone.
#pragma once

#include <winsock2.h>

#include <stdexcept>

namespace test_support {

using NativeSocket = SOCKET;
using AddressSize = int;

constexpr int kSocketType = SOCK_STREAM;
constexpr int kSendFlags = 0;

inline void MakeLibraryReady() {
  static const bool ready = [] {
    WSADATA data{};
    return WSAStartup(MAKEWORD(2, 2), &data) == 0;
  }();
  if (!ready) throw std::runtime_error("no sockets");
}
inline void CloseNative(NativeSocket socket) { closesocket(socket); }
inline bool HasInput(NativeSocket socket, int milliseconds) {
  fd_set waiting{};
  waiting.fd_count = 1;
  waiting.fd_array[0] = socket;
  timeval limit{.tv_sec = milliseconds / 1000, .tv_usec = milliseconds % 1000 * 1000};
  return select(0, &waiting, nullptr, nullptr, &limit) > 0;
}

}  // namespace test_support
