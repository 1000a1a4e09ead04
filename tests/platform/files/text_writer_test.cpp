// What a text file holds after it was written, and what happens when it cannot be.
#include "platform/files/text_writer.h"

#include <gtest/gtest.h>

#include "platform/files/file_error.h"
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

TEST(TextWriterTest, MissingFolderIsPathNotFound) {
  const TemporaryFolder folder;
  try {
    const TextWriter writer(folder / "no" / "where.txt");
    ADD_FAILURE();
  } catch (const text::RuntimeError& error) {
    EXPECT_EQ(error.number(), kPathNotFound);
    EXPECT_EQ(error.description(), L"Path not found");
  }
}

#ifdef __linux__
TEST(TextWriterTest, AFullDiskIsReportedAtLatestByClose) {
  TextWriter writer("/dev/full");
  try {
    writer.WriteLine(L"lost");
    writer.Close();
    ADD_FAILURE();
  } catch (const text::RuntimeError& error) {
    EXPECT_EQ(error.number(), kDiskFull);
  }
}
#endif

}  // namespace
}  // namespace files
