// Servers and networks that misbehave: every request ends, in time, and never as a success. What
// the user is told of it, and more of what can be wrong, is tested with the download page.
#include <gmock/gmock.h>

#include "platform/transfer/transfer.h"
#include "tests/support/scripted_server.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using test_support::Head;
using test_support::Redirect;
using test_support::ScriptedServer;
using testing::AllOf;
using testing::Ge;
using testing::Lt;

constexpr milliseconds kLate{25'000};  // before any of the usual limits

// What is sent again and again until the other side has had enough.
ScriptedServer::Answer Trickle(const std::string& head, const std::string& piece) {
  return [=](auto& peer, const std::string&) {
    peer.Send(head);
    while (peer.Pause(milliseconds(100)) && peer.Send(piece)) {
    }
  };
}

// The limit counts from the last byte that came; nothing may end before it is over.
TEST(TransferBadServerTest, SilentAndSlowServersAreGivenUp) {
  struct BadServer {
    const char* what;
    ScriptedServer::Answer answer;
    int status;
    char beginning;  // of the body that arrives, 0 for none
  };
  const auto fall_silent = [](const std::string& bytes) {
    return [=](auto& peer, const std::string&) {
      peer.Send(bytes);
      peer.StaySilent();
    };
  };
  const BadServer servers[] = {
      {"silent in the headers", fall_silent("HTTP/1.1 200 OK\r\nContent-Le"), 0, 0},
      {"silent in the body", fall_silent(Head("100") + "beginning"), 200, 'b'},
      {"headers without end", Trickle("HTTP/1.1 200 OK\r\n", "Never: done\r\n"), 0, 0},
  };
  constexpr milliseconds kSilence{1000};
  for (const BadServer& bad : servers) {
    SCOPED_TRACE(bad.what);
    const ScriptedServer server(bad.answer);
    transfer::Transfer transfer({.silence = kSilence});
    transfer.Url = server.Address();
    const auto start = steady_clock::now();
    transfer.Execute();
    while (transfer.StillExecuting()) {
    }
    EXPECT_EQ(transfer.StatusCode(), bad.status);
    while (!transfer.ChunkReady(256)) {
    }
    EXPECT_EQ((std::string(transfer.GetChunk(256)) + '\0')[0], bad.beginning);
    EXPECT_FALSE(transfer.Complete());
    EXPECT_THAT(steady_clock::now() - start, AllOf(Ge(kSilence), Lt(kLate)));
  }
}

// At a rate that a file may have.
TEST(TransferBadServerTest, ABodyAsAWholeHasATimeLimitAndASizeLimit) {
  const ScriptedServer slow(Trickle(Head("1000000"), std::string(2000, 'x')));
  const ScriptedServer endless([](auto& peer, const std::string&) {
    peer.Send(Head(""));
    const std::string much(100'000, 'x');
    while (peer.Send(much)) {
    }
  });
  for (const ScriptedServer* server : {&slow, &endless}) {
    transfer::Transfer transfer({.whole = milliseconds(server == &slow ? 2000 : 60'000)});
    transfer.Url = server->Address();
    const auto start = steady_clock::now();
    const auto response = transfer.OpenUrl(5'000'000, [] {});
    EXPECT_EQ(response.status, 200);
    EXPECT_EQ(response.body, "");
    EXPECT_LT(steady_clock::now() - start, kLate);
  }
}

TEST(TransferBadServerTest, AddressesThatAreNoneAndRedirectsThatLeadNowhere) {
  const auto refused = test_support::Socket::Refuse();
  const auto expect_nothing = [](const std::wstring& url) {
    transfer::Transfer transfer;
    transfer.Url = url;
    const auto response = transfer.OpenUrl(1000, [] {});
    EXPECT_EQ(response.status, 0) << url;
    EXPECT_EQ(response.body, "") << url;
  };
  expect_nothing(L"http://127.0.0.1:" + std::to_wstring(refused.Port()));
  for (const wchar_t* url : {L"", L"nonsense", L"file:///etc/hostname", L"ftp://127.0.0.1/",
                             L"http://", L"http://no-such-host.invalid/x"})
    expect_nothing(url);
  for (const char* target : {"/again", "file:///etc/hostname", "ftp://127.0.0.1/x", "http://"}) {
    SCOPED_TRACE(target);
    const ScriptedServer server(
        [target](auto& peer, const std::string&) { peer.Send(Redirect(target)); });
    expect_nothing(server.Address());
    EXPECT_LE(server.Requests().size(), 11U);
  }
}

TEST(TransferBadServerTest, APasswordThatWasRefusedIsNotTriedForEver) {
  const ScriptedServer server([](auto& peer, const std::string&) {
    peer.Send(
        "HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Basic realm=\"x\"\r\n"
        "Connection: close\r\nContent-Length: 3\r\n\r\nwhy");
  });
  transfer::Transfer transfer;
  transfer.Url = server.Address();
  transfer.UserName = L"user";
  transfer.Password = L"wrong";
  EXPECT_EQ(transfer.OpenUrl(1000, [] {}).status, 401);
  EXPECT_LE(server.Requests().size(), 2U);
}

// The program may end at any moment of a request.
TEST(TransferBadServerTest, DroppedInEveryState) {
  const ScriptedServer silent([](auto& peer, const std::string&) { peer.StaySilent(); });
  const ScriptedServer halfway(Trickle(Head("100"), "x"));
  const auto start = steady_clock::now();
  for (const std::wstring& url : {silent.Address(), halfway.Address()}) {
    for (const int rounds : {0, 1, 5}) {
      transfer::Transfer transfer;
      transfer.Url = url;
      transfer.Execute();
      for (int i = 0; i < rounds; ++i) transfer.StillExecuting();
      for (int i = 0; i < rounds; ++i) transfer.ChunkReady(256);
    }
  }
  EXPECT_LT(steady_clock::now() - start, kLate);
}

}  // namespace
