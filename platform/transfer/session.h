// What a system's HTTP library does for Transfer: one request at a time.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>

namespace transfer {

// The body bytes that a session holds at most, so that a slow reader costs no memory.
inline constexpr std::size_t kMostBuffered = 1 << 20;

// Redirects followed for one request.
inline constexpr int kMostRedirects = 10;

enum class State {
  kIdle,       // nothing was asked
  kExecuting,  // until the headers of the last response are in
  kReceiving,  // the body
  kComplete,   // the body has been received as a whole
  kFailed,     // no response, or one that broke off
};

// Implemented in posix/ and windows/. Rules of redirects, authentication, certificates and proxies:
// see Transfer. Connections may be kept for the next request. One thread.
class Session {
 public:
  struct Request {
    std::wstring url;
    std::wstring user_name;
    std::wstring password;
    std::chrono::milliseconds connect_limit;
  };

  virtual ~Session() = default;

  // Begins a request, in place of an earlier one. What is wrong with it shows as kFailed.
  virtual void Start(const Request& request) = 0;

  // Waits up to `slice`, less when something happens.
  virtual void Wait(std::chrono::milliseconds slice) = 0;

  virtual State state() const = 0;

  // Of the last response; 0 and empty before its headers are in, also when there never were any.
  virtual int StatusCode() const = 0;
  virtual std::wstring Header(const std::wstring& name) const = 0;

  // Adds to the end of `buffer` what has been received since the last call.
  virtual void TakeBody(std::string& buffer) = 0;

  // Ends the request; the state is kIdle then.
  virtual void Cancel() = 0;
};

std::unique_ptr<Session> MakeSession();

}  // namespace transfer
