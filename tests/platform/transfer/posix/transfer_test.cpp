// The proxy settings, which are environment variables here, and responses that break rules which
// not every system's library enforces.
#include <gmock/gmock.h>

#include <cstdlib>

#include "platform/text/code_page.h"
#include "platform/transfer/transfer.h"
#include "tests/support/scripted_server.h"

namespace {

using test_support::Response;
using test_support::ScriptedServer;

constexpr char kProxy[] = "http_proxy";

TEST(ProxyTest, IsAskedForOtherMachinesAndNotForThisOne) {
  const ScriptedServer proxy([](auto& peer, const std::string&) { peer.Send(Response("proxy")); });
  const ScriptedServer server([](auto& peer, const std::string&) { peer.Send(Response("self")); });
  setenv(kProxy, text::WideToUtf8(proxy.Address()).c_str(), 1);
  transfer::Transfer transfer;
  transfer.Url = L"http://download.example/x";
  EXPECT_EQ(transfer.OpenUrl(100, [] {}).body, "proxy");
  EXPECT_THAT(proxy.Requests().at(0), testing::HasSubstr("GET http://download.example/x HTTP/"));
  transfer.Url = server.Address();
  EXPECT_EQ(transfer.OpenUrl(100, [] {}).body, "self");
  unsetenv(kProxy);
}

TEST(BrokenRulesTest, ResponsesThatAreNotTaken) {
  std::string headers;
  while (headers.size() < 280'000) headers += "Never: done\r\n";
  for (const std::string& response :
       {"HTTP/1.1 200 OK\r\n" + headers + "\r\ntext",
        std::string("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\ntext\r\n")}) {
    const ScriptedServer server([&](auto& peer, const std::string&) { peer.Send(response); });
    transfer::Transfer transfer;
    transfer.Url = server.Address();
    EXPECT_EQ(transfer.OpenUrl(1000, [] {}).body, "") << response.substr(0, 50);
  }
}

}  // namespace
