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
      {{"tables", "-h"}, "--password"},
      {{"--version"}, "paptool "},
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
      {{"aply"}, "no command aply"},
      {{"-x"}, "no option -x"},
      {{"tables"}, "--table is required"},
      {{"tables", "--tabel", "x"}, "`paptool tables --help`"},
      {{"tables", "--table", "x", "y"}, "y"},
      {{"rows", "--table", "x"}, "TABLE is required"},
      {{"demo", ""}, "DIR: an empty text is no path"},
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

#ifdef _WIN32  // elsewhere the shell does it
TEST_F(CommandLineTest, APatternStandsForItsFiles) {
  for (const char* name : {"b.PRC", "a.PRC", "c.PRC_old", "d.txt"}) folder.Write(name, "");
  EXPECT_THAT(
      Lines(Run({"show", Path("*.prc")}).out),
      testing::AllOf(testing::Contains(HasSubstr("a.PRC")), testing::Contains(HasSubstr("b.PRC")),
                     testing::Not(testing::Contains(HasSubstr("c.PRC_old")))));
  EXPECT_THAT(Run({"show", Path("*.none")}).err, HasSubstr("*.none"));
  EXPECT_EQ(Run({"check", "--table", MakeProductTable(), "--password", Path("*.prc")}).status, 1)
      << "a wrong password, not one too many";
}
#endif

}  // namespace
