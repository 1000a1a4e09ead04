// The wizard's form without a window: every way from step to step, what a failing compaction
// leaves, and what stands where.
#include "wizard/frmOrvPap.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <optional>

#include "platform/files/file_lock.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "store/modProductTable.h"
#include "tests/support/scripted_server.h"
#include "tests/support/surface_test.h"

namespace {

namespace fs = std::filesystem;

using testing::IsEmpty;
using text::WideToUtf8;

// An update of a supplier and an assortment that the product table has.
constexpr char kUpdate[] =
    "[VERSION]\r\n3.2\r\n[ASSORTMENTCODE]\r\nA\r\n[ASSORTMENTDESCRIPTION]\r\nBeams\r\n"
    "[SUPPLIERCODE]\r\nS\r\n[SUPPLIERDESCRIPTION]\r\nFirst\r\n[DATE]\r\n20260105\r\n";

// A product table with one update that can be applied to it, and a server that offers another.
class frmOrvPapTest : public test_support::ProductTableTest {
 protected:
  frmOrvPapTest() {
    settings.strProgramFolder = folder.Text("program");
    Stored(L"PTLocation") = product_table;
    Stored(L"Backup") = std::wstring(L"False");
    Stored(L"DelFilesSP1") = std::wstring(L"True");
    AddSupplierOf({L"A"});
    folder.Write("program/PAP32/20260105_S_A.PRC", kUpdate);
    form.Load();
    form.Resized({.width = 9690, .height = 7800}, {.width = 9600, .height = 7200});
    form.InitForm();
  }

  // The page that is shown and the title above it, the caption of Next, and which buttons the user
  // can press: "<", ">", "x".
  std::string Shown() {
    std::string shown;
    const std::pair<const controls::Page*, const char*> pages[] = {
        {&form.usrWelkom1, "welcome"},         {&form.usrTarget1, "target"},
        {&form.usrPapProcessed1, "processed"}, {&form.usrDownload1, "download"},
        {&form.usrSelectPap1, "select"},       {&form.usrImport1, "import"}};
    for (const auto& [page, name] : pages) {
      if (page->Visible()) shown += name;
    }
    if (form.usrDownload1.Visible()) {
      if (form.usrDownload1.frStep1.Visible()) shown += "1";
      if (form.usrDownload1.frStep2.Visible()) shown += "2";
      if (form.usrDownload1.frStep3.Visible()) shown += "3";
    }
    shown += " " + WideToUtf8(form.lbTitle.Caption()) + " " +
             WideToUtf8(form.cmdVolgende.Caption()) + " ";
    const auto add = [&shown](const controls::Button& vButton, char vMark) {
      if (vButton.Enabled() && vButton.Visible()) shown += vMark;
    };
    add(form.cmdVorige, '<');
    add(form.cmdVolgende, '>');
    add(form.cmdAnnuleren, 'x');
    return shown;
  }
  std::string Next() {
    form.cmdVolgende.Press();
    return Shown();
  }
  std::string Previous() {
    form.cmdVorige.Press();
    return Shown();
  }

