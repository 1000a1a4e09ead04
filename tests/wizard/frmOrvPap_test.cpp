// The wizard's form: every way from step to step, what a step leaves enabled, and the end.
#include "wizard/frmOrvPap.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <optional>

#include "platform/database/recordset.h"
#include "platform/files/file_lock.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "store/modProductTable.h"
#include "tests/support/memory_registry.h"
#include "tests/support/scripted_event_pump.h"
#include "tests/support/scripted_server.h"
#include "tests/support/surface_test.h"
#include "updates/modSharedPapFolder.h"

namespace {

namespace fs = std::filesystem;

using test_support::ReadAll;
using testing::ElementsAre;
using testing::IsEmpty;
using text::WideToUtf8;

constexpr wchar_t kOwnKey[] = L"Software\\Velkor Software\\Orvane\\3.2\\PAP32\\";

// An update of a supplier and an assortment that the product table has.
std::string Update(const std::string& vLines = "") {
  return "[VERSION]\r\n3.2\r\n[ASSORTMENTCODE]\r\nA\r\n[ASSORTMENTDESCRIPTION]\r\nBeams\r\n"
         "[SUPPLIERCODE]\r\nS\r\n[SUPPLIERDESCRIPTION]\r\nFirst\r\n[DATE]\r\n20260105\r\n" +
         vLines;
}

// A price for an article that there is not.
constexpr char kRefusedPrice[] = "[UPDATE PRICEDATA]\r\nX,1,1,1,1,1,,,\r\n";

// A product table with one update that can be applied to it, and a server that offers another.
class frmOrvPapTest : public test_support::ProductTableTest {
 protected:
  frmOrvPapTest() {
    settings.objRegistry = &registry;
    settings.objEventPump = &pump;
    settings.strVersionSubKey = L"3.2\\PAP32\\";
    settings.strProgramFolder = folder.Text("program");
    Stored(L"PTLocation") = product_table;
    Stored(L"Backup") = std::wstring(L"False");
    Stored(L"DelFilesSP1") = std::wstring(L"True");
    AddRow(L"Supplier", {{L"Code", L"S"}});
    AddRow(L"Assortment", {{L"AssCode", L"A"}});
    AddRow(L"Ass_Suppl", {{L"fkAssNr", std::int32_t{1}}, {L"fkSupplierID", std::int32_t{1}}});
    CloseConnection();
    Write("20260105_S_A.PRC", Update());
    AvailablePaps.reset();
    form.Load();
    form.Resized({.width = 9690, .height = 7800}, {.width = 9600, .height = 7200});
    form.InitForm();
  }
  ~frmOrvPapTest() override { AvailablePaps.reset(); }

  registry::Value& Stored(const wchar_t* vName) {
    return registry.values[{registry::RootKey::kCurrentUser, kOwnKey, vName}];
  }

