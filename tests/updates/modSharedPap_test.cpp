// The header of an update file: which lines belong to it and what they mean.
#include "updates/modSharedPap.h"

#include <gmock/gmock.h>

#include "platform/files/paths.h"
#include "platform/text/code_page.h"
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

TEST(PapFileTest, ExtensionDecides) {
  const struct {
    const wchar_t* name;
    bool expected;
  } cases[] = {
      {L"update.PRC", true}, {L"update.prc", true}, {L"a.b.Prc", true}, {L"update.prc.bak", false},
      {L"update", false},    {L"PRC", false},       {L".prc", true},    {L"C:\\x.prc\\a", false},
      {L"a.prc ", false}};
  for (const auto& c : cases) {
    EXPECT_EQ(IsPapFile(c.name), c.expected) << text::WideToUtf8(c.name);
  }
}

TEST_F(HeaderTest, EveryValueReachesItsProperty) {
  const std::string bytes =
      "[VERSION]\r\n 3.2 \r\n\r\n[DATE]\r\n20260105\r\n\r\n"
      "[ASSORTMENTCODE]\r\nBEAMS\r\n\r\n[ASSORTMENTDESCRIPTION]\r\n Beams \xEB\r\n\r\n"
      "[SUPPLIERCODE]\r\nS1\r\n\r\n[SUPPLIERDESCRIPTION]\r\nFirst\r\n\r\n"
      "[PrcDate]\r\n20040315\r\n\r\n[sawprcdate]\r\n20040316\r\n\r\n"
      "[BlastCoatDate]\r\n20040317\r\n\r\n[BasePriceDate]\r\n20040318\r\n\r\n"
      "[OLBonusDate]\r\n\r\n\r\n[Remark]\r\n one\r\n\r\ntwo \r\n\r\n"
      "[NEW SUPPLIER]\r\nS9,not a header,1,2\r\n[SUPPLIERCODE]\r\nS9\r\n";
  const auto update = Read(bytes);
  EXPECT_EQ(update->FilePath, folder.Text("a.PRC"));
  EXPECT_EQ(update->FileSize, bytes.size());
  EXPECT_EQ(update->Version, L"3.2");
  EXPECT_EQ(update->PapDate, text::DateSerial(2026, 1, 5));
  EXPECT_EQ(update->AssortmentCode, L"BEAMS");
  EXPECT_EQ(update->AssortmentDescription, L"Beams \u00eb");
  EXPECT_EQ(update->SupplierCode, L"S1");
  EXPECT_EQ(update->SupplierDescription, L"First");
  EXPECT_EQ(update->PrcDate, text::DateSerial(2004, 3, 15));
  EXPECT_EQ(update->SawPrcDate, text::DateSerial(2004, 3, 16));
  EXPECT_EQ(update->BlastCoatDate, text::DateSerial(2004, 3, 17));
  EXPECT_EQ(update->BasePriceDate, text::DateSerial(2004, 3, 18));
  EXPECT_EQ(update->OlBonusDate, text::kUnsetDate);
  EXPECT_EQ(update->Remark, L" one\r\ntwo ");
}

TEST_F(HeaderTest, LinesThatAreNotWhatTheySeem) {
  const struct {
    const char* what;
    const char* bytes;
    const wchar_t* supplier;
    const wchar_t* remark;
  } cases[] = {
      {"bare CR", "[SUPPLIERCODE]\rS1\r\r[REMARK]\rr", L"S1", L"r"},
      {"leading blank makes a value", "[SUPPLIERCODE]\nS1\n [REMARK]\n", L"[REMARK]", L""},
      {"trailing blank makes a value", "[SUPPLIERCODE]\n[NEW SUPPLIER] \n", L"[NEW SUPPLIER]", L""},
      {"a later value wins", "[SUPPLIERCODE]\nS1\nS2\n\nS3\n", L"S3", L""},
      {"value before any section", "S0\n[REMARK]\nr\n", L"", L"r"},
      {"end in lower case", "[new supplier]\n[SUPPLIERCODE]\nS1\n", L"", L""},
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
