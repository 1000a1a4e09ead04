// The wizard in its real windows, from the welcome to the finish: what the user sees on the way and
// what it leaves on the disk.
#include <cstdlib>

#include "platform/files/paths.h"
#include "store/ProductTableSchema.h"
#include "store/modProductTable.h"
#include "tests/support/surface_test.h"
#include "tests/walks/window_walk.h"

namespace walks {
namespace {

namespace fs = std::filesystem;

using test_support::ReadAll;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr char kOldPlates[] = "20040315_VELDHAVEN_PLAAT.PRC";
constexpr char kNewProfiles[] = "20260302_VELDHAVEN_PROFIEL.PRC";
constexpr char kNewTubes[] = "20260309_BRUGMEER_BUIS.PRC";

constexpr char kFirstButtons[] = "(<< Previous) Next >> Close";
constexpr char kAllButtons[] = "<< Previous Next >> Close";
constexpr char kLastButtons[] = "Copy << Previous Close";

class WalksTest : public WindowWalk {
 protected:
  // Downloads two of three updates and applies these two.
  void FirstRun();
  // Goes on from the target page, reads a message that says this, and is still there.
  void ExpectRefused(const std::string& why);
};

void WalksTest::FirstRun() {
  fs::rename(updates / kOldPlates, on_server / kOldPlates);
  const fs::path old_table = folder / "old";  // another name of the file
  fs::create_hard_link(table, old_table);
  Walk([&] {
    ExpectStep(kWelcome, kFirstButtons);
    EXPECT_EQ(Ask<std::string>(Status), "Welkom bij de demo-installatie - click Next to continue");
    EXPECT_THAT(Ask<std::string>(Text), StartsWith("Met deze wizard"));

    Press(kNext);
    ExpectStep(kTarget, std::string("Browse... Default ") + kAllButtons);
    EXPECT_EQ(Ask<std::string>(Text), table.string());
    EXPECT_TRUE(Ask<bool>([] { return IsOn(kBackup); }));

    Press(kNext);
    ExpectStep(kProcessed, kAllButtons);
    EXPECT_THAT(RowsNow(), IsEmpty());
    EXPECT_EQ(Ask<std::string>(EmptyText), "No price updates have been processed yet.");

    Press(kNext);
    ExpectStep(kDownload, kAllButtons);
    Press(kNext);
    ExpectStep(kDownload, kAllButtons);
    EXPECT_THAT(RowsNow(), ElementsAre(StartsWith("x 2004-03-15|Plaatstaal"),
                                       StartsWith("x 2026-03-02|Balken en profielen"),
                                       StartsWith("x 2026-03-09|Buizen")));
    walks::Check(0, false);
    Press(kNext);
    ExpectStep(kDownload, kAllButtons);
    EXPECT_THAT(Ask<std::string>(Text), AllOf(HasSubstr(kNewProfiles), HasSubstr(kNewTubes)));
    EXPECT_EQ(ReadAll(updates / kNewProfiles), ReadAll(on_server / kNewProfiles));
    EXPECT_EQ(ReadAll(updates / kNewTubes), ReadAll(on_server / kNewTubes));
    EXPECT_FALSE(fs::exists(updates / kOldPlates));

    Press(kNext);
    ExpectStep(kSelect, kAllButtons);
    EXPECT_THAT(RowsNow(), testing::SizeIs(6));
    CheckOnly({});
    ExpectStep(kSelect, "<< Previous (Next >>) Close");
    CheckOnly({0});

    // Next time the server is not to be asked.
    Press(kPrevious);
    ExpectStep(kDownload, kAllButtons);
    Switch(kDoNotCheck);
    Press(kNext);
    CheckOnly({4, 5});

    Press(kNext);
    ExpectStep(kImport, kLastButtons);
    EXPECT_THAT(RowsNow(), testing::Not(testing::Contains(HasSubstr("!"))));
    EXPECT_EQ(MessageNow(), "");
    Begin(kClose);
  });
  EXPECT_THAT(requests, ElementsAre("Info.txt", kNewProfiles, kNewTubes));
  EXPECT_FALSE(fs::equivalent(old_table, table)) << "it is the compacted one now";
  EXPECT_THAT(Files(),
              ElementsAre("BUIS_BRUGMEER_20260309.pt", "Orv.pt", "PROFIEL_VELDHAVEN_20260302.pt",
                          "paplog.txt", "program", "registry.reg", "welkom.txt"));
  EXPECT_THAT(Register(), ElementsAre(kNewProfiles, kNewTubes));
  EXPECT_EQ(Setting("PTLocation"), table.string());
  EXPECT_EQ(Setting("Backup"), "True");
  EXPECT_EQ(Setting("CheckInet"), "False");
  ExpectSound();
}

void WalksTest::ExpectRefused(const std::string& why) {
  const std::string before = ReadAll(table);
  const std::vector<std::string> files = Files();
  Walk([&] {
    GoTo(kTarget);
    Press(kNext);
    std::string messages;
    for (std::string one; !(one = MessageNow()).empty(); Press(kOk)) messages += one + "\n";
    EXPECT_THAT(messages, HasSubstr(why));
    ExpectStep(kTarget, std::string("Browse... Default ") + kAllButtons);
    Begin(kClose);
  });
  EXPECT_TRUE(ReadAll(table) == before);
  EXPECT_EQ(Files(), files);
}

TEST_F(WalksTest, AFirstRunDownloadsAndAppliesUpdates) { FirstRun(); }

#ifndef _WIN32  // where a process cannot be doubled, to walk twice
TEST_F(WalksTest, ASecondRunKnowsWhatTheFirstDidAndWasTold) {
  EXPECT_EXIT(
      {
        FirstRun();
        std::_Exit(HasFailure() ? 1 : 0);
      },
      testing::ExitedWithCode(0), "");
  Walk([&] {
    GoTo(kProcessed);
    EXPECT_THAT(RowsNow(), ElementsAre(StartsWith("2026-03-02|Balken en profielen|Veldhaven"),
                                       StartsWith("2026-03-09|Buizen|Brugmeer")));
    Press(kNext);
    ExpectStep(kDownload, kAllButtons);
    EXPECT_TRUE(Ask<bool>([] { return IsOn(kDoNotCheck); }));
    Press(kNext);
    ExpectStep(kSelect, kAllButtons);
    EXPECT_THAT(RowsNow(), ElementsAre(StartsWith("x 2026-01-05|"), StartsWith("x 2026-02-02|"),
                                       StartsWith("x 2026-02-09|"), StartsWith("x 2026-02-16|"),
                                       StartsWith("  -2026-03-02|Balken"),
                                       StartsWith("  -2026-03-09|Buizen")));
    Begin(kClose);
  });
  EXPECT_THAT(requests, IsEmpty());
}
#endif

TEST_F(WalksTest, AProductTableThatIsNoneLeadsBackToItsChoice) {
  {
    const auto connection =
        test_support::OpenConnection(files::ToText(table), kProductTablePassword);
    database::Recordset identity;
    identity.Open(ProductTable::SysDBInfo::kTable, *connection, database::CursorType::kKeyset,
                  database::LockType::kOptimistic);
    identity(ProductTable::SysDBInfo::kAppType) = std::wstring(L"ANOTHER");
    identity.Update();
  }
  ExpectRefused("is not an Orvane product table.");
}

TEST_F(WalksTest, AProductTableInUseIsLeftAlone) {
  const auto host_product = jet::Database::Open(table, WithPassword());
  ExpectRefused("already in use");
}

TEST_F(WalksTest, AFailingRecordIsToldAndNothingIsCompacted) {
  std::string as_imported;
  Walk([&] {
    GoToSelect();
    ASSERT_THAT(RowsNow(), testing::SizeIs(5));
    ASSERT_THAT(RowsNow().at(4), HasSubstr("2026-02-16|Plaatstaal|Brugmeer"));
    CheckOnly({4});
    Press(kNext);
    EXPECT_THAT(MessageNow(), StartsWith("Not all price updates were applied completely. See"));
    as_imported = ReadAll(table);
    Press(kOk);
    ExpectStep(kImport, kLastButtons);
    EXPECT_THAT(
        RowsNow(),
        testing::Contains("!Not applied|Article price: the discount 'B-ONBEKEND' was not found."));
    Begin(kClose);
  });
  EXPECT_TRUE(ReadAll(table) == as_imported);
  EXPECT_FALSE(fs::exists(compacted));
  EXPECT_THAT(ReadAll(installation / "paplog.txt"), HasSubstr("'B-ONBEKEND' was not found."));
  EXPECT_THAT(Register(), IsEmpty());
  EXPECT_EQ(Setting("PTLocation"), table.string()) << "the wizard finishes all the same";
  ExpectSound();
}

}  // namespace
}  // namespace walks
