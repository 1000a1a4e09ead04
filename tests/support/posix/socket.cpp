// A TCP socket on the loopback address.
#include "tests/support/socket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <utility>

namespace test_support {
namespace {

sockaddr_in Loopback() {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

}  // namespace

Socket Socket::Refuse() {
  Socket socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address = Loopback();
  const int native = static_cast<int>(socket.native_);
  if (native < 0 || bind(native, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("no port");
  }
  return socket;
}

Socket Socket::Listen() {
  Socket socket = Refuse();
  if (listen(static_cast<int>(socket.native_), SOMAXCONN) != 0)
    throw std::runtime_error("cannot listen");
  return socket;
}

int Socket::Port() const {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  getsockname(static_cast<int>(native_), reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

bool Socket::WaitForInput(std::chrono::milliseconds patience) const {
  pollfd waiting{.fd = static_cast<int>(native_), .events = POLLIN, .revents = 0};
  return poll(&waiting, 1, static_cast<int>(patience.count())) > 0;
}

Socket Socket::Accept() const {
  return Socket(accept(static_cast<int>(native_), nullptr, nullptr));
}

std::string Socket::Receive() const {
  std::array<char, 4096> bytes{};
  const auto count = recv(static_cast<int>(native_), bytes.data(), bytes.size(), 0);
  return count > 0 ? std::string(bytes.data(), static_cast<std::size_t>(count)) : std::string();
}

bool Socket::Send(std::string_view bytes) const {
  while (!bytes.empty()) {
    const auto count = send(static_cast<int>(native_), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

void Socket::Close() {
  if (IsOpen()) close(static_cast<int>(std::exchange(native_, kClosed)));
}

void Socket::Reset() {
  const linger none{.l_onoff = 1, .l_linger = 0};
  setsockopt(static_cast<int>(native_), SOL_SOCKET, SO_LINGER, &none, sizeof none);
  Close();
}

}  // namespace test_support
