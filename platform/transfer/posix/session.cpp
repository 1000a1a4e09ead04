// Sessions over libcurl.
#include "platform/transfer/session.h"

#include <curl/curl.h>

#include <new>
#include <string_view>

#include "platform/text/code_page.h"
#include "platform/transfer/url.h"

namespace transfer {
namespace {

constexpr long kReceiveSize = 256 * 1024;  // bytes asked of the system at once

// Of all responses to a request, in bytes: some versions of the library keep any number.
constexpr std::size_t kMostHeaders = 256 * 1024;

struct EasyEnd {
  void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
struct MultiEnd {
  void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};

// The library's own state, which it wants made before the first use in a process.
void MakeLibraryReady() {
  static const CURLcode made = curl_global_init(CURL_GLOBAL_DEFAULT);
  if (made != CURLE_OK) throw std::bad_alloc();
}

bool IsRedirect(long status) { return status >= 300 && status < 400; }

// Everything happens inside Wait and TakeBody, in the caller's thread: the library is asked to go
// on, and calls back with what came.
class CurlSession final : public Session {
 public:
  CurlSession() {
    MakeLibraryReady();
    multi_.reset(curl_multi_init());
    if (!multi_) throw std::bad_alloc();
  }
  ~CurlSession() override { Release(); }
  CurlSession(const CurlSession&) = delete;
  CurlSession& operator=(const CurlSession&) = delete;

  void Start(const Request& request) override {
    Cancel();
    easy_.reset(curl_easy_init());
    if (!easy_) throw std::bad_alloc();
    Prepare(request);
    state_ = State::kExecuting;
    if (curl_multi_add_handle(multi_.get(), easy_.get()) != CURLM_OK) {
      easy_.reset();
      state_ = State::kFailed;
      return;
    }
    Perform();
  }

  void Wait(std::chrono::milliseconds slice) override {
    if (state_ != State::kExecuting && state_ != State::kReceiving) return;
    curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(slice.count()), nullptr);
    Perform();
  }

  State state() const override { return state_; }

  int StatusCode() const override { return HeadersAreIn() ? static_cast<int>(Status()) : 0; }

  std::wstring Header(const std::wstring& name) const override {
    const curl_header* const header =
        HeadersAreIn() ? FindHeader(text::WideToUtf8(name).c_str()) : nullptr;
    return header == nullptr ? std::wstring() : text::AnsiToWide(header->value);
  }

  void TakeBody(std::string& buffer) override {
    MoveTo(buffer);
    if (!paused_) return;
    paused_ = false;
    curl_easy_pause(easy_.get(), CURLPAUSE_CONT);  // calls OnBody with what it kept
    MoveTo(buffer);
  }

  void Cancel() override {
    Release();
    state_ = State::kIdle;
  }

 private:
  template <class Value>
  void Set(CURLoption option, Value value) {
    curl_easy_setopt(easy_.get(), option, value);
  }

  void Prepare(const Request& request) {
    const std::string url = text::WideToUtf8(request.url);
    Set(CURLOPT_URL, url.c_str());
    Set(CURLOPT_PROTOCOLS_STR, "http,https");
    Set(CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_BASIC));
    Set(CURLOPT_USERNAME, text::WideToUtf8(request.user_name).c_str());
    Set(CURLOPT_PASSWORD, text::WideToUtf8(request.password).c_str());
    Set(CURLOPT_FOLLOWLOCATION, 1L);
    Set(CURLOPT_MAXREDIRS, static_cast<long>(kMostRedirects));
    Set(CURLOPT_REDIR_PROTOCOLS_STR, IsUnprotected(request.url) ? "http,https" : "https");
    Set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(request.connect_limit.count()));
    Set(CURLOPT_NOSIGNAL, 1L);
    Set(CURLOPT_QUICK_EXIT, 1L);  // nobody waits for the thread that asks a dead name server
    Set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    Set(CURLOPT_BUFFERSIZE, kReceiveSize);
    if (IsLoopback(request.url)) Set(CURLOPT_PROXY, "");
    Set(CURLOPT_HEADERFUNCTION, &CurlSession::OnHeader);
    Set(CURLOPT_HEADERDATA, this);
    Set(CURLOPT_WRITEFUNCTION, &CurlSession::OnBody);
    Set(CURLOPT_WRITEDATA, this);
  }

  void MoveTo(std::string& buffer) {
    if (buffer.empty()) {
      buffer.swap(received_);
    } else {
      buffer += received_;
    }
    received_.clear();
  }

  void Perform() {
    int running = 0;
    const CURLMcode result = curl_multi_perform(multi_.get(), &running);
    if (result != CURLM_OK) state_ = State::kFailed;
    int queued = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &queued)) {
      if (message->msg != CURLMSG_DONE) continue;
      const bool whole = message->data.result == CURLE_OK && responded_;
      state_ = whole ? State::kComplete : State::kFailed;
    }
  }

  long Status() const {
    long status = 0;
    curl_easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
    return status;
  }

  // Of the last response, redirects included; nullptr when it has none of this name.
  const curl_header* FindHeader(const char* name) const {
    constexpr int kLastResponse = -1;
    curl_header* header = nullptr;
    const CURLHcode found =
        curl_easy_header(easy_.get(), name, 0, CURLH_HEADER, kLastResponse, &header);
    return found == CURLHE_OK ? header : nullptr;
  }

  bool HeadersAreIn() const { return easy_ && responded_; }

  void Release() {
    if (easy_) curl_multi_remove_handle(multi_.get(), easy_.get());
    easy_.reset();
    received_.clear();
    headers_ = 0;
    paused_ = false;
    responded_ = false;
  }

  // Looks for the empty line after the headers of a response that is neither interim nor followed
  // elsewhere. Gives less than the line's size to end the request.
  static std::size_t OnHeader(const char* bytes, std::size_t size, std::size_t count, void* user) {
    auto& session = *static_cast<CurlSession*>(user);
    const std::string_view line(bytes, size * count);
    session.headers_ += line.size();
    if (session.headers_ > kMostHeaders) return 0;
    if (line != "\r\n" && line != "\n") return line.size();
    constexpr long kFirstFinalStatus = 200;
    const long status = session.Status();
    if (status < kFirstFinalStatus ||
        (IsRedirect(status) && session.FindHeader("Location") != nullptr)) {
      return line.size();
    }
    session.responded_ = true;
    session.state_ = State::kReceiving;
    return line.size();
  }

  static std::size_t OnBody(const char* bytes, std::size_t size, std::size_t count, void* user) {
    auto& session = *static_cast<CurlSession*>(user);
    const std::size_t length = size * count;
    if (session.received_.size() >= kMostBuffered) {
      session.paused_ = true;
      return CURL_WRITEFUNC_PAUSE;
    }
    session.received_.append(bytes, length);
    return length;
  }

  std::unique_ptr<CURLM, MultiEnd> multi_;  // outlives the request
  std::unique_ptr<CURL, EasyEnd> easy_;
  State state_ = State::kIdle;
  std::size_t headers_ = 0;  // bytes so far
  bool responded_ = false;   // the headers of the last response are in
  bool paused_ = false;      // the library keeps what did not fit
  std::string received_;
};

}  // namespace

std::unique_ptr<Session> MakeSession() { return std::make_unique<CurlSession>(); }

}  // namespace transfer
