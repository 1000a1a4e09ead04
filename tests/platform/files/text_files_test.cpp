// Text files: lines of every kind of file that somebody may call one, and what a written one holds.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/files/file_error.h"
#include "platform/files/text_reader.h"
#include "platform/files/text_writer.h"
#include "tests/support/error_number.h"
#include "tests/support/temporary_folder.h"

namespace files {
namespace {

using test_support::ErrorNumberOf;
using test_support::TemporaryFolder;

std::vector<std::wstring> LinesOf(std::string_view bytes) {
  const TemporaryFolder folder;
  TextReader reader(folder.Write("file.PRC", bytes));
  std::vector<std::wstring> lines;
  while (!reader.AtEnd()) lines.push_back(reader.ReadLine());
  return lines;
}

TEST(TextReaderTest, EveryKindOfLineEndCounts) {
  using Lines = std::vector<std::wstring>;
  EXPECT_EQ(LinesOf(""), Lines());
  EXPECT_EQ(LinesOf("\r\n"), Lines({L""}));
  EXPECT_EQ(LinesOf("a\r\nb\nc\rd"), Lines({L"a", L"b", L"c", L"d"}));
  EXPECT_EQ(LinesOf("a\r\rb\n\nc\r\n"), Lines({L"a", L"", L"b", L"", L"c"}));
  EXPECT_EQ(LinesOf("a\n\rb"), Lines({L"a", L"", L"b"}));
  EXPECT_EQ(LinesOf(std::string_view("a\0b\x1A\r\nc", 7)),
            Lines({std::wstring(L"a\0b\x1A", 4), L"c"}));
}

// The pair CR LF must count as one end also where the buffer ends between the two, whatever its
// size.
TEST(TextReaderTest, LineEndsAcrossEveryBufferEdge) {
  for (std::size_t length = 64 * 1024 - 3; length <= 64 * 1024 + 3; ++length) {
    const auto lines = LinesOf(std::string(length, 'x') + "\r\ny\r");
    EXPECT_THAT(lines, testing::ElementsAre(std::wstring(length, L'x'), L"y")) << length;
  }
}

TEST(TextReaderTest, ErrorsHaveTheirClassicNumbers) {
  const TemporaryFolder folder;
  EXPECT_EQ(ErrorNumberOf([&] { TextReader(folder / "missing.PRC"); }), kFileNotFound);
  EXPECT_EQ(ErrorNumberOf([&] { TextReader(folder / "no" / "where.PRC"); }), kPathNotFound);
  EXPECT_EQ(ErrorNumberOf([&] { TextReader(folder.path()); }), kPermissionDenied);
  EXPECT_EQ(ErrorNumberOf([&] {
              TextReader reader(folder.Write("empty.PRC", ""));
              reader.ReadLine();
            }),
            kInputPastEnd);
}

TEST(TextWriterTest, ReplacesOrAppends) {
  const TemporaryFolder folder;
  const auto path = folder.Write("log.txt", "an old and longer text");
  TextWriter first(path);
  first.WriteLine(L"a");
  first.Write(L"b");
  first.Flush();
  EXPECT_EQ(test_support::ReadAll(path), "a\r\nb");
  first.Close();
  first.Close();
  TextWriter(path, WriteMode::kAppend).WriteLine(L"c");
  EXPECT_EQ(test_support::ReadAll(path), "a\r\nbc\r\n");
}

#ifdef __linux__
TEST(TextWriterTest, AFullDiskIsReportedAtLatestByClose) {
  TextWriter writer("/dev/full");
  EXPECT_EQ(ErrorNumberOf([&] {
              writer.WriteLine(L"lost");
              writer.Close();
            }),
            kDiskFull);
}
#endif

}  // namespace
}  // namespace files
