// One request and its response through WinHTTP, which works in threads of its own.
#include "platform/transfer/windows/exchange.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <vector>

#include "platform/text/code_page.h"
#include "platform/text/strings.h"

namespace transfer {
namespace {

constexpr std::size_t kReceiveSize = 256 * 1024;  // bytes asked of the system at once

// Long after anybody still waits: it only keeps the system from holding a dead connection for ever.
constexpr int kSystemPatience = 120'000;  // ms

std::string Base64(std::string_view bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::string_view group = bytes.substr(at, 3);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      bits = bits << 8 | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
    }
    for (std::size_t i = 0; i < 4; ++i) {
      text += i <= group.size() ? kDigits[bits >> (18 - 6 * i) & 63U] : '=';
    }
  }
  return text;
}

}  // namespace

struct Exchange::Shared {
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<Event> events;
  std::vector<char> data = std::vector<char>(kReceiveSize);  // WinHTTP writes to it during a Read

  void Post(Event event) {
    {
      const std::lock_guard lock(mutex);
      events.push_back(event);
    }
    changed.notify_all();
  }

  // Its share of this object is the request's context: given back when its handle has ended, after
  // which WinHTTP calls no more.
  using Context = std::shared_ptr<Shared>;

  static void CALLBACK OnStatus(HINTERNET /*handle*/, DWORD_PTR context, DWORD status,
                                LPVOID information, DWORD size) {
    auto* const shared = reinterpret_cast<Context*>(context);  // NOLINT(performance-no-int-to-ptr)
    if (shared == nullptr) return;
    switch (status) {
      case WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE:
        return (*shared)->Post({.kind = Event::Kind::kSent});
      case WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE:
        return (*shared)->Post({.kind = Event::Kind::kHeaders});
      case WINHTTP_CALLBACK_STATUS_DATA_AVAILABLE:
        return (*shared)->Post(
            {.kind = Event::Kind::kAvailable, .size = *static_cast<const DWORD*>(information)});
      case WINHTTP_CALLBACK_STATUS_READ_COMPLETE:
        return (*shared)->Post({.kind = Event::Kind::kRead, .size = size});
      case WINHTTP_CALLBACK_STATUS_REQUEST_ERROR:
        return (*shared)->Post({.kind = Event::Kind::kError});
      case WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING:
        const std::unique_ptr<Context> end(shared);
        return;
    }
  }
};

Exchange::Exchange(HINTERNET session, const Target& target)
    : connection_(WinHttpConnect(session, target.host.c_str(), target.port, 0)),
      shared_(std::make_shared<Shared>()) {
  if (!connection_) return;
  request_.reset(
      WinHttpOpenRequest(connection_.get(), L"GET", target.object.c_str(), nullptr,
                         WINHTTP_NO_REFERER, WINHTTP_DEFAULT_ACCEPT_TYPES,
                         WINHTTP_FLAG_ESCAPE_DISABLE | (target.secure ? WINHTTP_FLAG_SECURE : 0U)));
  if (!request_) return;

  auto context = std::make_unique<Shared::Context>(shared_);
  Shared::Context* value = context.get();
  if (!WinHttpSetOption(request_.get(), WINHTTP_OPTION_CONTEXT_VALUE, &value, sizeof value)) {
    request_.reset();
    return;
  }
  constexpr DWORD kTold = WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_HANDLES;
  if (WinHttpSetStatusCallback(request_.get(), &Shared::OnStatus, kTold, 0) ==
      WINHTTP_INVALID_STATUS_CALLBACK) {
    request_.reset();
    return;
  }
  (void)context.release();  // OnStatus has it now

  const int connect = static_cast<int>(target.connect_limit.count());
  WinHttpSetTimeouts(request_.get(), connect, connect, kSystemPatience, kSystemPatience);
  // The session follows redirects and logs in itself: nobody gets what the user logged in to
  // Windows with.
  DWORD without =
      WINHTTP_DISABLE_REDIRECTS | WINHTTP_DISABLE_COOKIES | WINHTTP_DISABLE_AUTHENTICATION;
  DWORD log_in = WINHTTP_AUTOLOGON_SECURITY_LEVEL_HIGH;  // never by itself
  if (!WinHttpSetOption(request_.get(), WINHTTP_OPTION_DISABLE_FEATURE, &without, sizeof without) ||
      !WinHttpSetOption(request_.get(), WINHTTP_OPTION_AUTOLOGON_POLICY, &log_in, sizeof log_in)) {
    request_.reset();
    return;
  }
  if (!target.use_proxy) {
    WINHTTP_PROXY_INFO none{};
    none.dwAccessType = WINHTTP_ACCESS_TYPE_NO_PROXY;
    WinHttpSetOption(request_.get(), WINHTTP_OPTION_PROXY, &none, sizeof none);
  }
}

