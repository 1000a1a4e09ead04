// The register of processed updates: what is written, read back, refused and left alone.
#include "updates/modSharedPapRegister.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

#include "platform/database/database_engine.h"
#include "platform/database/recordset.h"
#include "platform/files/file_lock.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "store/modProductTable.h"
#include "tests/support/file_protection.h"
#include "tests/support/surface_test.h"

namespace {

using database::DataType;
using database::TableDef;
using test_support::ReadAll;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr double kMoment = 45000.5;  // 2023-03-15 12:00
constexpr double kMinute = 1.0 / (24 * 60);
constexpr double kPrcDate = 38061;  // 2004-03-15

class RegisterTest : public test_support::ProductTableTest {
 protected:
  RegisterTest() { GetProcessedCollection(product_table); }  // forgets what an earlier one has read

  bool Set(const std::wstring& vName, bool vProcessed = true) {
    CloseConnection();
    clsOrvPap pap;
    pap.FilePath = L"C:\\PAP32\\" + vName;
    pap.PapDate = 1;
    pap.PrcDate = kPrcDate;
    pap.AssortmentDescription = description;
    pap.SupplierDescription = L"\u0416 & Co";
    return SetPapProcessed(product_table, pap, vProcessed);
  }
  std::vector<std::string> RegisterRows() {
    auto rows = Rows(L"SELECT * FROM PriceUpdates ORDER BY FileName",
                     {L"FileName", L"Date", L"Assortiment", L"DateProcessed"});
    CloseConnection();
    return rows;
  }
  auto Open() const {
    return database::DBEngine().OpenDatabase(product_table, false, false, L";pwd=quorbelintax");
  }
  // A time before which nothing is in the register: two updates, the later one first in the table.
  void FillRegister() {
    clock.now = kMoment + kMinute;
    ASSERT_TRUE(Set(L"late.PRC"));
    clock.now = kMoment;
    ASSERT_TRUE(Set(L"early.PRC"));
    ASSERT_TRUE(GetProcessedCollection(product_table));
  }

