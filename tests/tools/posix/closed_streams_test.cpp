// Standard streams that are closed from the beginning, as some services start programs, or that
// nobody reads any more.
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "tests/tools/paptool_test.h"

namespace {

class ClosedStreamsTest : public PaptoolTest {
 protected:
  // With these redirections an update that adds a supplier, and then has an assortment that is not
  // there, is applied to its end.
  void ExpectApplied(const std::string& redirections) {
    folder.Write("one.PRC", "[VERSION]\r\n3.2\r\n\r\n[NEW SUPPLIER]\r\nS1,First,1,2\r\n\r\n");
    const std::string command = "'" PAPTOOL_FILE "' apply --table '" + table_ + "' --log '" +
                                Path("log.txt") + "' '" + Path("one.PRC") + "' " + redirections;
    const int status = std::system(command.c_str());
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_THAT(test_support::ReadAll(folder / "log.txt"), testing::HasSubstr("Niet verwerkt"));
    EXPECT_THAT(Run({"tables", "--table", table_}).out, testing::HasSubstr("Supplier\t1\n"));
    EXPECT_EQ(Run({"check", "--table", table_}).status, 0);
  }

 private:
  const std::string table_ = MakeProductTable();
};

// The files that are opened next would get the streams' places, and messages go into them.
TEST_F(ClosedStreamsTest, MessagesGoIntoNoFile) { ExpectApplied("<&- >&- 2>&-"); }

TEST_F(ClosedStreamsTest, AReaderThatHasGoneDoesNotEndTheImport) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  ASSERT_LT(ends[1], 10) << "shells take one digit";
  close(ends[0]);
  ExpectApplied(">&" + std::to_string(ends[1]));
  close(ends[1]);
}

}  // namespace
