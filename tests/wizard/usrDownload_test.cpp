// The download page with a server that behaves: its three steps, what it offers, what it fetches.
#include "wizard/usrDownload.h"

#include <filesystem>

#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "store/modProductTable.h"
#include "tests/wizard/download_page_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr wchar_t kOwnKey[] = L"Software\\Velkor Software\\Orvane\\3.2\\PAP32\\";

class usrDownloadTest : public DownloadPageTest {
 protected:
  void SetSetting(const std::wstring& vName, const std::wstring& vText) {
    registry.WriteText(registry::RootKey::kCurrentUser, kOwnKey, vName, vText);
  }
  std::wstring Setting(const std::wstring& vName) const {
    const auto value = registry.Read(registry::RootKey::kCurrentUser, kOwnKey, vName);
    return value ? std::get<std::wstring>(*value) : L"";
  }
};

TEST_F(usrDownloadTest, TheFirstStepAsksAndClearsTheFolderOnce) {
  folder.Write("program/PAP32/old.PRC", "");
  folder.Write("program/PAP32/notes.txt", "");
  page.Init(1);
  EXPECT_TRUE(page.frStep1.Visible());
  EXPECT_FALSE(page.frStep2.Visible());
  EXPECT_FALSE(page.frStep3.Visible());
  EXPECT_EQ(page.optCheckDownload[0].Caption(), L"#1020");
  EXPECT_TRUE(page.CheckInet()) << "the default";
  EXPECT_THAT(status, ElementsAre("#7 #10"));
  EXPECT_FALSE(Fetched("old.PRC"));
  EXPECT_TRUE(Fetched("notes.txt"));
  EXPECT_EQ(Setting(L"DelFilesSP1"), L"True");

  // From now on the files stay, and so does what the user chose on the page.
  folder.Write("program/PAP32/new.PRC", "");
  page.optCheckDownload[1].Choose();
  SetSetting(L"CheckInet", L"True");
  page.Init(1);
  EXPECT_TRUE(Fetched("new.PRC"));
  EXPECT_FALSE(page.CheckInet());

  SetSetting(L"CheckInet", L"False");
  usrDownload other(server.Address());
  other.Init(1);
  EXPECT_FALSE(other.CheckInet());
  EXPECT_TRUE(other.optCheckDownload[1].Value());
  EXPECT_THAT(server.Requests(), IsEmpty());
}

TEST_F(usrDownloadTest, AFolderThatCannotBeClearedIsTriedAgain) {
  std::filesystem::remove_all(folder / "program" / "PAP32");
  page.Init(1);
  EXPECT_THAT(Messages(), ElementsAre("De folder met prijsaanpassingen is niet gevonden!"));
  EXPECT_EQ(Setting(L"DelFilesSP1"), L"");
}

