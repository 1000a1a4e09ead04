// What a text file holds after it was written, and what happens when it cannot be.
#include "platform/files/text_writer.h"

#include <gtest/gtest.h>

#include "platform/files/file_error.h"
#include "tests/support/error_number.h"
#include "tests/support/temporary_folder.h"

namespace files {
namespace {

using test_support::ReadAll;
using test_support::TemporaryFolder;

TEST(TextWriterTest, ReplacesOrAppends) {
  const TemporaryFolder folder;
  const auto path = folder.Write("log.txt", "an old and longer text");
  TextWriter first(path);
  first.WriteLine(L"a");
  first.Write(L"b");
  first.Flush();
  EXPECT_EQ(ReadAll(path), "a\r\nb");
  first.Close();
  first.Close();
  TextWriter(path, WriteMode::kAppend).WriteLine(L"c");
  EXPECT_EQ(ReadAll(path), "a\r\nbc\r\n");
}

#ifdef __linux__
TEST(TextWriterTest, AFullDiskIsReportedAtLatestByClose) {
  TextWriter writer("/dev/full");
  EXPECT_EQ(test_support::ErrorNumberOf([&] {
              writer.WriteLine(L"lost");
              writer.Close();
            }),
            kDiskFull);
}
#endif

}  // namespace
}  // namespace files
