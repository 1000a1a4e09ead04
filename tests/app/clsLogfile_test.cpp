// What the log of a run holds, and that nothing about it can stop the run.
#include "app/clsLogfile.h"

#include <gmock/gmock.h>

#include "tests/support/surface_test.h"

namespace {

using test_support::ReadAll;

class LogfileTest : public test_support::SurfaceTest {};

TEST_F(LogfileTest, EveryRunStartsOver) {
  const std::string separator = "=========================\r\n";
  const auto path = folder.Write("paplog.txt", std::string(1000, 'x'));
  clsLogfile log;
  log.WriteLog(L"before the start");
  log.StartLog(folder.Text("paplog.txt"));
  log.WriteLog(L"a: \u20AC");
  log.WriteLog(L"");
  EXPECT_EQ(ReadAll(path), separator + "a: \x80\r\n\r\n")
      << "a run that is cut short must leave what it has logged";
  log.EndLog();
  log.EndLog();
  log.WriteLog(L"after the end");
  EXPECT_EQ(ReadAll(path), separator + "a: \x80\r\n\r\n" + separator);
  {
    clsLogfile destroyed;
    destroyed.StartLog(folder.Text("paplog.txt"));
  }
  EXPECT_EQ(ReadAll(path), separator + separator);
  EXPECT_THAT(Boxes(), testing::IsEmpty());
}

TEST_F(LogfileTest, OnlyTheStartReportsAFailure) {
  const std::pair<std::wstring, std::string> cases[] = {
      {folder.Text("no/where.txt"), "Error = 76: Path not found"},
#ifdef __linux__
      {L"/dev/full", "Error = 61: Disk full"},
#endif
  };
  for (const auto& [path, error] : cases) {
    clsLogfile log;
    log.StartLog(path);
    for (int i = 0; i < 1000; ++i) log.WriteLog(L"lost");
    log.EndLog();
    EXPECT_THAT(Boxes(), testing::ElementsAre("#104\r\n\r\nProcedure = StartLog\r\n" + error));
  }
}

}  // namespace