TEST_F(usrDownloadTest, OffersWhatTheProductTableHasAndTheFolderHasNot) {
  index +=
      "1_S_C.PRC,Nobody delivers it,First,20260105,1,\r\n"
      "2_s_a.PRC,Beams,First,20260105,1536,Codes compare without case\r\n"
      "\r\n\n"
      "3_S_A.PRC,In the folder,First,20260105,1,\n"
      "   \n"
      "4_T_A.PRC,No such supplier,First,20260105,1,\r\n"
      "5_S_B.prc,Plates,First,20240230,12345,Last line";
  folder.Write("program/PAP32/3_S_A.PRC", "of any size");
  EXPECT_THAT(FetchIndex(), ElementsAre("#8 #10", "#28", "#29"));
  EXPECT_TRUE(page.frStep2.Visible());
  EXPECT_THAT(page.lvPrc.Columns(),
              ElementsAre(L"#1000", L"#1001", L"#1002", L"#1005", L"#1006", L"#1004"));
  ASSERT_THAT(Listed(), ElementsAre("2_s_a.PRC", "5_S_B.prc"));
  const controls::ListItem& first = page.lvPrc.Item(0);
  EXPECT_EQ(first.key, L"2P") << "the position in the index";
  EXPECT_EQ(first.text, L"2026-01-05");
  EXPECT_THAT(first.sub_items, ElementsAre(L"Beams", L"First", L"2_s_a.PRC", L"1.5 KB",
                                           L"Codes compare without case"));
  EXPECT_TRUE(first.checked);
  const controls::ListItem& last = page.lvPrc.Item(1);
  EXPECT_EQ(last.key, L"6P") << "a lone carriage return is a line, blanks are none";
  EXPECT_EQ(last.text, L"2024-03-01");
  EXPECT_EQ(last.sub_items[3], L"12.06 KB");
  EXPECT_EQ(ProductConnection, nullptr);
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(usrDownloadTest, NothingToDownload) {
  EXPECT_THAT(FetchIndex(), ElementsAre("#8 #10", "#28", "#29", "#1022"));
  EXPECT_THAT(FetchFiles(), ElementsAre("#9 #10"));
  index = "  OrvPapInfo  \n1_S_C.PRC,a,s,20260105,1,";
  EXPECT_THAT(FetchIndex(), ElementsAre("#8 #10", "#28", "#29", "#1023"));
  EXPECT_THAT(page.SelectedDownloadFiles(), IsEmpty());
}

// The list is filled anew whenever the form asks what is chosen.
TEST_F(usrDownloadTest, WhatTheUserUncheckedStaysUnchecked) {
  for (const char* name : {"1_S_A.PRC", "2_S_A.PRC", "3_S_B.PRC"}) Offer(name, name);
  FetchIndex();
  page.lvPrc.Check(1, false);
  EXPECT_THAT(page.SelectedDownloadFiles(), SizeIs(2));
  EXPECT_THAT(page.SelectedDownloadFiles(), SizeIs(2));
  EXPECT_FALSE(page.lvPrc.Item(1).checked);
  page.lvPrc.Check(1, true);
  page.lvPrc.Check(0, false);
  const auto selected = page.SelectedDownloadFiles();
  ASSERT_THAT(selected, SizeIs(2));
  EXPECT_EQ(selected[0]->FileName, L"2_S_A.PRC");
  EXPECT_EQ(selected[1]->FileName, L"3_S_B.PRC");
}

// First run: two of four offered files. Second run: the rest.
TEST_F(usrDownloadTest, AWalkInTwoRuns) {
  folder.Write("program/PAP32/1_S_A.PRC", "left by an older version");
  for (const char* name : {"1_S_A.PRC", "2_S_A.PRC", "3_S_B.PRC", "4_S_B.PRC", "5_S_C.PRC"})
    Offer(name, std::string("body of ") + name);
  page.Init(1);
  FetchIndex();
  EXPECT_THAT(Listed(), ElementsAre("1_S_A.PRC", "2_S_A.PRC", "3_S_B.PRC", "4_S_B.PRC"));
  page.lvPrc.Check(1, false);
  page.lvPrc.Check(3, false);
  ASSERT_THAT(page.SelectedDownloadFiles(), SizeIs(2));
  EXPECT_THAT(FetchFiles(), ElementsAre("#9 #10", "Downloaden bestand 1_S_A.PRC", "#22",
                                        "Downloaden bestand 3_S_B.PRC", "#22"));
  EXPECT_TRUE(page.frStep3.Visible());
  EXPECT_EQ(page.txtStatus.Text(),
            L"Downloaden bestand 1_S_A.PRC\r\n#22\r\nDownloaden bestand 3_S_B.PRC\r\n#22");
  EXPECT_EQ(Fetched("1_S_A.PRC"), "body of 1_S_A.PRC");
  EXPECT_EQ(Fetched("3_S_B.PRC"), "body of 3_S_B.PRC");
  EXPECT_FALSE(Fetched("2_S_A.PRC"));
  EXPECT_EQ(page.ProgressBar1.Value(), 100);

  usrDownload second(server.Address());
  second.ProductTable = product_table;
  second.Init(1);
  second.Init(2);
  const auto offered = second.SelectedDownloadFiles();
  ASSERT_THAT(offered, SizeIs(2));
  EXPECT_EQ(offered[0]->FileName, L"2_S_A.PRC");
  EXPECT_EQ(offered[1]->FileName, L"4_S_B.PRC");
  second.Init(3);
  EXPECT_EQ(Fetched("2_S_A.PRC"), "body of 2_S_A.PRC");
  EXPECT_EQ(Fetched("4_S_B.PRC"), "body of 4_S_B.PRC");
  EXPECT_THAT(Messages(), IsEmpty());
}

// Notes what a label says.
class Reader final : public controls::Control::Observer {
 public:
  explicit Reader(const controls::Label& vLabel) : m_label(vLabel) {}
  void ControlChanged() override { said.push_back(text::WideToUtf8(m_label.Caption())); }
  std::vector<std::string> said;

 private:
  const controls::Label& m_label;
};

TEST_F(usrDownloadTest, TellsWhatIsStillToComeAndHowFarItIs) {
  Offer("1_S_A.PRC", std::string(300, 'x'));
  answers[std::string(kFolderPath) + "1_S_A.PRC"] = [](auto& peer, const std::string&) {
    peer.Send(test_support::Head("300") + std::string(256, 'x'));
    peer.Pause(std::chrono::milliseconds(100));
    peer.Send(std::string(44, 'x'));
  };
  FetchIndex();
  Reader reader(page.lblProgress);
  page.lblProgress.Observe(&reader);
  FetchFiles();
  page.lblProgress.Observe(nullptr);
  EXPECT_THAT(reader.said,
              ElementsAre("Bytes (0)", "1_S_A.PRC: 44 bytes (85%)", "1_S_A.PRC: 0 bytes (100%)"));
}

TEST_F(usrDownloadTest, ALargeFileTellsTheScreenFiftyTimesASecondAtMost) {
  const std::string body(30'000'000, 'x');
  Offer("1_S_A.PRC", body);
  FetchIndex();
  Reader reader(page.lblProgress);
  page.lblProgress.Observe(&reader);
  const auto start = std::chrono::steady_clock::now();
  FetchFiles();
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  page.lblProgress.Observe(nullptr);
  EXPECT_LE(static_cast<double>(reader.said.size()), 50 * seconds.count() + 3);
  EXPECT_EQ(reader.said.back(), "1_S_A.PRC: 0 bytes (100%)");
  EXPECT_TRUE(Fetched("1_S_A.PRC") == body);
}

TEST_F(usrDownloadTest, NamesOfEveryKindOfLetter) {
  index += "1_S_A Pr\xE9%#.PRC,Beams,First,20260105,4,\r\n";  // code page 1252
  files[std::string(kFolderPath) + "1_S_A%20Pr%C3%A9%25%23.PRC"] = "body";
  index += "2_S_A&C.PRC,Beams,First,20260105,4,\r\n";
  files[std::string(kFolderPath) + "2_S_A%26C.PRC"] = "more";
  AddRow(L"Assortment", {{L"AssCode", L"A Pr\u00C9%#"}});
  AddRow(L"Assortment", {{L"AssCode", L"A&C"}});
  for (const std::int32_t assortment : {4, 5})
    AddRow(L"Ass_Suppl", {{L"fkAssNr", assortment}, {L"fkSupplierID", std::int32_t{1}}});
  CloseConnection();
  FetchIndex();
  ASSERT_THAT(Listed(), SizeIs(2));
  FetchFiles();
  EXPECT_EQ(
      test_support::ReadAll(folder / "program/PAP32" / ::files::ToPath(L"1_S_A Pr\u00E9%#.PRC")),
      "body");
  EXPECT_EQ(Fetched("2_S_A&C.PRC"), "more");
}

TEST_F(usrDownloadTest, MakesTheFolderOrSaysThatItCannot) {
  Offer("1_S_A.PRC", "body");
  FetchIndex();
  std::filesystem::remove_all(folder / "program" / "PAP32");
  FetchFiles();
  EXPECT_EQ(Fetched("1_S_A.PRC"), "body");

  std::filesystem::remove_all(folder / "program" / "PAP32");
  folder.Write("program/PAP32", "a file where the folder should be");
  EXPECT_THAT(FetchFiles(), ElementsAre("#9 #10"));
  EXPECT_THAT(Messages(),
              ElementsAre("#1024 " + text::WideToUtf8(folder.Text("program")) +
                          text::WideToUtf8(std::wstring(1, files::Separator())) + "PAP32"));
}

}  // namespace
