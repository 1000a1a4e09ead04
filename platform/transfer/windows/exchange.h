// One request and its response through WinHTTP, which works in threads of its own.
#pragma once

#include <windows.h>

#include <winhttp.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace transfer {

struct InternetHandleEnd {
  void operator()(HINTERNET handle) const { WinHttpCloseHandle(handle); }
};
using InternetHandle = std::unique_ptr<std::remove_pointer_t<HINTERNET>, InternetHandleEnd>;

// What WinHTTP leaves word of.
struct Event {
  enum class Kind {
    kSent,       // the request
    kHeaders,    // are in
    kAvailable,  // `size` bytes of the body wait; none at its end
    kRead,       // `size` bytes have been read
    kError,
  };
  Kind kind;
  std::size_t size = 0;
};

// The operations begin something and return at once; false when it could not even begin. Each ends
// in one Event; at most one may be under way. Dropping the object ends the request, whatever is
// under way.
class Exchange {
 public:
  struct Target {
    std::wstring host;
    std::wstring object;
    INTERNET_PORT port = 0;
    bool secure = false;
    bool use_proxy = true;
    std::chrono::milliseconds connect_limit{};
  };

  Exchange(HINTERNET session, const Target& target);
  ~Exchange();
  Exchange(const Exchange&) = delete;
  Exchange& operator=(const Exchange&) = delete;

  bool Send(const std::wstring& headers);  // -> kSent
  bool ReceiveResponse();                  // -> kHeaders
  bool AskForData();                       // -> kAvailable
  bool Read(std::size_t size);             // -> kRead, of at most that many bytes

  // Waits until there is an event, `slice` at most; takes the oldest one.
  void Wait(std::chrono::milliseconds slice) const;
  std::optional<Event> NextEvent();

  // Once the headers are in: the status, the value of a header ("" for none), and the length of the
  // body where the headers tell it.
  DWORD Status() const;
  std::wstring Header(const std::wstring& name) const;
  std::optional<std::uint64_t> Length() const;

  // The bytes that kRead told of, until the next Read.
  std::string_view Data(std::size_t size) const;

 private:
  struct Shared;

  InternetHandle connection_;
  std::shared_ptr<Shared> shared_;  // with WinHTTP's threads, until the request's handle has ended
  InternetHandle request_;
};

// The header line that logs in with Basic authentication; empty without a user's name.
std::wstring BasicAuthorization(const std::wstring& user_name, const std::wstring& password);

}  // namespace transfer
