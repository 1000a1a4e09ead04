// The select page: which updates it offers, how, and what the user may do with them.
#include "wizard/usrSelectPap.h"

#include <gmock/gmock.h>

#include "app/modGeneralFunctions.h"
#include "platform/files/file_lock.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "store/modProductTable.h"
#include "tests/support/surface_test.h"
#include "updates/modSharedPapFolder.h"
#include "updates/modSharedPapRegister.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class usrSelectPapTest : public test_support::ProductTableTest {
 protected:
  usrSelectPapTest() {
    settings.strProgramFolder = folder.Text("");
    page.SetStepText = [this](const std::wstring& vCaption) { step_text = vCaption; };
    page.AanzettenVolgende = [this](bool vAan) { next.push_back(vAan); };
    AddSupplierOf({L"A", L"b"});
    AddRow(L"Assortment", {{L"AssCode", L"C"}});  // which nobody delivers
    CloseConnection();
  }

  void WriteUpdate(const std::wstring& vName, const std::string& vAssortment,
                   const std::string& vSupplier = "S") const {
    folder.Write(files::ToPath(L"PAP32") / files::ToPath(vName),
                 "[VERSION]\r\n3.2\r\n[DATE]\r\n20260105\r\n[ASSORTMENTCODE]\r\n" + vAssortment +
                     "\r\n[ASSORTMENTDESCRIPTION]\r\nBeams\r\n[SUPPLIERCODE]\r\n" + vSupplier +
                     "\r\n[SUPPLIERDESCRIPTION]\r\nFirst\r\n[REMARK]\r\none\r\ntwo\r\n");
  }
  bool Process(const std::wstring& vName) {
    clsOrvPap pap;
    pap.FilePath = L"\\" + vName;
    pap.AssortmentDescription = L"Beams";
    pap.SupplierDescription = L"First";
    return SetPapProcessed(product_table, pap, true);
  }
  void Init() {
    next.clear();
    page.Init(product_table);
  }
  std::vector<std::wstring> Keys() const {
    std::vector<std::wstring> keys;
    for (const controls::ListItem& item : page.lvPrc.Items()) keys.push_back(item.key);
    return keys;
  }
  std::vector<std::wstring> SelectedNames() const {
    std::vector<std::wstring> names;
    for (const auto& pap : page.SelectedPAP()) names.push_back(GetFileName(pap->FilePath));
    return names;
  }

  usrSelectPap page;
  std::wstring step_text;
  std::vector<bool> next;  // the values of AanzettenVolgende
};

TEST_F(usrSelectPapTest, OffersWhatTheProductTableHas) {
  WriteUpdate(L"1.PRC", "C");
  WriteUpdate(L"2.PRC", "a", "s");  // codes compare without case
  WriteUpdate(L"3.PRC", "A", "T");  // no such supplier
  WriteUpdate(L"4.prc", "B");
  WriteUpdate(L"5.PRC", "A");
  ASSERT_TRUE(Process(L"4.prc"));
  ASSERT_TRUE(Process(L"5.prc"));  // another case: not this file
  Init();
  EXPECT_THAT(page.lvPrc.Columns(), ElementsAre(L"#1000", L"#1001", L"#1002", L"#1003", L"#1004"));
  EXPECT_THAT(Keys(), ElementsAre(L"2P", L"4P", L"5P")) << "positions in the folder's collection";

  const controls::ListItem& fresh = page.lvPrc.Item(0);
  EXPECT_EQ(fresh.text, L"2026-01-05");
  EXPECT_THAT(fresh.sub_items, ElementsAre(L"Beams", L"First", L"#40", L"one\r\ntwo"));
  EXPECT_TRUE(fresh.checked);
  EXPECT_EQ(fresh.colour, controls::kWindowText);
  const controls::ListItem& processed = page.lvPrc.Item(1);
  EXPECT_EQ(processed.sub_items[2], L"#39");
  EXPECT_FALSE(processed.checked);
  EXPECT_EQ(processed.colour, controls::kGrayText);
  EXPECT_TRUE(page.lvPrc.Item(2).checked);

  EXPECT_EQ(step_text, L"#41 #10");
  EXPECT_THAT(next, ElementsAre(true, true, true)) << "once for each checked one, once at the end";
  EXPECT_EQ(ProductConnection, nullptr);
  EXPECT_THAT(prompt.messages, IsEmpty());
}

// A folder that nobody has tidied for years.
TEST_F(usrSelectPapTest, AThousandUpdates) {
  for (int i = 0; i < 1000; ++i) WriteUpdate(std::to_wstring(10000 + i) + L".PRC", "A");
  ASSERT_TRUE(Process(L"10345.PRC"));
  Init();
  ASSERT_EQ(page.lvPrc.Items().size(), 1000U);
  EXPECT_EQ(page.SelectedPAP().size(), 999U);
  EXPECT_EQ(page.lvPrc.Item(999).key, L"1000P");
  EXPECT_FALSE(page.lvPrc.Item(345).checked);
}

