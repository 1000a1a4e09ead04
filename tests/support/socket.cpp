// A TCP socket on the loopback address.
#include "tests/support/socket.h"

#include <array>
#include <stdexcept>
#include <utility>

#ifdef _WIN32
#include "tests/support/windows/native_socket.h"
#else
#include "tests/support/posix/native_socket.h"
#endif

namespace test_support {
namespace {

NativeSocket Native(std::intptr_t socket) { return static_cast<NativeSocket>(socket); }

}  // namespace

Socket Socket::Refuse() {
  MakeLibraryReady();
  Socket socket(static_cast<std::intptr_t>(::socket(AF_INET, kSocketType, 0)));
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
  AddressSize size = sizeof address;
  getsockname(Native(native_), reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

bool Socket::WaitForInput(std::chrono::milliseconds patience) const {
  return HasInput(Native(native_), static_cast<int>(patience.count()));
}

Socket Socket::Accept() const {
  return Socket(static_cast<std::intptr_t>(accept(Native(native_), nullptr, nullptr)));
}

std::string Socket::Receive() const {
  std::array<char, 4096> bytes{};
  const auto count = recv(Native(native_), bytes.data(), static_cast<int>(bytes.size()), 0);
  return count > 0 ? std::string(bytes.data(), static_cast<std::size_t>(count)) : std::string();
}

bool Socket::Send(std::string_view bytes) const {
  while (!bytes.empty()) {
    const auto count =
        send(Native(native_), bytes.data(), static_cast<int>(bytes.size()), kSendFlags);
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

void Socket::Close() {
  if (IsOpen()) CloseNative(Native(std::exchange(native_, kClosed)));
}

void Socket::Reset() {
  const linger none{.l_onoff = 1, .l_linger = 0};
  setsockopt(Native(native_), SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&none),
             sizeof none);
  Close();
}

}  // namespace test_support
