// A backup of a product table that this process has open, and who else may have it then.
#include <gmock/gmock.h>

#include "platform/files/paths.h"
#include "store/modProductTable.h"
#include "tests/tools/paptool_test.h"
#include "updates/modSharedPapFolder.h"

namespace {

using testing::HasSubstr;

constexpr char kUpdate[] =
    "[VERSION]\r\n3.2\r\n[ASSORTMENTCODE]\r\nBEAMS\r\n[ASSORTMENTDESCRIPTION]\r\nBeams\r\n"
    "[SUPPLIERCODE]\r\nS1\r\n[SUPPLIERDESCRIPTION]\r\nFirst\r\n"
    "[NEW SUPPLIER]\r\nS1,First,1,2\r\n\r\n[NEW ASSORTMENT]\r\nBEAMS,Beams,1,1,True,True,0,\r\n\r\n"
    "[NEW ASSSUPPL]\r\nBEAMS,S1,1\r\n";

class BackupWhileOpenTest : public PaptoolTest {
 protected:
  // What another process meets that wants to change the product table.
  ProgramOutcome ApplyElsewhere() const {
    return Run({"apply", "--no-backup", "--log", Path("log.txt"), "--table", Path("Orv.pt"),
                Path("update.PRC")});
  }
};

// Copying opens the file once more and closes it again, which must not let go of the lock.
TEST_F(BackupWhileOpenTest, AnotherProcessIsStillRefused) {
  MakeProductTable();
  folder.Write("update.PRC", kUpdate);
  const ProductConnectionGuard end;
  ASSERT_TRUE(OpenProductTable(folder.Text("Orv.pt")));
  ASSERT_EQ(ApplyElsewhere().status, 1) << "it is refused before the backup";

  for (int backups = 0; backups < 2; ++backups) {  // over nothing, and over the first one
    EXPECT_TRUE(CopyPapFile(folder.Text("Orv.pt"), folder.Text("backup.pt")));
    EXPECT_TRUE(test_support::ReadAll(folder / "backup.pt") ==
                test_support::ReadAll(folder / "Orv.pt"));
    const ProgramOutcome refused = ApplyElsewhere();
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.err, HasSubstr("3045: "));
  }
  EXPECT_FALSE(CopyPapFile(folder.Text("backup.pt"), folder.Text("Orv.pt")))
      << "what is open is not replaced";
  EXPECT_THAT(Run({"tables", "--table", Path("backup.pt")}).out, HasSubstr("Supplier\t0\n"));

  ProductConnection.reset();
  EXPECT_EQ(ApplyElsewhere().status, 0);
}

}  // namespace