TEST_F(usrSelectPapTest, ChecksDecideWhatIsSelectedAndWhetherTheUserMayGoOn) {
  WriteUpdate(L"1.PRC", "C");
  for (const wchar_t* name : {L"2.PRC", L"3.PRC", L"4.PRC"}) WriteUpdate(name, "A");
  ASSERT_TRUE(Process(L"3.PRC"));
  Init();
  EXPECT_THAT(SelectedNames(), ElementsAre(L"2.PRC", L"4.PRC"));
  next.clear();
  page.lvPrc.Check(0, false);
  page.lvPrc.Check(2, false);
  EXPECT_THAT(SelectedNames(), IsEmpty());
  page.lvPrc.Check(1, true);
  EXPECT_THAT(SelectedNames(), ElementsAre(L"3.PRC")) << "a processed one may be applied again";
  EXPECT_THAT(next, ElementsAre(true, false, true));

  next.clear();
  page.lvPrc.Select(1, true);
  page.lvPrc.Select(2, true);
  EXPECT_FALSE(page.lvPrc.PressKey(L'x'));
  EXPECT_THAT(next, IsEmpty());
  EXPECT_TRUE(page.lvPrc.PressKey(L' ')) << "or the list would toggle the item in focus again";
  EXPECT_THAT(SelectedNames(), ElementsAre(L"4.PRC"));
  page.lvPrc.Select(1, false);
  page.lvPrc.PressKey(L' ');
  EXPECT_THAT(SelectedNames(), IsEmpty());
  EXPECT_THAT(next, ElementsAre(true, false));

  // The list keeps its updates when another scan finds others.
  page.lvPrc.Check(0, true);
  std::filesystem::remove_all(folder / "PAP32");
  WriteUpdate(L"9.PRC", "A");
  std::wstring scanned = PapFolder();
  ASSERT_TRUE(GetPapCollection(scanned));
  EXPECT_THAT(SelectedNames(), ElementsAre(L"2.PRC"));
  Init();
  EXPECT_THAT(SelectedNames(), ElementsAre(L"9.PRC"));
}

TEST_F(usrSelectPapTest, TheFirstListIsRemembered) {
  std::filesystem::create_directory(folder / "PAP32");
  Init();
  EXPECT_EQ(Stored(L"ProcessedFilesSP1"), registry::Value(L"True"));
  Stored(L"ProcessedFilesSP1") = L"yes";
  Init();
  EXPECT_EQ(Stored(L"ProcessedFilesSP1"), registry::Value(L"yes"));
}

TEST_F(usrSelectPapTest, WithoutUpdatesThereIsNothingToGoOnWith) {
  WriteUpdate(L"1.PRC", "A");
  Init();
  ASSERT_EQ(page.lvPrc.Items().size(), 1U);
  std::filesystem::remove(folder / "PAP32" / "1.PRC");
  Init();
  EXPECT_THAT(Keys(), IsEmpty());
  EXPECT_THAT(next, ElementsAre(false));
  EXPECT_THAT(prompt.messages, IsEmpty());

  WriteUpdate(L"1.PRC", "A");
  Init();
  std::filesystem::remove_all(folder / "PAP32");
  Init();
  EXPECT_THAT(Keys(), IsEmpty()) << "not what an earlier visit found";
  EXPECT_THAT(next, ElementsAre(false));
  EXPECT_THAT(Boxes(), ElementsAre("De folder met prijsaanpassingen is niet gevonden!"));
}

// The scan ends there, and the page says why and with which file.
TEST_F(usrSelectPapTest, AFileThatCannotBeReadEndsTheScan) {
  WriteUpdate(L"1.PRC", "A");
  Init();
  folder.Write("PAP32/2.PRC", "[DATE]\r\n-9990101\r\n");
  step_text = L"of the page before";
  Init();
  EXPECT_EQ(step_text, L"#41 #10");
  EXPECT_THAT(Keys(), IsEmpty());
  EXPECT_THAT(next, ElementsAre(false));
  EXPECT_THAT(Boxes(),
              ElementsAre(testing::AllOf(HasSubstr("usrSelectPap.Init (Sub)\r\nError = 5: "),
                                         HasSubstr("2.PRC'"))));
}

TEST_F(usrSelectPapTest, AProductTableThatCannotBeOpenedOffersNothing) {
  WriteUpdate(L"1.PRC", "A");
  {
    const files::FileLock somebody(files::ToPath(product_table), files::MissingFile::kHoldNothing);
    Init();
  }
  EXPECT_THAT(Keys(), IsEmpty());
  EXPECT_THAT(next, ElementsAre(false));
  EXPECT_THAT(Boxes(), testing::Contains(HasSubstr("#56")));
  Init();
  EXPECT_THAT(Keys(), ElementsAre(L"1P"));
}

}  // namespace
