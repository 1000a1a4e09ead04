// A TCP socket on the loopback address.
#include "tests/support/socket.h"

#include <winsock2.h>

#include <array>
#include <stdexcept>
#include <utility>

namespace test_support {
namespace {

void MakeLibraryReady() {
  static const bool ready = [] {
    WSADATA data{};
    return WSAStartup(MAKEWORD(2, 2), &data) == 0;
  }();
  if (!ready) throw std::runtime_error("no sockets");
}

SOCKET Native(std::intptr_t native) { return static_cast<SOCKET>(native); }

}  // namespace

Socket Socket::Refuse() {
  MakeLibraryReady();
  Socket socket(static_cast<std::intptr_t>(::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP)));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (!socket.IsOpen() ||
      bind(Native(socket.native_), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("no port");
  }
  return socket;
}

Socket Socket::Listen() {
  Socket socket = Refuse();
  if (listen(Native(socket.native_), SOMAXCONN) != 0) throw std::runtime_error("cannot listen");
  return socket;
}

int Socket::Port() const {
  sockaddr_in address{};
  int size = sizeof address;
  getsockname(Native(native_), reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

bool Socket::WaitForInput(std::chrono::milliseconds patience) const {
  fd_set waiting{};
  waiting.fd_count = 1;
  waiting.fd_array[0] = Native(native_);
  timeval limit{.tv_sec = static_cast<long>(patience.count() / 1000),
                .tv_usec = static_cast<long>(patience.count() % 1000 * 1000)};
  return select(0, &waiting, nullptr, nullptr, &limit) > 0;
}

Socket Socket::Accept() const {
  return Socket(static_cast<std::intptr_t>(accept(Native(native_), nullptr, nullptr)));
}

std::string Socket::Receive() const {
  std::array<char, 4096> bytes{};
  const int count = recv(Native(native_), bytes.data(), static_cast<int>(bytes.size()), 0);
  return count > 0 ? std::string(bytes.data(), static_cast<std::size_t>(count)) : std::string();
}

bool Socket::Send(std::string_view bytes) const {
  while (!bytes.empty()) {
    const int count = send(Native(native_), bytes.data(), static_cast<int>(bytes.size()), 0);
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

void Socket::Close() {
  if (IsOpen()) closesocket(Native(std::exchange(native_, kClosed)));
}

void Socket::Reset() {
  const linger none{.l_onoff = 1, .l_linger = 0};
  setsockopt(Native(native_), SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&none),
             sizeof none);
  Close();
}

}  // namespace test_support