  std::wstring description = L"Beams";
};

TEST_F(RegisterTest, WhatIsRecordedIsReadBackOldestFirst) {
  EXPECT_FALSE(GetProcessedCollection(product_table)) << "the normal beginning";
  EXPECT_FALSE(ProcessedPaps().has_value());
  FillRegister();
  EXPECT_EQ(ProductConnection, nullptr);
  ASSERT_EQ(ProcessedPaps()->size(), 2U);
  const clsOrvPap& first = *ProcessedPaps()->front();
  EXPECT_EQ(first.FilePath, L"early.PRC");
  EXPECT_EQ(first.PapDate, kPrcDate) << "the price date, not the update's own";
  EXPECT_EQ(first.AssortmentDescription, L"Beams");
  EXPECT_EQ(first.SupplierDescription, L"\u0416 & Co");
  EXPECT_EQ(first.DateProcessed, kMoment);
  EXPECT_EQ(ProcessedPaps()->back()->FilePath, L"late.PRC");

  EXPECT_TRUE(IsPapProcessed(L"late.PRC"));
  EXPECT_FALSE(IsPapProcessed(L"late.prc")) << "compared exactly";
  EXPECT_FALSE(IsPapProcessed(L"C:\\PAP32\\late.PRC"));
  EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(RegisterTest, AgainMovesOnlyTheTimeAndWithdrawingForgets) {
  FillRegister();
  clock.now = kMoment + 2 * kMinute;
  description = L"Tubes";
  EXPECT_TRUE(Set(L"EARLY.prc")) << "the database compares without case";
  EXPECT_THAT(RegisterRows(), ElementsAre("early.PRC|2004-03-15|Beams|2023-03-15 12:02:00",
                                          "late.PRC|2004-03-15|Beams|2023-03-15 12:01:00"));
  EXPECT_EQ(ProcessedPaps()->front()->FilePath, L"early.PRC") << "a snapshot";
  EXPECT_TRUE(GetProcessedCollection(product_table));
  EXPECT_EQ(ProcessedPaps()->back()->FilePath, L"early.PRC");

  EXPECT_TRUE(Set(L"early.PRC", false));
  EXPECT_TRUE(Set(L"never.PRC", false)) << "nothing to withdraw";
  EXPECT_THAT(RegisterRows(), ElementsAre("late.PRC|2004-03-15|Beams|2023-03-15 12:01:00"));
  EXPECT_TRUE(Set(L"late.PRC", false));
  EXPECT_FALSE(GetProcessedCollection(product_table));
  EXPECT_FALSE(ProcessedPaps().has_value()) << "no rows are no collection";
  EXPECT_FALSE(IsPapProcessed(L"late.PRC"));
  EXPECT_EQ(ProductConnection, nullptr);
  EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(RegisterTest, NamesAndDescriptionsThatTheRegisterCannotHold) {
  const std::wstring longest = std::wstring(46, L'x') + L".PRC";
  const struct {
    std::wstring name;
    std::wstring description;
    const char* error;  // empty: taken
  } cases[] = {
      {longest, std::wstring(50, L'd'), ""},
      {L"\u00C9 \u20AC.PRC", L"Beams", ""},
      {L"\u0416.PRC", L"Beams", "3027"},  // no known place in the order of the index
      {L"O'Neill.PRC", L"Beams", "3001"},
      {L"x" + longest, L"Beams", "3163"},
      {L"none.PRC", L"", "3315"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(text::WideToUtf8(c.name));
    description = c.description;
    const bool fits = std::string(c.error).empty();
    EXPECT_EQ(Set(c.name), fits);
    GetProcessedCollection(product_table);
    EXPECT_EQ(IsPapProcessed(c.name), fits);
    EXPECT_EQ(ProductConnection, nullptr);
    if (fits) {
      EXPECT_THAT(Boxes(), IsEmpty());
    } else {
      EXPECT_THAT(Boxes(), ElementsAre(HasSubstr(c.error)));
    }
  }
}

TEST_F(RegisterTest, ARegisterOfAnotherShapeIsReportedAndKept) {
  const std::string original = ReadAll(files::ToPath(product_table));
  FillRegister();
  folder.Write("Orv.pt", original);
  Open()->AppendTable({L"PriceUpdates",
                       {{.Name = L"FileName", .Type = DataType::kText, .Size = 50},
                        {.Name = L"Date", .Type = DataType::kText, .Size = 50},
                        {.Name = L"DateProcessed", .Type = DataType::kDate}},
                       {}});
  EXPECT_FALSE(Set(L"a.PRC"));
  EXPECT_EQ(Boxes().size(), 1U);
  EXPECT_THAT(Rows(L"SELECT * FROM PriceUpdates", {L"Date"}), IsEmpty());
  AddRow(L"PriceUpdates", {{L"Date", text::Variant()}});
  CloseConnection();
  EXPECT_FALSE(GetProcessedCollection(product_table));
  EXPECT_THAT(Boxes(), ElementsAre(HasSubstr("modSharedPap.GetProcessedCollection (Function)")));
  EXPECT_FALSE(ProcessedPaps().has_value());
  EXPECT_FALSE(IsPapProcessed(L"late.PRC"));
  EXPECT_EQ(ProductConnection, nullptr);
}

TEST_F(RegisterTest, AProductTableThatIsRefusedStaysAsItIs) {
  FillRegister();
  const std::filesystem::path file = files::ToPath(product_table);
  const auto both_refuse = [&](const auto& vReport) {
    EXPECT_FALSE(Set(L"a.PRC"));
    EXPECT_THAT(Boxes(), vReport);
    EXPECT_FALSE(GetProcessedCollection(product_table));
    EXPECT_THAT(Boxes(), vReport);
    EXPECT_EQ(ProcessedPaps()->size(), 2U) << "as it was";
    EXPECT_EQ(ProductConnection, nullptr);
  };
  {
    const files::FileLock somebody(file, files::MissingFile::kHoldNothing);
    both_refuse(ElementsAre(HasSubstr("3045"), HasSubstr("#56")));
  }
  SetIdentity(L"VerMinor", std::int32_t{21});
  const std::string before = ReadAll(file);
  both_refuse(ElementsAre(HasSubstr("#54")));
  EXPECT_EQ(ReadAll(file), before);
  std::filesystem::remove(file);
  both_refuse(ElementsAre(HasSubstr("3024"), HasSubstr("#56")));
  EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(RegisterTest, AReadOnlyProductTableIsReadAndNotWritten) {
  FillRegister();
  const std::filesystem::path file = files::ToPath(product_table);
  const std::string before = ReadAll(file);
  {
    const test_support::WriteProtection protection(file);
    if (!protection.Holds()) GTEST_SKIP() << "this account may write to any file";
    EXPECT_TRUE(GetProcessedCollection(product_table));
    EXPECT_EQ(ProcessedPaps()->size(), 2U);
    for (const bool processed : {true, false}) {
      EXPECT_FALSE(Set(L"late.PRC", processed));
      EXPECT_THAT(Boxes(), ElementsAre(HasSubstr("3027")));
    }
  }
  EXPECT_TRUE(ReadAll(file) == before);
}

TEST_F(RegisterTest, TheTableIsMadeWithItsRules) {
  ASSERT_TRUE(Set(L"\u00E9\u20AC.PRC"));
  const auto tables = Open()->TableDefs();
  const auto found = std::find_if(tables.begin(), tables.end(), [](const TableDef& vTable) {
    return vTable.Name == L"PriceUpdates";
  });
  ASSERT_NE(found, tables.end());
  std::vector<std::string> fields;
  for (const database::FieldDefinition& field : found->Fields) {
    fields.push_back(text::WideToUtf8(field.Name) + " " + std::to_string(field.Size) +
                     (field.Type == DataType::kDate ? " date" : "") +
                     (field.Type == DataType::kText ? " text" : "") +
                     (field.Required ? " required" : "") +
                     (field.AllowZeroLength ? " may be empty" : ""));
  }
  EXPECT_THAT(fields, ElementsAre("FileName 50 text required", "Date 8 date", "Assortiment 50 text",
                                  "Supplier 50 text", "DateProcessed 8 date"));
  ASSERT_EQ(found->Indexes.size(), 1U);
  EXPECT_EQ(found->Indexes[0].Name, L"PriceUpdates_PK");
  EXPECT_EQ(found->Indexes[0].Fields, std::vector<std::wstring>{L"FileName"});
  EXPECT_TRUE(found->Indexes[0].Primary && found->Indexes[0].Unique);
}

}  // namespace
