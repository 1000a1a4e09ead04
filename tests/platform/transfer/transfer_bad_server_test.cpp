// Servers and networks that misbehave: every request ends, in time, and never as a success.
#include <gmock/gmock.h>

#include "platform/transfer/transfer.h"
#include "tests/support/scripted_server.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using test_support::Head;
using test_support::Redirect;
using test_support::Response;
using test_support::ScriptedServer;
using testing::AllOf;
using testing::Ge;
using testing::Lt;

constexpr milliseconds kConnect{1000};
constexpr milliseconds kSilence{1000};
constexpr milliseconds kLate{30'000};  // far more than any of these may take

struct Outcome {
  int status = 0;
  std::string body;  // as far as it came
  bool complete = false;
  bool headers_first = false;  // the headers were in before the body was waited for
  steady_clock::duration time{};
};

Outcome OutcomeOf(const std::wstring& url) {
  transfer::Transfer transfer({.connect = kConnect, .silence = kSilence});
  transfer.Url = url;
  const auto start = steady_clock::now();
  transfer.Execute();
  while (transfer.StillExecuting()) {
  }
  Outcome outcome;
  outcome.status = transfer.StatusCode();
  outcome.headers_first = outcome.status != 0 && !transfer.Complete();
  do {
    while (!transfer.ChunkReady(256)) {
    }
    const std::string_view chunk = transfer.GetChunk(256);
    if (chunk.empty()) break;
    outcome.body += chunk;
  } while (true);
  outcome.complete = transfer.Complete();
  outcome.time = steady_clock::now() - start;
  return outcome;
}

TEST(TransferBadServerTest, NobodyListens) {
  std::wstring address;
  {
    const ScriptedServer server([](auto&, const std::string&) {});
    address = server.Address();
  }
  const Outcome refused = OutcomeOf(address);
  EXPECT_EQ(refused.status, 0);
  EXPECT_FALSE(refused.complete);
  EXPECT_LT(refused.time, kLate);
}

TEST(TransferBadServerTest, AddressesThatAreNone) {
  for (const wchar_t* url : {L"", L"nonsense", L"file:///etc/hostname", L"ftp://127.0.0.1/",
                             L"http://", L"http://no-such-host.invalid/x"}) {
    const Outcome outcome = OutcomeOf(url);
    EXPECT_EQ(outcome.status, 0) << url;
    EXPECT_EQ(outcome.body, "") << url;
    EXPECT_FALSE(outcome.complete) << url;
  }
}

struct BadServer {
  const char* what;
  ScriptedServer::Answer answer;
  int status;
  const char* body;  // what of it arrives
};

// The limits count from the last byte that came; nothing may end before they are over.
TEST(TransferBadServerTest, SilentAndSlowServersAreGivenUp) {
  const BadServer servers[] = {
      {"silent", [](auto& peer, const std::string&) { peer.StaySilent(); }, 0, ""},
      {"silent in the headers",
       [](auto& peer, const std::string&) {
         peer.Send("HTTP/1.1 200 OK\r\nContent-Le");
         peer.StaySilent();
       },
       0, ""},
      {"silent after the headers",
       [](auto& peer, const std::string&) {
         peer.Send(Head("100"));
         peer.StaySilent();
       },
       200, ""},
      {"silent in the body",
       [](auto& peer, const std::string&) {
         peer.Send(Head("100") + "beginning");
         peer.StaySilent();
       },
       200, "beginning"},
  };
  for (const BadServer& bad : servers) {
    SCOPED_TRACE(bad.what);
    const ScriptedServer server(bad.answer);
    const Outcome outcome = OutcomeOf(server.Address());
    EXPECT_EQ(outcome.status, bad.status);
    EXPECT_EQ(outcome.body, bad.body);
    EXPECT_FALSE(outcome.complete);
    EXPECT_THAT(outcome.time, AllOf(Ge(kSilence), Lt(kLate)));
  }
}

// Never silent for as long as the limit, and yet never done.
TEST(TransferBadServerTest, LessThanAByteASecondIsSilence) {
  const ScriptedServer server([](auto& peer, const std::string&) {
    peer.Send(Head("1000"));
    while (peer.Pause(milliseconds(1300)) && peer.Send("x")) {
    }
  });
  transfer::Transfer transfer({.connect = kConnect, .silence = milliseconds(4000)});
  transfer.Url = server.Address();
  const auto start = steady_clock::now();
  EXPECT_EQ(transfer.OpenUrl(1000, [] {}).body, "");
  EXPECT_THAT(steady_clock::now() - start, AllOf(Ge(milliseconds(3900)), Lt(kLate)));
}

TEST(TransferBadServerTest, BrokenResponses) {
  const BadServer servers[] = {
      {"reset at once", [](auto& peer, const std::string&) { peer.Reset(); }, 0, ""},
      {"closed at once", [](auto&, const std::string&) {}, 0, ""},
      {"no HTTP",
       [](auto& peer, const std::string&) { peer.Send("220 mail server ready\r\n\r\n"); }, 0, ""},
      {"shorter than its length",
       [](auto& peer, const std::string&) { peer.Send(Head("100") + "short"); }, 200, "short"},
  };
  for (const BadServer& bad : servers) {
    SCOPED_TRACE(bad.what);
    const ScriptedServer server(bad.answer);
    const Outcome outcome = OutcomeOf(server.Address());
    EXPECT_EQ(outcome.status, bad.status);
    EXPECT_EQ(outcome.body, bad.body);
    EXPECT_FALSE(outcome.complete);
    EXPECT_LT(outcome.time, kLate);
  }
}

TEST(TransferBadServerTest, ResetHalfWay) {
  const ScriptedServer server([](auto& peer, const std::string&) {
    peer.Send(Head("200000") + std::string(50'000, 'x'));
    peer.Pause(milliseconds(200));  // a reset may overtake what was sent just before
    peer.Reset();
  });
  const Outcome outcome = OutcomeOf(server.Address());
  EXPECT_EQ(outcome.status, 200);
  EXPECT_TRUE(outcome.headers_first);
  EXPECT_FALSE(outcome.complete);
  EXPECT_LT(outcome.time, kLate);
}

// What lies behind the length is none of the response's.
TEST(TransferBadServerTest, LongerThanItsLength) {
  const ScriptedServer server(
      [](auto& peer, const std::string&) { peer.Send(Head("4") + "text and more"); });
  const Outcome outcome = OutcomeOf(server.Address());
  EXPECT_EQ(outcome.body, "text");
  EXPECT_TRUE(outcome.complete);
}

TEST(TransferBadServerTest, ErrorStatusesAreTold) {
  for (const int status : {401, 403, 404, 500}) {
    const ScriptedServer server([status](auto& peer, const std::string&) {
      peer.Send(Response("why", std::to_string(status) + " Reason"));
    });
    const Outcome outcome = OutcomeOf(server.Address());
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.body, "why");
  }
  // One that wants another kind of login than ours.
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
  EXPECT_LE(server.Requests().size(), 2U) << "a password that was refused is not tried for ever";
}

TEST(TransferBadServerTest, RedirectsThatLeadNowhere) {
  for (const char* target : {"/again", "file:///etc/hostname", "ftp://127.0.0.1/x", "http://"}) {
    SCOPED_TRACE(target);
    const ScriptedServer server(
        [target](auto& peer, const std::string&) { peer.Send(Redirect(target)); });
    const Outcome outcome = OutcomeOf(server.Address());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.body, "");
    EXPECT_FALSE(outcome.complete);
    EXPECT_LE(server.Requests().size(), 11U);
  }
}

TEST(TransferBadServerTest, ABodyWithoutEndIsCutOff) {
  const ScriptedServer server([](auto& peer, const std::string&) {
    peer.Send(Head(""));
    const std::string much(100'000, 'x');
    while (peer.Send(much)) {
    }
  });
  transfer::Transfer transfer;
  transfer.Url = server.Address();
  const auto response = transfer.OpenUrl(5'000'000, [] {});
  EXPECT_EQ(response.status, 200);
  EXPECT_EQ(response.body, "");
}

// The program may end at any moment of a request.
TEST(TransferBadServerTest, DroppedInEveryState) {
  const ScriptedServer silent([](auto& peer, const std::string&) { peer.StaySilent(); });
  const ScriptedServer halfway([](auto& peer, const std::string&) {
    peer.Send(Head("100") + "x");
    peer.StaySilent();
  });
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
