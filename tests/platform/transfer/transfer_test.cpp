// Requests that succeed: bodies in chunks, authentication, redirects.
#include "platform/transfer/transfer.h"

#include <gmock/gmock.h>

#include "tests/support/scripted_server.h"

namespace {

using test_support::Head;
using test_support::PathOf;
using test_support::Redirect;
using test_support::Response;
using test_support::ScriptedServer;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr std::size_t kMost = 1 << 24;

// "user:word" as Basic authentication sends it.
constexpr char kCredentials[] = "Authorization: Basic dXNlcjp3b3Jk\r\n";

transfer::Transfer::Response Fetch(const std::wstring& url) {
  transfer::Transfer transfer;
  transfer.Url = url;
  transfer.UserName = L"user";
  transfer.Password = L"word";
  return transfer.OpenUrl(kMost, [] {});
}

void WaitForHeaders(transfer::Transfer& transfer) {
  transfer.Execute();
  while (transfer.StillExecuting()) {
  }
}

std::string NextChunk(transfer::Transfer& transfer, std::size_t size) {
  while (!transfer.ChunkReady(size)) {
  }
  return std::string(transfer.GetChunk(size));
}

TEST(TransferTest, GivesTheBodyInChunks) {
  const std::string body(300, 'x');
  const ScriptedServer server([&](auto& peer, const std::string&) {
    peer.Send(Head("300"));
    peer.Pause(std::chrono::milliseconds(50));
    peer.Send(body.substr(0, 10));
    peer.Pause(std::chrono::milliseconds(50));
    peer.Send(body.substr(10));
  });
  transfer::Transfer transfer;
  transfer.Url = server.Address();
  WaitForHeaders(transfer);
  EXPECT_EQ(transfer.StatusCode(), 200);
  EXPECT_EQ(transfer.GetHeader(L"content-LENGTH"), L"300");
  EXPECT_EQ(transfer.GetHeader(L"Content-Type"), L"");
  EXPECT_EQ(NextChunk(transfer, 256).size(), 256U);
  EXPECT_EQ(NextChunk(transfer, 256).size(), 44U);
  EXPECT_EQ(NextChunk(transfer, 256), "");
  EXPECT_TRUE(transfer.Complete());
  transfer.Cancel();
  EXPECT_EQ(transfer.GetHeader(L"Content-Length"), L"");
  EXPECT_EQ(transfer.StatusCode(), 0);
}

// More than is ever buffered, with every byte at its place, to a reader slower than the server.
TEST(TransferTest, ALargeBodyArrivesWhole) {
  std::string body;
  for (int i = 0; body.size() < 12'000'000; ++i) body += std::to_string(i);
  const ScriptedServer server([&](auto& peer, const std::string&) { peer.Send(Response(body)); });
  transfer::Transfer transfer;
  transfer.Url = server.Address();
  WaitForHeaders(transfer);
  std::string received;
  for (int i = 0; i < 10; ++i) {
    received += NextChunk(transfer, 1000);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  for (std::string chunk = NextChunk(transfer, 256); !chunk.empty();
       chunk = NextChunk(transfer, 256))
    received += chunk;
  EXPECT_TRUE(received == body);
  EXPECT_TRUE(transfer.Complete());
}

TEST(TransferTest, ARequestCancelsTheOneBefore) {
  const ScriptedServer server(
      [](auto& peer, const std::string& head) { peer.Send(Response(PathOf(head))); });
  transfer::Transfer transfer;
  transfer.Url = server.Address() + L"/1";
  WaitForHeaders(transfer);
  transfer.Url = server.Address() + L"/2";
  EXPECT_EQ(transfer.OpenUrl(kMost, [] {}).body, "/2");
}

TEST(TransferTest, SendsPathAndCredentialsAlsoAfterARedirectOnTheSameServer) {
  const ScriptedServer server([](auto& peer, const std::string& head) {
    peer.Send(PathOf(head) == "/orders/a%20b.txt" ? Redirect("/new") : Response("moved"));
  });
  const auto response = Fetch(server.Address() + L"/orders/a%20b.txt");
  EXPECT_EQ(response.status, 200);
  EXPECT_EQ(response.body, "moved");
  EXPECT_THAT(server.Requests(),
              testing::ElementsAre(
                  AllOf(StartsWith("GET /orders/a%20b.txt HTTP/1.1\r\n"), HasSubstr(kCredentials)),
                  AllOf(StartsWith("GET /new "), HasSubstr(kCredentials))));
}

// The password is for one server: neither another host nor another port of the same host gets it.
TEST(TransferTest, KeepsCredentialsFromOtherServers) {
  const ScriptedServer other([](auto& peer, const std::string&) { peer.Send(Response("there")); });
  for (const wchar_t* host : {L"localhost", L"127.0.0.1"}) {
    const std::wstring target = other.Address(host) + L"/new";
    const ScriptedServer server([&](auto& peer, const std::string&) {
      peer.Send(Redirect(std::string(target.begin(), target.end())));
    });
    EXPECT_EQ(Fetch(server.Address()).body, "there");
    EXPECT_THAT(server.Requests().back(), HasSubstr(kCredentials));
    EXPECT_THAT(other.Requests().back(), HasSubstr("GET /new "));
    EXPECT_THAT(other.Requests().back(), Not(HasSubstr("Authorization")));
  }
}

TEST(TransferTest, ABodyWithoutLengthEndsWithTheConnection) {
  const ScriptedServer server([](auto& peer, const std::string&) { peer.Send(Head("") + "text"); });
  EXPECT_EQ(Fetch(server.Address()).body, "text");
  const ScriptedServer chunked([](auto& peer, const std::string&) {
    peer.Send(
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
        "4\r\ntext\r\n3\r\n, 2\r\n0\r\n\r\n");
  });
  EXPECT_EQ(Fetch(chunked.Address()).body, "text, 2");
}

}  // namespace
