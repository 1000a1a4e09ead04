// What the section reader makes of the lines of an update file, well-formed or not.
#include <gmock/gmock.h>

#include "engine/clsOrvPap.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "platform/text/locale.h"
#include "tests/support/surface_test.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class SectionReaderTest : public test_support::SurfaceTest {
 protected:
  // Reads a file with these bytes into a new object.
  bool Read(const std::string& bytes) {
    update = std::make_unique<clsOrvPap>();
    update->FilePath = files::ToText(folder.Write("a.PRC", bytes));
    return update->GetPrcData();
  }

  std::vector<std::wstring> SeriesCodes() const {
    std::vector<std::wstring> codes;
    for (const clsNewSerie& serie : *update->NewSeries) codes.push_back(serie.SerieCode);
    return codes;
  }

  std::unique_ptr<clsOrvPap> update;
};

TEST_F(SectionReaderTest, WhichLinesAreRecords) {
  const struct {
    const char* what;
    const char* bytes;
    std::vector<std::wstring> codes;
  } cases[] = {
      {"no final line end", "[NEW SERIE]\r\n\"A\",\"\",1,True,\"\"", {L"A"}},
      {"bare CR", "[NEW SERIE]\r\"A\",\"\",1,True,\"\"\r", {L"A"}},
      {"lower case and blanks", "  [new serie] \r\nA,,1,True,\r\n", {L"A"}},
      {"blank line ends the section", "[NEW SERIE]\r\nA,,1,1,\r\n  \r\nB,,1,1,\r\n", {L"A"}},
      {"section in two parts", "[NEW SERIE]\nA,,1,1,\n\n[NEW SERIE]\nB,,1,1,\n", {L"A", L"B"}},
      {"section without a blank line before", "[NEW DISCOUNT]\n[NEW SERIE]\nA,,1,1,\n", {L"A"}},
      {"wrong numbers of fields", "[NEW SERIE]\nA,,1,1\nB,,1,1,,\nx\nC,,1,1,\n", {L"C"}},
      {"tab is no blank", "[NEW SERIE]\n\t\nA,,1,1,\n", {L"A"}},
      {"comma in a quoted text", "[NEW SERIE]\n\"A,B\",,1,1,\n", {L"A,B"}},
      {"blanks around fields", "[NEW SERIE]\n A ,,1,1,\n\" B \",,1,1,\n", {L"A", L"B"}},
      {"outside a section", "A,,1,1,\n[VERSION]\nA,,1,1,\n", {}},
      {"unclosed quote in the last field", "[NEW SERIE]\nA,,1,1,\"\n", {L"A"}},
      {"byte beyond ASCII", "[NEW SERIE]\n\"\xEB\x80\",,1,1,\n", {text::AnsiToWide("\xEB\x80")}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_TRUE(Read(c.bytes));
    EXPECT_EQ(SeriesCodes(), c.codes);
  }
}

TEST_F(SectionReaderTest, FieldsAreConvertedByTheirKind) {
  ASSERT_TRUE(
      Read("[NEW ASSORTMENT]\n"
           "A,first,2,255,True,0,7,r\n"
           "B,overflow,256,-1,x,FALSE,,\n"
           "[NEW ASSSUPPL]\n"
           "A,S,70000\nA,S,\nA,S,99999999999\n"
           "[UPDATE OVERLENGTHBONUS]\n"
           "1.5, .25 ,1e2\nx,,-0.5\n"));
  const std::deque<clsNewAssortment>& assortments = *update->NewAssortments;
  ASSERT_THAT(assortments, SizeIs(2));
  EXPECT_EQ(assortments[0].PriceUnit, 255);
  EXPECT_TRUE(assortments[0].BasePriceGroups);
  EXPECT_FALSE(assortments[0].DiscountGroups);
  EXPECT_EQ(assortments[1].DimUnit, 0);
  EXPECT_EQ(assortments[1].PriceUnit, 0);
  EXPECT_FALSE(assortments[1].BasePriceGroups);

  std::vector<std::int32_t> types;
  for (const clsNewAssSuppl& link : *update->NewAssSuppls) types.push_back(link.PrcDiscountType);
  EXPECT_THAT(types, ElementsAre(70000, 0, 0));

  std::vector<double> numbers;
  for (const clsUpdateOverlengthB& bonus : *update->OverlengthBonuses) {
    numbers.insert(numbers.end(), {bonus.Begin, bonus.End, bonus.Price});
  }
  EXPECT_THAT(numbers, ElementsAre(1.5, 0.25, 100, 0, 0, -0.5));
}

// Decimals are read with a full stop whatever the locale, the two amounts of a supplier by the
// locale.
TEST_F(SectionReaderTest, OnlySupplierAmountsFollowTheLocale) {
  const struct {
    text::Locale locale;
    double with_point;
    double with_comma;
  } cases[] = {{{L',', L'.'}, 15, 1.5}, {{L'.', L','}, 1.5, 15}};
  for (const auto& c : cases) {
    const text::ScopedLocale locale(c.locale);
    ASSERT_TRUE(
        Read("[NEW SUPPLIER]\nA,a,1.5,\"1,5\"\n\n"
             "[NEW SERIE]\nS,s,1.5,True,\n"));
    EXPECT_EQ(update->NewSuppliers->at(0).ToA, c.with_point);
    EXPECT_EQ(update->NewSuppliers->at(0).ToB, c.with_comma);
    EXPECT_EQ(update->NewSeries->at(0).Density, 1.5);
  }
}

TEST_F(SectionReaderTest, AnEmptyFileIsReportedAndLeavesEmptyCollections) {
  EXPECT_FALSE(Read(""));
  ASSERT_THAT(prompt.messages, SizeIs(1));
  EXPECT_THAT(prompt.messages[0].text, HasSubstr(L"Procedure = clsOrvPap.GetPrcData (Function)"));
  EXPECT_THAT(prompt.messages[0].text, HasSubstr(L"62: Input past end of file"));
  EXPECT_THAT(*update->PriceData, IsEmpty());
}

// Lines as long as a damaged file may have them cost time in proportion to their length and, what
// does not become a record, no memory but the line's own.
TEST_F(SectionReaderTest, LinesOfMillionsOfCharacters) {
  constexpr std::size_t kLength = 50'000'000;
  const std::string code(kLength / 10, 'x');
  EXPECT_TRUE(
      Read("[NEW SERIE]\n" + std::string(kLength, ',') + "\n" + code + ",,1,1,\nB,,1,1,\n"));
  ASSERT_THAT(*update->NewSeries, SizeIs(2));
  EXPECT_EQ(update->NewSeries->front().SerieCode.size(), code.size());
  EXPECT_EQ(update->NewSeries->back().SerieCode, L"B");
}

}  // namespace