Exchange::~Exchange() = default;

bool Exchange::Send(const std::wstring& headers) {
  return request_ &&
         WinHttpSendRequest(
             request_.get(), headers.empty() ? WINHTTP_NO_ADDITIONAL_HEADERS : headers.c_str(),
             static_cast<DWORD>(headers.size()), WINHTTP_NO_REQUEST_DATA, 0, 0, 0) != FALSE;
}

bool Exchange::ReceiveResponse() {
  return WinHttpReceiveResponse(request_.get(), nullptr) != FALSE;
}

bool Exchange::AskForData() { return WinHttpQueryDataAvailable(request_.get(), nullptr) != FALSE; }

bool Exchange::Read(std::size_t size) {
  const auto most = static_cast<DWORD>(std::min(size, shared_->data.size()));
  return WinHttpReadData(request_.get(), shared_->data.data(), most, nullptr) != FALSE;
}

void Exchange::Wait(std::chrono::milliseconds slice) const {
  std::unique_lock lock(shared_->mutex);
  shared_->changed.wait_for(lock, slice, [this] { return !shared_->events.empty(); });
}

std::optional<Event> Exchange::NextEvent() {
  const std::lock_guard lock(shared_->mutex);
  if (shared_->events.empty()) return std::nullopt;
  const Event event = shared_->events.front();
  shared_->events.pop_front();
  return event;
}

DWORD Exchange::Status() const {
  DWORD status = 0;
  DWORD size = sizeof status;
  WinHttpQueryHeaders(request_.get(), WINHTTP_QUERY_STATUS_CODE | WINHTTP_QUERY_FLAG_NUMBER,
                      WINHTTP_HEADER_NAME_BY_INDEX, &status, &size, WINHTTP_NO_HEADER_INDEX);
  return status;
}

std::wstring Exchange::Header(const std::wstring& name) const {
  DWORD size = 0;  // bytes, the final zero included
  WinHttpQueryHeaders(request_.get(), WINHTTP_QUERY_CUSTOM, name.c_str(), nullptr, &size,
                      WINHTTP_NO_HEADER_INDEX);
  std::wstring value(size / sizeof(wchar_t), L'\0');
  if (value.empty() || !WinHttpQueryHeaders(request_.get(), WINHTTP_QUERY_CUSTOM, name.c_str(),
                                            value.data(), &size, WINHTTP_NO_HEADER_INDEX)) {
    return {};
  }
  value.resize(size / sizeof(wchar_t));
  return value;
}

std::optional<std::uint64_t> Exchange::Length() const {
  const std::wstring text = Header(L"Content-Length");
  constexpr std::size_t kMostDigits = 18;
  if (text.empty() || text.size() > kMostDigits ||
      text.find_first_not_of(L"0123456789") != std::wstring::npos ||
      !Header(L"Transfer-Encoding").empty()) {  // which tells the end in another way
    return std::nullopt;
  }
  return std::stoull(text);
}

std::string_view Exchange::Data(std::size_t size) const { return {shared_->data.data(), size}; }

std::wstring BasicAuthorization(const std::wstring& user_name, const std::wstring& password) {
  if (user_name.empty()) return {};
  const std::string login = Base64(text::WideToUtf8(user_name + L":" + password));
  return L"Authorization: Basic " + std::wstring(login.begin(), login.end());
}

}  // namespace transfer
