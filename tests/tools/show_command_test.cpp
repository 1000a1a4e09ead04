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
  folder.Write("date.PRC", "[DATE]\r\n-9990101\r\n");
  const ProgramOutcome outcome =
      Run({"show", Path("missing.PRC"), Path("empty.PRC"), Path("date.PRC"), Path("empty.PRC")});
  EXPECT_EQ(outcome.status, 1);
  const auto errors = Lines(outcome.err);
  ASSERT_EQ(errors.size(), 2u);
  EXPECT_THAT(errors[0], HasSubstr(Path("missing.PRC") + ": File not found"));
  EXPECT_THAT(errors[1], HasSubstr(Path("date.PRC") + ": Invalid procedure call or argument"));
  EXPECT_THAT(Lines(outcome.out), testing::Contains("Size: 0").Times(2));
}

}  // namespace
