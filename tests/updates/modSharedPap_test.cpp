// The header of an update file: which lines belong to it and what they mean.
#include "updates/modSharedPap.h"

#include <gmock/gmock.h>

#include "platform/files/paths.h"
#include "platform/text/date.h"
#include "tests/support/error_number.h"
#include "tests/support/surface_test.h"

namespace {

class HeaderTest : public test_support::SurfaceTest {
 protected:
  std::unique_ptr<clsOrvPap> Read(const std::string& bytes) {
    auto update = std::make_unique<clsOrvPap>();
    ReadPapHeader(files::ToText(folder.Write("a.PRC", bytes)), *update);
    return update;
  }
};

TEST_F(HeaderTest, LinesThatAreNotWhatTheySeem) {
  const struct {
    const char* what;
    const char* bytes;
    const wchar_t* supplier;
    const wchar_t* remark;
  } cases[] = {
      {"other case and blanks", "[suppliercode]\r\n S1 \r\n[Remark]\r\n r ", L"S1", L" r "},
      {"data", "[SUPPLIERCODE]\nS1\n[new supplier]\nS2\n[SUPPLIERCODE]\nS2\n", L"S1", L""},
      {"bare CR", "[SUPPLIERCODE]\rS1\r\r[REMARK]\rr", L"S1", L"r"},
      {"leading blank makes a value", "[SUPPLIERCODE]\nS1\n [REMARK]\n", L"[REMARK]", L""},
      {"trailing blank makes a value", "[SUPPLIERCODE]\n[NEW SUPPLIER] \n", L"[NEW SUPPLIER]", L""},
      {"a later value wins", "[SUPPLIERCODE]\nS1\nS2\n\nS3\n", L"S3", L""},
      {"value before any section", "S0\n[REMARK]\nr\n", L"", L"r"},
      {"no other section ends it", "[REMARK]\nr\n[NEW SERIE]\nA,,1,1,\n", L"",
       L"r\r\n[NEW SERIE]\r\nA,,1,1,"},
      {"empty", "", L"", L""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const auto update = Read(c.bytes);
    EXPECT_EQ(update->SupplierCode, c.supplier);
    EXPECT_EQ(update->Remark, c.remark);
  }
}

TEST_F(HeaderTest, DatesRollOver) {
  const struct {
    const char* line;
    double expected;
  } cases[] = {
      {"20240230", text::DateSerial(2024, 3, 1)},
      {"20241301", text::DateSerial(2025, 1, 1)},
      {"20240100", text::DateSerial(2023, 12, 31)},
      {"20240315 and more", text::DateSerial(2024, 3, 15)},
      {"202403", text::DateSerial(2024, 2, 29)},     // no day: the last of the month before
      {" 20240315", text::DateSerial(202, 40, 31)},  // not trimmed
      {"2024-3-5", text::DateSerial(2024, -3, -5)},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Read(std::string("[DATE]\n") + c.line + "\n")->PapDate, c.expected) << c.line;
  }
}

TEST_F(HeaderTest, FailuresAreTheCallers) {
  clsOrvPap update;
  const auto number = [&](const std::wstring& path) {
    return test_support::ErrorNumberOf([&] { ReadPapHeader(path, update); });
  };
  EXPECT_EQ(number(folder.Text("missing.PRC")), 53);
  EXPECT_EQ(number(files::ToText(folder.Write("b.PRC", "[DATE]\n-9990101\n"))), 5);
  EXPECT_TRUE(prompt.messages.empty());
}

}  // namespace
