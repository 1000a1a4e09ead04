// Programs that are started without standard streams, as some services start them.
#include <cstdlib>

#include "tests/tools/paptool_test.h"

namespace {

class ClosedStreamsTest : public PaptoolTest {};

// The files that are opened next get the streams' places, and messages would go into them.
TEST_F(ClosedStreamsTest, MessagesGoIntoNoFile) {
  const std::string table = MakeProductTable();
  folder.Write("bad.PRC", "[VERSION]\n3.2\n\n[NEW SERIE]\n\"S\",\"Series\",1,True,\"\"\n");
  const std::string apply = std::string(PAPTOOL_FILE) + " apply --table " + table + " --log " +
                            Path("log.txt") + " " + Path("bad.PRC") + " <&- >&- 2>&-";
  EXPECT_NE(std::system(apply.c_str()), 0);
  EXPECT_EQ(Run({"check", "--table", table}).status, 0);
}

}  // namespace
