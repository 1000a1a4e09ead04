// paptool apply: what it prints, where, and with which exit status.
#include <gmock/gmock.h>

#include "store/modProductTable.h"
#include "tests/tools/paptool_test.h"
#include "updates/modSharedPapFolder.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kGood[] =
    "[VERSION]\r\n3.2\r\n\r\n[ASSORTMENTCODE]\r\nBEAMS\r\n\r\n[ASSORTMENTDESCRIPTION]"
    "\r\nBeams\r\n\r\n"
    "[SUPPLIERCODE]\r\nS1\r\n\r\n[SUPPLIERDESCRIPTION]\r\nFirst\r\n\r\n[PrcDate]"
    "\r\n20260105\r\n\r\n"
    "[NEW SUPPLIER]\r\n\"S1\",\"First\",1,2\r\n\r\n"
    "[NEW ASSORTMENT]\r\n\"BEAMS\",\"Beams\",1,1,True,True,0,\"\"\r\n\r\n"
    "[NEW ASSSUPPL]\r\n\"BEAMS\",\"S1\",1\r\n\r\n";

class ApplyCommandTest : public PaptoolTest {
 protected:
  // Without a backup, which has a test of its own.
  ProgramOutcome Apply(const std::string& table, const std::vector<std::string>& updates) {
    std::vector<std::string> arguments = {"--no-backup", "--table", table, "--language",
                                          "english.lng"};
    arguments.insert(arguments.end(), updates.begin(), updates.end());
    return RunApply(arguments);
  }
  ProgramOutcome RunApply(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"apply", "--log", Path("log.txt")});
    return Run(arguments);
  }
};

TEST_F(ApplyCommandTest, PrintsWhatTheListShows) {
  const std::string table = MakeProductTable();
  folder.Write("good.PRC", kGood);
  folder.Write("bad.prc", std::string(kGood) + "[UPDATE PRICEDATA]\r\n\"X\",1,1,1,1,1,,,\r\n");
  const std::string good = Path("good.PRC");
  const std::string bad = Path("bad.prc");

  const ProgramOutcome once = Apply(table, {good});
  EXPECT_EQ(once.status, 0);
  EXPECT_THAT(Lines(once.out), ElementsAre("Price update\t" + good, "Assortment\tBEAMS - Beams",
                                           "Supplier\tS1 - First", "Price update\tfinished"));
  EXPECT_THAT(once.err, IsEmpty());

  // A refusal in one update stops neither it nor the next.
  const ProgramOutcome both = Apply(table, {bad, good});
  EXPECT_EQ(both.status, 1);
  EXPECT_THAT(
      Lines(both.out),
      ElementsAre("Price update\t" + bad, "Assortment\tBEAMS - Beams", "Supplier\tS1 - First",
                  "! Not applied\tArticle price: the article 'X' was not found.",
                  "Price update\tfinished",  //
                  "Price update\t" + good, "Assortment\tBEAMS - Beams", "Supplier\tS1 - First",
                  "Price update\tfinished"));
  EXPECT_THAT(both.err, IsEmpty());
}

// The link that would take the dates is missing: no line of the list tells.
TEST_F(ApplyCommandTest, NamesAnUpdateThatFailedInSilence) {
  const std::string lines = kGood;
  folder.Write("unlinked.PRC", lines.substr(0, lines.find("[NEW ASSSUPPL]")));
  const ProgramOutcome outcome = Apply(MakeProductTable(), {Path("unlinked.PRC")});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(Lines(outcome.out), testing::SizeIs(4));
  EXPECT_THAT(Lines(outcome.err), ElementsAre(testing::EndsWith(": / " + Path("unlinked.PRC"))));
}

// The import does not get past such a line, which must not look like a program that hangs. Without
// a product table it never comes to that.
TEST_F(ApplyCommandTest, NamesALineThatIsSplitWithoutEnd) {
  folder.Write("endless.PRC", std::string(kGood) + "[NEW SERIE]\r\nA,x,1,True,\r\n\"B,1\r\n");
  const ProgramOutcome outcome = Apply(Path("no such table.pt"), {Path("endless.PRC")});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, HasSubstr(Path("endless.PRC") + ", line 30: endless: "));
}

// Nothing is opened before all updates are known to be usable.
TEST_F(ApplyCommandTest, UnusableUpdatesStopEverything) {
  folder.Write("good.PRC", kGood);
  folder.Write("good.txt", kGood);
  folder.Write("old.PRC", "[VERSION]\r\n3.20\r\n");
  folder.Write("empty.PRC", "");
  folder.Write("folder.PRC/inside", "");
  for (const char* name : {"missing.PRC", "good.txt", "old.PRC", "empty.PRC", "folder.PRC"}) {
    SCOPED_TRACE(name);
    const ProgramOutcome outcome = Apply(Path("no such table.pt"), {Path("good.PRC"), Path(name)});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.out, IsEmpty());
    ASSERT_EQ(Lines(outcome.err).size(), 1u);
    EXPECT_THAT(outcome.err, HasSubstr(Path(name)));
  }
  EXPECT_FALSE(std::filesystem::exists(folder / "log.txt"));
}

