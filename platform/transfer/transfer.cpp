// Fetches a file over HTTP or HTTPS while the caller goes on with other things.
#include "platform/transfer/transfer.h"

#include <algorithm>

#include "platform/transfer/session.h"

namespace transfer {
namespace {

// Short enough for windows that live in between, long enough to keep the processor free.
constexpr std::chrono::milliseconds kSlice{20};

}  // namespace

Transfer::Transfer(TimeLimits limits) : limits_(limits), session_(MakeSession()) {}

Transfer::~Transfer() = default;

void Transfer::Execute() {
  Cancel();
  patience_.Begin(limits_.silence);
  session_->Start(
      {.url = Url, .user_name = UserName, .password = Password, .connect_limit = limits_.connect});
}

bool Transfer::StillExecuting() {
  if (session_->state() != State::kExecuting) return false;
  WaitForNews();
  if (session_->state() == State::kExecuting) return true;
  patience_.Begin(limits_.silence);
  return false;
}

int Transfer::StatusCode() const { return session_->StatusCode(); }

std::wstring Transfer::GetHeader(const std::wstring& name) const { return session_->Header(name); }

bool Transfer::ChunkReady(std::size_t size) {
  if (buffer_.size() - taken_ >= size) return true;
  buffer_.erase(0, taken_);
  taken_ = 0;
  Take({});
  if (buffer_.size() < size && session_->state() == State::kReceiving) WaitForNews();
  return buffer_.size() >= size || session_->state() != State::kReceiving;
}

std::string_view Transfer::GetChunk(std::size_t size) {
  const std::string_view chunk = std::string_view(buffer_).substr(taken_, size);
  taken_ += chunk.size();
  return chunk;
}

bool Transfer::Complete() const { return session_->state() == State::kComplete; }

void Transfer::Cancel() {
  session_->Cancel();
  buffer_.clear();
  taken_ = 0;
}

Transfer::Response Transfer::OpenUrl(std::size_t most, const std::function<void()>& meanwhile) {
  Response response;
  Execute();
  while (StillExecuting()) meanwhile();
  response.status = StatusCode();
  patience_.Begin(limits_.silence, limits_.whole);
  while (response.body.size() <= most) {
    while (!ChunkReady(kMostBuffered)) meanwhile();
    const std::string_view chunk = GetChunk(kMostBuffered);
    if (chunk.empty()) break;
    response.body += chunk;
  }
  if (!Complete() || response.body.size() > most) response.body.clear();
  Cancel();
  return response;
}

// A request that has used up the patience is cancelled: what came in before can still be taken.
void Transfer::WaitForNews() {
  const auto start = std::chrono::steady_clock::now();
  session_->Wait(kSlice);
  Take(std::chrono::steady_clock::now() - start);
  if (patience_.IsOver()) session_->Cancel();
}

void Transfer::Take(Patience::Duration waited) {
  const std::size_t before = buffer_.size();
  session_->TakeBody(buffer_);
  patience_.Waited(waited, buffer_.size() - before);
}

}  // namespace transfer
