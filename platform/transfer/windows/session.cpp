// Sessions over WinHTTP.
#include "platform/transfer/session.h"

#include <windows.h>

#include <winhttp.h>

#include <algorithm>
#include <optional>

#include "platform/text/strings.h"
#include "platform/transfer/url.h"
#include "platform/transfer/windows/exchange.h"

namespace transfer {
namespace {

constexpr DWORD kFirstRedirect = 300;
constexpr DWORD kLastRedirect = 399;

// An address in the parts that WinHTTP wants.
struct Address {
  std::wstring host;
  std::wstring object;  // path and query
  INTERNET_PORT port = 0;
  bool secure = false;

  bool IsSameServer(const Address& other) const {
    return text::EqualsNoCase(host, other.host) && port == other.port && secure == other.secure;
  }
};

std::optional<Address> AddressOf(const std::wstring& url) {
  constexpr DWORD kAsk = static_cast<DWORD>(-1);
  URL_COMPONENTS parts{};
  parts.dwStructSize = sizeof parts;
  parts.dwHostNameLength = kAsk;
  parts.dwUrlPathLength = kAsk;
  parts.dwExtraInfoLength = kAsk;
  if (!WinHttpCrackUrl(url.c_str(), static_cast<DWORD>(url.size()), 0, &parts)) return std::nullopt;
  const bool secure = parts.nScheme == INTERNET_SCHEME_HTTPS;
  if ((!secure && parts.nScheme != INTERNET_SCHEME_HTTP) || parts.dwHostNameLength == 0) {
    return std::nullopt;
  }
  std::wstring extra(parts.lpszExtraInfo, parts.dwExtraInfoLength);
  extra.resize(std::min(extra.size(), extra.find(L'#')));
  return Address{.host = std::wstring(parts.lpszHostName, parts.dwHostNameLength),
                 .object = std::wstring(parts.lpszUrlPath, parts.dwUrlPathLength) + extra,
                 .port = parts.nPort,
                 .secure = secure};
}

// All decisions are made in the caller's thread, inside Wait, Start and TakeBody; WinHTTP's threads
// only leave word of what has happened (exchange.h).
class WinHttpSession final : public Session {
 public:
  WinHttpSession()
      : session_(WinHttpOpen(nullptr, WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY, WINHTTP_NO_PROXY_NAME,
                             WINHTTP_NO_PROXY_BYPASS, WINHTTP_FLAG_ASYNC)) {}

  void Start(const Request& request) override {
    Cancel();
    asked_ = request;
    origin_ = AddressOf(request.url);
    Ask(request.url);
  }

  void Wait(std::chrono::milliseconds slice) override {
    if (!exchange_ || (state_ != State::kExecuting && state_ != State::kReceiving)) return;
    exchange_->Wait(slice);
    while (exchange_) {
      const std::optional<Event> event = exchange_->NextEvent();
      if (!event) return;
      Handle(*event);
    }
  }

  State state() const override { return state_; }

  int StatusCode() const override { return responded_ ? static_cast<int>(exchange_->Status()) : 0; }

  std::wstring Header(const std::wstring& name) const override {
    return responded_ ? exchange_->Header(name) : std::wstring();
  }

  void TakeBody(std::string& buffer) override {
    buffer += received_;
    received_.clear();
    if (paused_) AskForData();
  }

  void Cancel() override {
    exchange_.reset();
    received_.clear();
    paused_ = false;
    responded_ = false;
    redirects_ = 0;
    state_ = State::kIdle;
  }

 private:
  void Ask(const std::wstring& url) {
    state_ = State::kExecuting;
    url_ = url;
    const std::optional<Address> address = AddressOf(url);
    // Never from a protected connection to one that anybody can read.
    if (!session_ || !address || (origin_->secure && !address->secure)) return Fail();
    const bool own = address->IsSameServer(*origin_);
    exchange_ = std::make_unique<Exchange>(session_.get(),
                                           Exchange::Target{.host = address->host,
                                                            .object = address->object,
                                                            .port = address->port,
                                                            .secure = address->secure,
                                                            .use_proxy = !IsLoopback(url),
                                                            .connect_limit = asked_.connect_limit});
    if (!exchange_->Send(own ? BasicAuthorization(asked_.user_name, asked_.password) : L"")) Fail();
  }

  void Handle(const Event& event) {
    switch (event.kind) {
      case Event::Kind::kSent:
        if (!exchange_->ReceiveResponse()) Fail();
        break;
      case Event::Kind::kHeaders:
        TakeHeaders();
        break;
      case Event::Kind::kAvailable:
        if (event.size == 0) {
          state_ = IsWhole() ? State::kComplete : State::kFailed;
        } else if (!exchange_->Read(event.size)) {
          Fail();
        }
        break;
      case Event::Kind::kRead:
        TakeData(event.size);
        break;
      case Event::Kind::kError:
        Fail();
        break;
    }
  }

  void TakeHeaders() {
    const DWORD status = exchange_->Status();
    const std::wstring location = exchange_->Header(L"Location");
    if (status >= kFirstRedirect && status <= kLastRedirect && !location.empty()) {
      if (++redirects_ > kMostRedirects) return Fail();
      return Ask(ResolveRedirect(url_, location));
    }
    responded_ = true;
    state_ = State::kReceiving;
    taken_ = 0;
    AskForData();
  }

  void AskForData() {
    paused_ = received_.size() >= kMostBuffered;
    if (!paused_ && !exchange_->AskForData()) Fail();
  }

  // What lies behind the length is none of the body's.
  void TakeData(std::size_t size) {
    const std::optional<std::uint64_t> length = exchange_->Length();
    const std::uint64_t wanted = length ? std::min<std::uint64_t>(size, *length - taken_) : size;
    received_ += exchange_->Data(static_cast<std::size_t>(wanted));
    taken_ += wanted;
    if (length && taken_ == *length) {
      state_ = State::kComplete;
    } else {
      AskForData();
    }
  }

  // A connection that ends early may look like the end of the body.
  bool IsWhole() const {
    const std::optional<std::uint64_t> length = exchange_->Length();
    return !length || taken_ == *length;
  }

  void Fail() { state_ = State::kFailed; }

  InternetHandle session_;  // outlives the exchanges
  std::unique_ptr<Exchange> exchange_;
  Request asked_;
  std::optional<Address> origin_;  // of the first request, the only server to get the password
  std::wstring url_;               // of the request in hand
  int redirects_ = 0;
  State state_ = State::kIdle;
  bool responded_ = false;   // the headers of the last response are in
  bool paused_ = false;      // no more is asked for until what came has been taken
  std::uint64_t taken_ = 0;  // bytes of the body so far
  std::string received_;
};

}  // namespace

std::unique_ptr<Session> MakeSession() { return std::make_unique<WinHttpSession>(); }

}  // namespace transfer
