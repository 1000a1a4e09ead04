// Responses that break rules which not every system's library enforces.
#include <gtest/gtest.h>

#include "platform/transfer/transfer.h"
#include "tests/support/scripted_server.h"

namespace {

TEST(BrokenRulesTest, ResponsesThatAreNotTaken) {
  std::string headers;
  while (headers.size() < 280'000) headers += "Never: done\r\n";
  for (const std::string& response :
       {"HTTP/1.1 200 OK\r\n" + headers + "\r\ntext",
        std::string("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\ntext\r\n")}) {
    const test_support::ScriptedServer server(
        [&](auto& peer, const std::string&) { peer.Send(response); });
    transfer::Transfer transfer;
    transfer.Url = server.Address();
    EXPECT_EQ(transfer.OpenUrl(1000, [] {}).body, "") << response.substr(0, 50);
  }
}

}  // namespace
