// Fetches a file over HTTP or HTTPS while the caller goes on with other things.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/transfer/patience.h"

namespace transfer {

class Session;

// How long a server may take.
struct TimeLimits {
  std::chrono::milliseconds connect{20'000};  // until a connection stands, name look-up included
  // Until the headers are in: connections and redirects included. From then on the time over which
  // the body must come at the least rate (patience.h).
  std::chrono::milliseconds silence{30'000};
  std::chrono::milliseconds whole{300'000};  // for the body that OpenUrl fetches
};

// One GET request at a time, with Basic authentication. Nothing blocks for longer than a fraction
// of a second: the caller asks again and again, and lets its windows live in between.
//
//   Execute -> StillExecuting while true -> GetHeader -> ChunkReady, GetChunk ... -> Cancel
//
// Redirects are followed, ten at most and never from https to http; user name and password go to
// the server that `Url` names and to no other. Certificates are verified. The system's proxy
// settings apply, but for the machine itself.
//
// A failure (no server, time up, connection lost) is no exception: it shows as a request without
// headers, or as a body that ends before it is Complete. A body waits in a buffer of bounded size;
// the server waits with the rest until the caller takes it. One thread.
class Transfer {
 public:
  explicit Transfer(TimeLimits limits = {});
  ~Transfer();
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  // What the next Execute asks for. Anything but a http or https address fails there.
  std::wstring Url;
  std::wstring UserName;
  std::wstring Password;

  // Starts the request; one that is under way is cancelled.
  void Execute();

  // Whether neither the headers are in nor the request has failed. Waits a moment for news.
  bool StillExecuting();

  // The status (200 for success), and a header's value; 0 and empty where there is none. They are
  // of the last response where there were redirects.
  int StatusCode() const;
  std::wstring GetHeader(const std::wstring& name) const;

  // Whether GetChunk can give all of `size` bytes, or everything that will still come. Waits a
  // moment for news.
  bool ChunkReady(std::size_t size);

  // Takes the next bytes of the body, `size` at most and fewer where no more are there. They are
  // valid until the next call of any operation.
  std::string_view GetChunk(std::size_t size);

  // Whether the response came in as a whole, whatever of it was taken yet. A body without a length
  // is whole when the connection ends; whether one in chunks must have its last, the system's
  // library decides.
  bool Complete() const;

  // Ends the request; what was not taken of it is gone, the headers too.
  void Cancel();

  // The whole body as bytes: Execute, and everything up to Cancel, with a call of `meanwhile` at
  // every wait. Empty when the request failed, broke off, took longer than the limit for the whole,
  // or its body has more than `most` bytes.
  // `status` is the status of the response, 0 where there was none.
  struct Response {
    int status = 0;
    std::string body;
  };
  Response OpenUrl(std::size_t most, const std::function<void()>& meanwhile);

 private:
  void WaitForNews();
  void Take(Patience::Duration waited);

  TimeLimits limits_;
  std::unique_ptr<Session> session_;
  Patience patience_;
  std::string buffer_;     // received
  std::size_t taken_ = 0;  // and given out of it
};

}  // namespace transfer
