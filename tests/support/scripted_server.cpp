// An HTTP server on the loopback address that does byte for byte what a test tells it.
#include "tests/support/scripted_server.h"

#include <utility>

namespace test_support {
namespace {

constexpr std::chrono::milliseconds kSlice{10};

}  // namespace

void ScriptedServer::Peer::StaySilent() const {
  while (!ending_) {
    if (socket_.WaitForInput(kSlice) && socket_.Receive().empty()) return;
  }
}

bool ScriptedServer::Peer::Pause(std::chrono::milliseconds time) const {
  const auto end = std::chrono::steady_clock::now() + time;
  while (!ending_ && std::chrono::steady_clock::now() < end) std::this_thread::sleep_for(kSlice);
  return !ending_;
}

ScriptedServer::ScriptedServer(Answer answer) : answer_(std::move(answer)) {
  thread_ = std::thread([this] { Run(); });
}

ScriptedServer::~ScriptedServer() {
  ending_ = true;
  thread_.join();
  for (std::thread& connection : connections_) connection.join();
}

std::wstring ScriptedServer::Address(const std::wstring& host) const {
  return L"http://" + host + L":" + std::to_wstring(listening_.Port());
}

std::vector<std::string> ScriptedServer::Requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

void ScriptedServer::Run() {
  while (!ending_) {
    if (!listening_.WaitForInput(kSlice)) continue;
    Socket accepted = listening_.Accept();
    if (!accepted.IsOpen()) continue;
    connections_.emplace_back(
        [this, socket = std::move(accepted)]() mutable { Serve(std::move(socket)); });
  }
}

void ScriptedServer::Serve(Socket socket) {
  std::string head;
  while (!head.ends_with("\r\n\r\n")) {
    if (ending_) return;
    if (!socket.WaitForInput(kSlice)) continue;
    const std::string received = socket.Receive();
    if (received.empty()) return;
    head += received;
  }
  {
    const std::lock_guard lock(mutex_);
    requests_.push_back(head);
  }
  Peer peer(std::move(socket), ending_);
  answer_(peer, head);
}

std::string PathOf(const std::string& head) {
  const std::size_t begin = head.find(' ') + 1;
  return head.substr(begin, head.find(' ', begin) - begin);
}

std::string Head(std::string_view length, std::string_view status) {
  std::string head = "HTTP/1.1 " + std::string(status) + "\r\nConnection: close\r\n";
  if (!length.empty()) head += "Content-Length: " + std::string(length) + "\r\n";
  return head + "\r\n";
}

std::string Response(std::string_view body, std::string_view status) {
  return Head(std::to_string(body.size()), status) + std::string(body);
}

std::string Redirect(std::string_view location) {
  return "HTTP/1.1 302 Found\r\nConnection: close\r\nContent-Length: 0\r\nLocation: " +
         std::string(location) + "\r\n\r\n";
}

}  // namespace test_support
