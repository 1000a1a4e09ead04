// A TCP socket on the loopback address, for a server that does what no decent server does.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace test_support {

// Closed with the object.
class Socket {
 public:
  // Keeps a port that the system chooses: Listen takes connections there, Refuse takes none. Both
  // throw std::runtime_error when that fails.
  static Socket Listen();
  static Socket Refuse();
  Socket() = default;
  Socket(Socket&& other) noexcept : native_(std::exchange(other.native_, kClosed)) {}
  Socket& operator=(Socket&& other) noexcept {
    std::swap(native_, other.native_);
    return *this;
  }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;
  ~Socket() { Close(); }

  bool IsOpen() const { return native_ != kClosed; }
  int Port() const;

  // Waits up to `patience` for something to accept or to receive; false when nothing came.
  bool WaitForInput(std::chrono::milliseconds patience) const;
  Socket Accept() const;
  // What has come; empty when the other side has ended.
  std::string Receive() const;
  // Everything, as far as the other side takes it; false when it does not any more.
  bool Send(std::string_view bytes) const;

  void Close();
  // Closes without the usual farewell: the other side sees the connection break.
  void Reset();

 private:
  static constexpr std::intptr_t kClosed = -1;
  explicit Socket(std::intptr_t native) : native_(native) {}

  std::intptr_t native_ = kClosed;
};

}  // namespace test_support
