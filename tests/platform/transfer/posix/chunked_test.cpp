// A body in chunks that breaks off. Not every system's library notices.
#include <gtest/gtest.h>

#include "platform/transfer/transfer.h"
#include "tests/support/scripted_server.h"

namespace {

TEST(ChunkedTest, ABodyWithoutItsLastChunkIsNotWhole) {
  const test_support::ScriptedServer server([](auto& peer, const std::string&) {
    peer.Send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\ntext\r\n");
  });
  transfer::Transfer transfer;
  transfer.Url = server.Address();
  const auto response = transfer.OpenUrl(100, [] {});
  EXPECT_EQ(response.status, 200);
  EXPECT_EQ(response.body, "");
}

}  // namespace
