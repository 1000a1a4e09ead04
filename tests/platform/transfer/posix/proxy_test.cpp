// The system's proxy settings, which are environment variables here.
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

}  // namespace