  void Write(const std::string& vName, const std::string& vUpdate) const {
    folder.Write(fs::path("program/PAP32") / vName, vUpdate);
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
  // Rows that are gone, for a compaction to find.
  void LeaveGaps() {
    for (int row = 0; row < 500; ++row) AddRow(L"Supplier", {{L"Code", std::to_wstring(row)}});
    database::Recordset rows;
    rows.Open(L"Supplier", Connection(), database::CursorType::kKeyset,
              database::LockType::kOptimistic);
    for (rows.MoveNext(); !rows.Eof(); rows.MoveNext()) rows.Delete();
    rows.Close();
    CloseConnection();
  }
  // To the last step, without the server.
  std::string Import() {
    while (!form.usrDownload1.Visible()) Next();
    form.usrDownload1.optCheckDownload[1].Choose();
    Next();
    return Next();
  }

  const fs::path table = files::ToPath(product_table);
  const fs::path compacted = files::ToPath(product_table + L"_tmp");
  test_support::MemoryRegistry registry;
  test_support::ScriptedEventPump pump;
  test_support::ScriptedServer server{[](auto& peer, const std::string& head) {
    peer.Send(test_support::Response(test_support::PathOf(head).ends_with("Info.txt")
                                         ? "OrvPapInfo\r\n20260202_S_A.PRC,Beams,First,20260202," +
                                               std::to_string(Update().size()) + ",\r\n"
                                         : Update()));
  }};
  frmOrvPap form{server.Address()};
};

TEST_F(frmOrvPapTest, EveryWayFromStepToStep) {
  EXPECT_EQ(Shown(), "welcome #0 #1 >x");
  EXPECT_EQ(form.Caption(), L"#0");
  EXPECT_EQ(form.txtVersion.Caption(), L"3.2.64");

  EXPECT_EQ(Next(), "target #42 #1 <>x");
  EXPECT_EQ(Previous(), "welcome #0 #1 >x");
  Next();
  EXPECT_EQ(Next(), "processed #132 #1 <>x");
  EXPECT_EQ(form.lbStap.Caption(), L"#133 #10");
  EXPECT_EQ(ProductConnection, nullptr) << "the user reads; the host product may work";
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
  EXPECT_EQ(Next(), "import #47 #3 <>");
  EXPECT_EQ(form.lbStap.Caption(), status);
  EXPECT_EQ(Previous(), "select #41 #1 <>") << "Cancel stays hidden";
  EXPECT_THAT(prompt.messages, IsEmpty());
}

TEST_F(frmOrvPapTest, AProductTableThatIsRefusedLeadsBackToItsChoice) {
  Next();
  form.usrTarget1.txt_PTLocation.Type(folder.Text("missing.pt"));
  EXPECT_EQ(Next(), "target #42 #1 <>x");
  EXPECT_THAT(prompt.messages, testing::Not(IsEmpty()));
  EXPECT_EQ(ProductConnection, nullptr);
  EXPECT_EQ(Previous(), "welcome #0 #1 >x");
}

TEST_F(frmOrvPapTest, TheEndStoresTheChoicesAndLeavesACompactedTable) {
  folder.Write(compacted, "of an earlier run");
  LeaveGaps();
  const std::uintmax_t before = fs::file_size(table);
  pump.meanwhile = [&] {
    if (form.usrImport1.Visible() && ProductConnection != nullptr) {
      EXPECT_EQ(Shown(), "import #47 #3 ") << "nothing to press while updates are applied";
    }
  };
  EXPECT_EQ(Import(), "import #47 #3 <>");
  EXPECT_THAT(prompt.messages, IsEmpty());
  EXPECT_LT(fs::file_size(table), before);
  EXPECT_FALSE(fs::exists(compacted));
  EXPECT_TRUE(OpenProductTable(product_table)) << "it is a product table still";
  EXPECT_THAT(Rows(L"PriceUpdates", {L"FileName"}), ElementsAre("20260105_S_A.PRC"));

  form.usrTarget1.chkBackup.SetValue(true);
  Next();
  EXPECT_TRUE(form.Unloaded());
  EXPECT_EQ(Stored(L"PTLocation"), registry::Value(product_table));
  EXPECT_EQ(Stored(L"Backup"), registry::Value(std::wstring(L"True")));
  EXPECT_EQ(Stored(L"CheckInet"), registry::Value(std::wstring(L"False")));
}

TEST_F(frmOrvPapTest, AFailedImportIsToldAndCompactsNothing) {
  folder.Write(compacted, "of an earlier run");
  Write("20260105_S_A.PRC", Update(kRefusedPrice));
  EXPECT_EQ(Import(), "import #47 #3 <>");
  ASSERT_THAT(prompt.messages, testing::SizeIs(1));
  EXPECT_EQ(prompt.messages[0].text, L"#50");
  EXPECT_EQ(ReadAll(compacted), "of an earlier run");
}

// What stands beside the product table after a compaction that something is in the way of.
TEST_F(frmOrvPapTest, AFailedCompactionLeavesTheProductTable) {
  // A folder with something in it cannot be deleted like a file.
  folder.Write(compacted / "file", "in the way");
  EXPECT_EQ(Import(), "import #47 #3 <>");
  EXPECT_TRUE(fs::is_directory(compacted));
  EXPECT_THAT(Rows(L"PriceUpdates", {L"FileName"}), ElementsAre("20260105_S_A.PRC"));
  CloseConnection();
  fs::remove_all(compacted);

  std::optional<files::FileLock> somebody;
  pump.meanwhile = [&] {
    if (fs::exists(compacted) && ProductConnection == nullptr && !somebody) {
      somebody.emplace(table, files::MissingFile::kHoldNothing);
    }
  };
  Previous();
  form.usrSelectPap1.lvPrc.Check(0, true);
  EXPECT_EQ(Next(), "import #47 #3 <>");
  ASSERT_TRUE(somebody);
  EXPECT_TRUE(fs::exists(compacted)) << "the copy over the product table failed";
  EXPECT_THAT(prompt.messages, IsEmpty());
}

TEST_F(frmOrvPapTest, ClosingEndsTheWorkInHandWithoutTraces) {
  // Walks to the import and closes the form at this moment of it, counted in turns of the window;
  // returns the turns that there were.
  const auto import_until = [this](int vLast) {
    frmOrvPap another(server.Address());
    another.Load();
    another.InitForm();
    while (!another.usrDownload1.Visible()) another.cmdVolgende.Press();
    another.usrDownload1.optCheckDownload[1].Choose();
    another.cmdVolgende.Press();
    another.usrSelectPap1.lvPrc.Check(0, true);
    int turns = 0;
    pump.meanwhile = [&] {
      if (++turns == vLast && another.Close()) throw ProcessEnding();
    };
    bool ended = false;
    try {
      another.cmdVolgende.Press();
    } catch (const ProcessEnding&) {
      ended = true;
    }
    pump.meanwhile = nullptr;
    EXPECT_EQ(ended, another.Unloaded());
    EXPECT_EQ(ended, turns == vLast);
    return turns;
  };
  const int all = import_until(0);
  ASSERT_GT(all, 20);
  for (const int last : {1, 2, 5, 10, all / 2, all - 3, all - 2, all - 1, all}) {
    SCOPED_TRACE(last);
    import_until(last);
    EXPECT_FALSE(fs::exists(compacted));
    EXPECT_EQ(ProductConnection, nullptr);
    EXPECT_TRUE(OpenProductTable(product_table));
    ProductConnection.reset();
  }
}

TEST_F(frmOrvPapTest, NobodyClosesItWhileFilesAreFetched) {
  while (!form.usrDownload1.Visible()) Next();
  int refused = 0;
  pump.meanwhile = [&] {
    EXPECT_EQ(Shown(), "download2 #6 #1 ");
    refused += form.Close() ? 0 : 1;
  };
  Next();
  EXPECT_GT(std::exchange(refused, 0), 0);
  pump.meanwhile = [&] {
    if (!form.usrDownload1.frStep3.Visible()) return;
    EXPECT_EQ(Shown(), "download3 #6 #1 ");
    refused += form.Close() ? 0 : 1;
  };
  Next();
  EXPECT_GT(refused, 0);
  EXPECT_EQ(Shown(), "download3 #6 #1 <>x");
  EXPECT_FALSE(form.Unloaded());
  pump.meanwhile = nullptr;
  EXPECT_TRUE(form.Close());
}

TEST_F(frmOrvPapTest, EverythingKeepsItsPlaceInATallerWindow) {
  for (const std::int32_t height : {7200, 9000}) {
    form.Resized({.width = 12000, .height = height + 600}, {.width = 9600, .height = height});
    EXPECT_EQ(form.Outer().width, 9690);
    const controls::Bounds next = form.cmdVolgende.Place();
    const controls::Bounds cancel = form.cmdAnnuleren.Place();
    EXPECT_EQ(next.left + next.width, 9600 - 60);
    EXPECT_EQ(next.top + next.height, height - 60);
    EXPECT_EQ(form.cmdVorige.Place().left, next.left - next.width - 120);
    EXPECT_EQ(form.usrImport1.Place(),
              (controls::Bounds{
                  .left = 0, .top = 1140, .width = 9600, .height = height - next.height - 1260}));
    EXPECT_EQ(form.txtVersion.Place().width, cancel.left - 120);
  }
}

}  // namespace