TEST_F(ApplyCommandTest, MessageBoxesAreLinesOnStandardError) {
  folder.Write("good.PRC", kGood);
  const std::string table = Path("missing.pt");
  const ProgramOutcome outcome = Apply(table, {Path("good.PRC")});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(Lines(outcome.out),
              ElementsAre(testing::StartsWith("! The product table '" + table)));
  EXPECT_THAT(Lines(outcome.err),
              ElementsAre(testing::EndsWith("ask for help: / Procedure = clsConnection."
                                            "MakenJetConnectie (Function) / Error = 3024: Could "
                                            "not find file '" +
                                            table + "'."),
                          testing::StartsWith("The product table '" + table)));
}

// The whole of the wizard's import, in the language that the program brings along: a backup before
// each update, a log, the register.
TEST_F(ApplyCommandTest, BacksUpLogsAndRegisters) {
  const std::string table = MakeProductTable();
  folder.Write("good.PRC", kGood);
  const std::string backup = Path("BEAMS_S1_20260105.pt");
  const ProgramOutcome dutch = RunApply({"--table", table, Path("good.PRC")});
  EXPECT_EQ(dutch.status, 0);
  EXPECT_EQ(Lines(dutch.out).front(), "Reservekopie\t" + backup);
  EXPECT_THAT(Lines(dutch.out), testing::Contains("Leverancier\tS1 - First"));
  EXPECT_THAT(test_support::ReadAll(folder / "log.txt"),
              HasSubstr("\r\nReservekopie: " + backup + "\r\n"));
  const auto registered = [&](const std::string& product_table) {
    return Lines(Run({"processed", "--table", product_table}).out);
  };
  EXPECT_THAT(registered(table), ElementsAre(HasSubstr("FileName"), HasSubstr("good.PRC\t2026-")));
  EXPECT_THAT(registered(backup), testing::SizeIs(1)) << "as it was before the update";

  std::filesystem::remove(folder / "BEAMS_S1_20260105.pt");
  folder.Write("BEAMS_S1_20260105.pt/in the way", "");
  const ProgramOutcome english =
      RunApply({"--table", table, "--language", "english.lng", Path("good.PRC")});
  EXPECT_EQ(english.status, 1) << "not all was done";
  EXPECT_THAT(Lines(english.out), testing::Contains("Supplier\tS1 - First"));
  EXPECT_THAT(english.err, HasSubstr("backups could not be made: / " + backup + " / "));
  EXPECT_THAT(registered(table), testing::SizeIs(2)) << "applied twice is one row";

  const ProgramOutcome unlogged =
      Run({"apply", "--no-backup", "--table", table, "--log", Path("no/log"), Path("good.PRC")});
  EXPECT_EQ(unlogged.status, 1);
  EXPECT_THAT(unlogged.err, HasSubstr("StartLog"));
}

// A backup of a product table that this process has open: copying opens the file once more and
// closes it again, which must not let go of the lock.
TEST_F(ApplyCommandTest, ABackupLeavesAnOpenProductTableLocked) {
  const std::string table = MakeProductTable();
  folder.Write("good.PRC", kGood);
  const ProductConnectionGuard end;
  ASSERT_TRUE(OpenProductTable(folder.Text("Orv.pt")));
  ASSERT_EQ(Apply(table, {Path("good.PRC")}).status, 1) << "it is refused before the backup";

  for (int backups = 0; backups < 2; ++backups) {  // over nothing, and over the first one
    EXPECT_TRUE(CopyPapFile(folder.Text("Orv.pt"), folder.Text("backup.pt")));
    EXPECT_TRUE(test_support::ReadAll(folder / "backup.pt") ==
                test_support::ReadAll(folder / "Orv.pt"));
    const ProgramOutcome refused = Apply(table, {Path("good.PRC")});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.err, HasSubstr("3045: "));
  }
  EXPECT_FALSE(CopyPapFile(folder.Text("backup.pt"), folder.Text("Orv.pt")))
      << "what is open is not replaced";

  ProductConnection.reset();
  EXPECT_EQ(Apply(table, {Path("good.PRC")}).status, 0);
}

// The log is begun over, so it must not be one of the files that matter, by whatever name.
TEST_F(ApplyCommandTest, WhatCannotBeALogOrALanguageIsRefused) {
  const std::string table = MakeProductTable();
  folder.Write("good.PRC", kGood);
  folder.Write("other.Pt", "another product table");
  folder.Write("text.lng", "no language at all\n");
  const std::string before = test_support::ReadAll(folder / "Orv.pt");
  std::filesystem::create_hard_link(folder / "Orv.pt", folder / "table.log");
  const std::pair<const char*, const char*> cases[] = {
      {"--log", "Orv.pt"},      {"--log", "good.PRC"},      {"--log", "other.Pt"},
      {"--log", "table.log"},   {"--log", "./x/../Orv.pt"}, {"--language", "text.lng"},
      {"--language", "no.lng"},
  };
  for (const auto& [option, name] : cases) {
    SCOPED_TRACE(name);
    const ProgramOutcome outcome =
        Run({"apply", "--table", table, option, Path(name), Path("good.PRC")});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.out, IsEmpty());
    EXPECT_THAT(outcome.err, HasSubstr(option == std::string("--log") ? "log" : name));
  }
  EXPECT_EQ(test_support::ReadAll(folder / "Orv.pt"), before);
  EXPECT_EQ(test_support::ReadAll(folder / "good.PRC"), kGood);
  EXPECT_EQ(test_support::ReadAll(folder / "other.Pt"), "another product table");
}

}  // namespace
