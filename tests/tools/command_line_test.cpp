// What paptool accepts on its command line, and how it refuses the rest.
#include <gmock/gmock.h>

#include "tests/tools/paptool_test.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class CommandLineTest : public PaptoolTest {};

TEST_F(CommandLineTest, EveryCommandExplainsItself) {
  const struct {
    std::vector<std::string> arguments;
    const char* text;
  } cases[] = {
      {{"--help"}, "Every command has --help"},
      {{"apply", "--help"}, "--language"},
      {{"tables", "-h"}, "--password"},
      {{"demo", "--help"}, "--force"},
  };
  for (const auto& c : cases) {
    const ProgramOutcome outcome = Run(c.arguments);
    EXPECT_EQ(outcome.status, 0) << c.arguments[0];
    EXPECT_THAT(outcome.out, HasSubstr(c.text));
    EXPECT_THAT(outcome.err, IsEmpty());
  }
}

TEST_F(CommandLineTest, WrongUsageIsRefusedWithTwo) {
  const struct {
    std::vector<std::string> arguments;
    const char* error;
  } cases[] = {
      {{}, "`paptool --help`"},
      {{"aply"}, "aply"},
      {{"tables"}, "--table is required"},
      {{"tables", "--tabel", "x"}, "`paptool tables --help`"},
      {{"tables", "--table", "x", "y"}, "y"},
      {{"rows", "--table", "x"}, "TABLE is required"},
      {{"apply", "--table", "x"}, "PRC is required"},
      {{"demo", ""}, "DIR: an empty text is no path"},
      {{"show", ""}, "PRC: an empty text is no path"},
      {{"tables", "--table", ""}, "--table: an empty text is no path"},
      {{"apply", "--table", "x", "--log", "", "y.PRC"}, "--log: an empty text is no path"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));
    const ProgramOutcome outcome = Run(c.arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.out, IsEmpty());
    EXPECT_THAT(outcome.err, HasSubstr(c.error));
    EXPECT_THAT(outcome.err, HasSubstr("--help` tells how it is used."));
  }
}

}  // namespace
