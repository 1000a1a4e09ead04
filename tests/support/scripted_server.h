// An HTTP server on the loopback address that does byte for byte what a test tells it.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/support/socket.h"

namespace test_support {

// Answers every request, each on its connection and in its thread, and closes the connection. The
// destructor ends all of them.
class ScriptedServer {
 public:
  // One connection, seen from the server.
  class Peer {
   public:
    Peer(Socket socket, const std::atomic<bool>& ending)
        : socket_(std::move(socket)), ending_(ending) {}

    bool Send(std::string_view bytes) const { return socket_.Send(bytes); }
    // Breaks the connection.
    void Reset() { socket_.Reset(); }
    // Says nothing until the other side ends the connection or the server ends.
    void StaySilent() const;
    // Says nothing for a while; false when the server ends meanwhile.
    bool Pause(std::chrono::milliseconds time) const;

   private:
    Socket socket_;
    const std::atomic<bool>& ending_;
  };
  // `head` is the request up to and with its empty line.
  using Answer = std::function<void(Peer& peer, const std::string& head)>;

  explicit ScriptedServer(Answer answer);
  ~ScriptedServer();
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;

  // "http://127.0.0.1:PORT", also under the machine's other name.
  std::wstring Address(const std::wstring& host = L"127.0.0.1") const;

  // The heads of all requests so far, in the order in which they came.
  std::vector<std::string> Requests() const;

 private:
  void Run();
  void Serve(Socket socket);

  Answer answer_;
  Socket listening_ = Socket::Listen();
  std::atomic<bool> ending_ = false;
  mutable std::mutex mutex_;
  std::vector<std::string> requests_;
  std::vector<std::thread> connections_;  // of Run's thread, until it has ended
  std::thread thread_;
};

// The path that a request's head asks for.
std::string PathOf(const std::string& head);

// A whole response: its head with the length, and its body.
std::string Response(std::string_view body, std::string_view status = "200 OK");
// The head alone, with this Content-Length ("" for none), which need not be true.
std::string Head(std::string_view length, std::string_view status = "200 OK");
// A redirect.
std::string Redirect(std::string_view location);

}  // namespace test_support
