// paptool show: header, sections, and the lines that nobody reads.
#include <gmock/gmock.h>

#include "tests/tools/paptool_test.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ShowCommandTest : public PaptoolTest {};

TEST_F(ShowCommandTest, PrintsEverythingThatIsInAFile) {
  const std::string bytes =
      "stray\r\n"
      "[VERSION]\r\n3.1\r\n\r\n[DATE]\r\n20240230\r\n\r\n[ASSORTMENTCODE]\r\nBEAMS\r\n\r\n"
      "[SUPPLIERDESCRIPTION]\r\nM\xFCller\r\n\r\n[SawPrcDate]\r\n\r\n\r\n[Remark]"
      "\r\na\r\nb\\c\r\n\r\n"
      "[NEW SUPPLIER]\r\n\"S1\",\"First, and last\",1,2\r\n\"S2\",x,1\r\n\r\n"
      "\"S3\",x,1,2\r\n"
      "[NEW SERIE]\r\n\"A,1,1,1,\r\nA,x,1,True,\"\"\r\nx\r\n\r\n"
      "[NEW SERIE]\r\nB,x,1,True,\"r";
  folder.Write("a.PRC", bytes);
  const ProgramOutcome outcome = Run({"show", Path("a.PRC")});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.err, IsEmpty());
  EXPECT_THAT(
      Lines(outcome.out),
      ElementsAre("File: " + Path("a.PRC"), "Size: " + std::to_string(bytes.size()), "VERSION: 3.1",
                  "DATE: 2024-03-01", "ASSORTMENTCODE: BEAMS",
                  "ASSORTMENTDESCRIPTION: ", "SUPPLIERCODE: ", "SUPPLIERDESCRIPTION: M\xC3\xBCller",
                  "PrcDate: ", "SawPrcDate: ", "BlastCoatDate: ", "BasePriceDate: ",
                  "OLBonusDate: ", "Remark: a\\r\\nb\\\\c", "[NEW SUPPLIER]: 1",
                  "[NEW ASSORTMENT]: 0", "[NEW ASSSUPPL]: 0", "[NEW SERIE]: 2", "[NEW ARTICLE]: 0",
                  "[NEW DISCOUNT]: 0", "[UPDATE BASEPRICE]: 0", "[UPDATE OVERLENGTHBONUS]: 0",
                  "[UPDATE PRICEDATA]: 0", "line 1: outside every section",
                  "line 23: 3 fields where [NEW SUPPLIER] has 4", "line 25: outside every section",
                  "line 27: endless: the first quoted text is not closed, an import would not get "
                  "past this line",
                  "line 29: 1 field where [NEW SERIE] has 5"));
}

TEST_F(ShowCommandTest, FilesThatCannotBeReadDoNotHideOthers) {
  folder.Write("empty.PRC", "");
  const ProgramOutcome outcome =
      Run({"show", Path("missing.PRC"), Path("empty.PRC"), Path("empty.PRC")});
  EXPECT_EQ(outcome.status, 1);
  const auto errors = Lines(outcome.err);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_THAT(errors[0], HasSubstr(Path("missing.PRC") + ": File not found"));
  EXPECT_THAT(Lines(outcome.out), testing::Contains("Size: 0").Times(2));
}

TEST_F(ShowCommandTest, ADateOutsideTheCalendarHidesNothingElse) {
  folder.Write("date.PRC", "[VERSION]\r\n3.2\r\n\r\n[DATE]\r\n99999999\r\n[Remark]\r\nr\r\n");
  const ProgramOutcome outcome = Run({"show", Path("date.PRC")});
  EXPECT_EQ(outcome.status, 0);
  const std::string reason =
      "Invalid procedure call or argument ([DATE] in line 5: '99999999' is no date)";
  EXPECT_THAT(Lines(outcome.out),
              testing::IsSupersetOf(
                  {std::string("VERSION: 3.2"), std::string("DATE: "), std::string("Remark: r"),
                   "line 5: not read, and an import would not take the file: " + reason}));
  const ProgramOutcome applied = Run({"apply", "--table", Path("none.pt"), Path("date.PRC")});
  EXPECT_EQ(applied.status, 2);
  EXPECT_THAT(applied.err, HasSubstr("cannot read " + Path("date.PRC") + ": " + reason));
}

}  // namespace