  const fs::path compacted = files::ToPath(product_table + L"_tmp");
  test_support::ScriptedServer server{[](auto& peer, const std::string& head) {
    peer.Send(test_support::Response(test_support::PathOf(head).ends_with("Info.txt")
                                         ? "OrvPapInfo\r\n20260202_S_A.PRC,Beams,First,20260202," +
                                               std::to_string(sizeof kUpdate - 1) + ",\r\n"
                                         : kUpdate));
  }};
  frmOrvPap form{server.Address()};
};

TEST_F(frmOrvPapTest, EveryWayFromStepToStep) {
  EXPECT_EQ(Shown(), "welcome #0 #1 >x");
  EXPECT_EQ(Next(), "target #42 #1 <>x");
  form.usrTarget1.txt_PTLocation.Type(folder.Text("missing.pt"));
  EXPECT_EQ(Next(), "target #42 #1 <>x");
  EXPECT_THAT(Boxes(), testing::Not(IsEmpty()));
  EXPECT_EQ(ProductConnection, nullptr) << "the user reads; the host product may work";
  EXPECT_EQ(Previous(), "welcome #0 #1 >x");
  Next();
  form.usrTarget1.txt_PTLocation.Type(product_table);
  EXPECT_EQ(Next(), "processed #132 #1 <>x");
  EXPECT_EQ(form.lbStap.Caption(), L"#133 #10");
  EXPECT_EQ(Previous(), "target #42 #1 <>x");
  Next();
  EXPECT_EQ(Next(), "download1 #6 #1 <>x");
  EXPECT_EQ(Previous(), "processed #132 #1 <>x");
  Next();

  form.usrDownload1.optCheckDownload[1].Choose();
  EXPECT_EQ(Next(), "select #41 #1 <>x") << "the server is not asked";
  EXPECT_THAT(server.Requests(), IsEmpty());
  EXPECT_EQ(Previous(), "download1 #6 #1 <>x");
  form.usrDownload1.optCheckDownload[0].Choose();
  EXPECT_EQ(Next(), "download2 #6 #1 <>x");
  EXPECT_EQ(Previous(), "download1 #6 #1 <>x");
  Next();
  ASSERT_EQ(form.usrDownload1.lvPrc.Items().size(), 1U);
  form.usrDownload1.lvPrc.Check(0, false);
  EXPECT_EQ(Next(), "select #41 #1 <>x") << "nothing is to be fetched";
  EXPECT_EQ(form.usrSelectPap1.lvPrc.Items().size(), 1U);
  Previous();
  Next();
  EXPECT_EQ(Next(), "download3 #6 #1 <>x");
  EXPECT_EQ(Previous(), "download2 #6 #1 <>x");
  EXPECT_EQ(Next(), "select #41 #1 <>x") << "it is there already";
  EXPECT_EQ(form.usrSelectPap1.lvPrc.Items().size(), 2U);

  for (const std::size_t update : {0U, 1U}) form.usrSelectPap1.lvPrc.Check(update, false);
  EXPECT_EQ(Shown(), "select #41 #1 <x") << "nothing to apply";
  form.usrSelectPap1.lvPrc.Check(0, true);
  const std::wstring status = form.lbStap.Caption();
  folder.Write(compacted, "of an earlier run");
  EXPECT_EQ(Next(), "import #47 #3 <>");
  EXPECT_FALSE(fs::exists(compacted));
  EXPECT_EQ(form.lbStap.Caption(), status);
  EXPECT_EQ(Previous(), "select #41 #1 <>") << "Cancel stays hidden";
  EXPECT_THAT(prompt.messages, IsEmpty());
}

// What stands beside the product table after a compaction that something is in the way of.
TEST_F(frmOrvPapTest, AFailedCompactionLeavesTheProductTable) {
  while (!form.usrDownload1.Visible()) Next();
  form.usrDownload1.optCheckDownload[1].Choose();
  Next();
  // A folder with something in it cannot be deleted like a file.
  folder.Write(compacted / "file", "in the way");
  EXPECT_EQ(Next(), "import #47 #3 <>");
  EXPECT_TRUE(fs::is_directory(compacted));
  EXPECT_THAT(Rows(L"PriceUpdates", {L"FileName"}), testing::ElementsAre("20260105_S_A.PRC"));
  CloseConnection();
  fs::remove_all(compacted);

  std::optional<files::FileLock> somebody;
  pump.meanwhile = [&] {
    if (fs::exists(compacted) && ProductConnection == nullptr && !somebody) {
      somebody.emplace(files::ToPath(product_table), files::MissingFile::kHoldNothing);
    }
  };
  Previous();
  form.usrSelectPap1.lvPrc.Check(0, true);
  EXPECT_EQ(Next(), "import #47 #3 <>");
  ASSERT_TRUE(somebody);
  EXPECT_TRUE(fs::exists(compacted)) << "the copy over the product table failed";
  EXPECT_THAT(prompt.messages, IsEmpty());
}

TEST_F(frmOrvPapTest, EverythingKeepsItsPlaceInATallerWindow) {
  form.Resized({.width = 12000, .height = 9600}, {.width = 9600, .height = 9000});
  EXPECT_EQ(form.Outer().width, 9690);
  const controls::Bounds next = form.cmdVolgende.Place();
  EXPECT_EQ(next.left + next.width, 9600 - 60);
  EXPECT_EQ(next.top + next.height, 9000 - 60);
  EXPECT_EQ(form.cmdVorige.Place().left, next.left - next.width - 120);
  EXPECT_EQ(form.usrImport1.Place(),
            (controls::Bounds{
                .left = 0, .top = 1140, .width = 9600, .height = 9000 - next.height - 1260}));
  EXPECT_EQ(form.txtVersion.Place().width, form.cmdAnnuleren.Place().left - 120);
}

}  // namespace
