// The select page: which updates it offers, how, and what the user may do with them.
#include "wizard/usrSelectPap.h"

#include <gmock/gmock.h>

#include "app/modGeneralFunctions.h"
#include "demo/installation.h"
#include "platform/files/file_lock.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "platform/text/date.h"
#include "store/modProductTable.h"
#include "tests/support/file_protection.h"
#include "tests/support/memory_registry.h"
#include "tests/support/surface_test.h"
#include "updates/modSharedPapFolder.h"
#include "updates/modSharedPapRegister.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr wchar_t kOwnKey[] = L"Software\\Velkor Software\\Orvane\\3.2\\PAP32\\";

class usrSelectPapTest : public test_support::ProductTableTest {
 protected:
  usrSelectPapTest() {
    settings.objRegistry = &registry;
    settings.strVersionSubKey = L"3.2\\PAP32\\";
    settings.strProgramFolder = folder.Text("");
    page.SetStepText = [this](const std::wstring& vCaption) { step_text = vCaption; };
    page.AanzettenVolgende = [this](bool vAan) { next.push_back(vAan); };
    AvailablePaps.reset();
  }
  ~usrSelectPapTest() override { AvailablePaps.reset(); }

  // Assortment A and B of supplier S; C is there without a supplier.
  void FillProductTable() {
    AddRow(L"Supplier", {{L"Code", L"S"}});
    for (const wchar_t* code : {L"A", L"b", L"C"}) AddRow(L"Assortment", {{L"AssCode", code}});
    for (const std::int32_t assortment : {1, 2})
      AddRow(L"Ass_Suppl", {{L"fkAssNr", assortment}, {L"fkSupplierID", std::int32_t{1}}});
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

  test_support::MemoryRegistry registry;
  usrSelectPap page;
  std::wstring step_text;
  std::vector<bool> next;  // the values of AanzettenVolgende
};

TEST_F(usrSelectPapTest, OffersWhatTheProductTableHas) {
  FillProductTable();
  WriteUpdate(L"1.PRC", "C");       // nobody delivers it
  WriteUpdate(L"2.PRC", "a", "s");  // codes compare without case
  WriteUpdate(L"3.PRC", "A", "T");  // no such supplier
  WriteUpdate(L"4.prc", "B");
  WriteUpdate(L"5.PRC", "A");
  ASSERT_TRUE(Process(L"4.prc"));
  ASSERT_TRUE(Process(L"5.prc"));  // another case: not this file
  Init();
  EXPECT_THAT(page.lvPrc.Columns(), ElementsAre(L"#1000", L"#1001", L"#1002", L"#1003", L"#1004"));
  EXPECT_TRUE(page.lvPrc.CheckBoxes());
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

TEST_F(usrSelectPapTest, ChecksDecideWhatIsSelectedAndWhetherTheUserMayGoOn) {
  FillProductTable();
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

  page.SetVisible(false);
  page.lvPrc.Check(0, true);
  EXPECT_FALSE(page.lvPrc.PressKey(L' '));
  EXPECT_THAT(SelectedNames(), IsEmpty()) << "on a page that is hidden";
  page.SetVisible(true);

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
  FillProductTable();
  std::filesystem::create_directory(folder / "PAP32");
  const test_support::MemoryRegistry::Place place = {registry::RootKey::kCurrentUser, kOwnKey,
                                                     L"ProcessedFilesSP1"};
  const struct {
    std::optional<std::wstring> before;
    std::wstring after;
  } cases[] = {{{}, L"True"}, {L"false", L"True"}, {L"yes", L"yes"}};
  for (const auto& c : cases) {
    registry.values.clear();
    if (c.before) registry.values[place] = *c.before;
    Init();
    EXPECT_EQ(registry.values[place], registry::Value(c.after));
  }
}

TEST_F(usrSelectPapTest, WithoutUpdatesThereIsNothingToGoOnWith) {
  FillProductTable();
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
  ASSERT_EQ(prompt.messages.size(), 1U);
  EXPECT_EQ(prompt.messages[0].text, L"De folder met prijsaanpassingen is niet gevonden!");
}

// The scan ends there, and the page says why and with which file.
TEST_F(usrSelectPapTest, AFileThatCannotBeReadEndsTheScan) {
  FillProductTable();
  WriteUpdate(L"1.PRC", "A");
  WriteUpdate(L"2.PRC", "A");
  Init();
  const std::filesystem::path file = folder / "PAP32" / "2.PRC";
  const auto expect_reported = [&](const wchar_t* vNumber) {
    step_text = L"of the page before";
    Init();
    EXPECT_EQ(step_text, L"#41 #10");
    EXPECT_THAT(Keys(), IsEmpty());
    EXPECT_THAT(next, ElementsAre(false));
    ASSERT_EQ(prompt.messages.size(), 1U);
    EXPECT_THAT(prompt.messages[0].text, HasSubstr(L"usrSelectPap.Init (Sub)"));
    EXPECT_THAT(prompt.messages[0].text, HasSubstr(vNumber));
    EXPECT_THAT(prompt.messages[0].text, HasSubstr(L"2.PRC"));
    prompt.messages.clear();
  };
  {
    for (const std::filesystem::path& path : {folder.path(), files::ToPath(product_table)})
      std::filesystem::permissions(path, std::filesystem::perms::all);
    const test_support::ReadProtection protection(file);
    expect_reported(L"Error = 70:");
  }
  folder.Write(file, "[DATE]\r\n-9990101\r\n");
  expect_reported(L"Error = 5:");
}

TEST_F(usrSelectPapTest, AProductTableThatCannotBeOpenedOffersNothing) {
  FillProductTable();
  WriteUpdate(L"1.PRC", "A");
  {
    const files::FileLock somebody(files::ToPath(product_table), files::MissingFile::kHoldNothing);
    Init();
  }
  EXPECT_THAT(Keys(), IsEmpty());
  EXPECT_THAT(next, ElementsAre(false));
  EXPECT_FALSE(prompt.messages.empty());
  EXPECT_THAT(prompt.messages.back().text, HasSubstr(L"#56"));
  Init();
  EXPECT_THAT(Keys(), ElementsAre(L"1P"));
}

TEST_F(usrSelectPapTest, FiveThousandUpdates) {
  FillProductTable();
  constexpr int kFiles = 5000;
  for (int i = 0; i < kFiles; ++i) WriteUpdate(std::to_wstring(10000 + i) + L".PRC", "A");
  ASSERT_TRUE(Process(L"12345.PRC"));
  Init();
  ASSERT_EQ(page.lvPrc.Items().size(), 5000U);
  EXPECT_EQ(page.SelectedPAP().size(), 4999U);
  EXPECT_EQ(page.lvPrc.Item(4999).key, L"5000P");
  EXPECT_FALSE(page.lvPrc.Item(2345).checked);
}

}  // namespace
