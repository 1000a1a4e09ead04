// What the log of a run holds, and that nothing about it can stop the run.
#include "app/clsLogfile.h"

#include <gtest/gtest.h>

#include "app/modShared.h"
#include "tests/support/recording_prompt.h"
#include "tests/support/temporary_folder.h"

namespace {

using test_support::ReadAll;

class LogfileTest : public testing::Test {
 protected:
  LogfileTest() { m_shared.objPrompt = &m_prompt; }

  static std::string Between(const std::string& vLines) {
    const std::string separator = "=========================\r\n";
    return separator + vLines + separator;
  }

  test_support::TemporaryFolder m_folder;
  test_support::RecordingPrompt m_prompt;
  SharedSettings m_shared;
  SharedSettingsScope m_scope{m_shared};
};

TEST_F(LogfileTest, EveryRunStartsOver) {
  const auto path = m_folder.Write("paplog.txt", std::string(1000, 'x'));
  clsLogfile log;
  log.WriteLog(L"before the start");
  log.StartLog(m_folder.Text("paplog.txt"));
  log.WriteLog(L"a: \u20AC");
  log.WriteLog(L"");
  EXPECT_EQ(ReadAll(path), "=========================\r\na: \x80\r\n\r\n")
      << "a run that is cut short must leave what it has logged";
  log.EndLog();
  EXPECT_EQ(ReadAll(path), Between("a: \x80\r\n\r\n"));
  log.EndLog();
  log.WriteLog(L"after the end");
  EXPECT_EQ(ReadAll(path), Between("a: \x80\r\n\r\n"));
  {
    clsLogfile destroyed;
    destroyed.StartLog(m_folder.Text("paplog.txt"));
  }
  EXPECT_EQ(ReadAll(path), Between(""));
  EXPECT_TRUE(m_prompt.messages.empty());
}

// Nothing about the log can stop the run.
TEST_F(LogfileTest, OnlyTheStartReportsAFailure) {
  const std::pair<std::wstring, const wchar_t*> cases[] = {
      {m_folder.Text("no/where.txt"), L"Error = 76: Path not found"},
#ifdef __linux__
      {L"/dev/full", L"Error = 61: Disk full"},
#endif
  };
  for (const auto& [path, error] : cases) {
    m_prompt.messages.clear();
    clsLogfile log;
    log.StartLog(path);
    for (int i = 0; i < 1000; ++i) log.WriteLog(L"lost");
    log.EndLog();
    ASSERT_EQ(m_prompt.messages.size(), 1U);
    EXPECT_EQ(m_prompt.messages[0].text, std::wstring(L"\r\n\r\nProcedure = StartLog\r\n") + error);
  }
}

}  // namespace
