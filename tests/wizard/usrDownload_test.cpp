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

class usrDownloadTest : public DownloadPageTest {};

TEST_F(usrDownloadTest, TheFirstStepAsksAndClearsTheFolderOnce) {
  folder.Write("program/PAP32/old.PRC", "");
  folder.Write("program/PAP32/notes.txt", "");
  page.Init(1);
  EXPECT_TRUE(page.CheckInet()) << "the default";
  EXPECT_THAT(status, ElementsAre("#7 #10"));
  EXPECT_FALSE(Fetched("old.PRC"));
  EXPECT_TRUE(Fetched("notes.txt"));
  EXPECT_EQ(Stored(L"DelFilesSP1"), registry::Value(L"True"));

  // From now on the files stay, and so does what the user chose on the page.
  folder.Write("program/PAP32/new.PRC", "");
  page.optCheckDownload[1].Choose();
  Stored(L"CheckInet") = L"True";
  page.Init(1);
  EXPECT_TRUE(Fetched("new.PRC"));
  EXPECT_FALSE(page.CheckInet());

  Stored(L"CheckInet") = L"False";
  usrDownload other(server.Address());
  other.Init(1);
  EXPECT_FALSE(other.CheckInet());
  EXPECT_THAT(server.Requests(), IsEmpty());
}

TEST_F(usrDownloadTest, AFolderThatCannotBeClearedIsTriedAgain) {
  std::filesystem::remove_all(folder / "program" / "PAP32");
  page.Init(1);
  EXPECT_THAT(Boxes(), ElementsAre("De folder met prijsaanpassingen is niet gevonden!"));
  EXPECT_THAT(registry.values, IsEmpty());
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
  EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(usrDownloadTest, NothingToDownload) {
  EXPECT_THAT(FetchIndex(), ElementsAre("#8 #10", "#28", "#29", "#1022"));
  EXPECT_THAT(FetchFiles(), ElementsAre("#9 #10"));
  index = "  OrvPapInfo  \n1_S_C.PRC,a,s,20260105,1,";
  EXPECT_THAT(FetchIndex(), ElementsAre("#8 #10", "#28", "#29", "#1023"));
  EXPECT_THAT(page.SelectedDownloadFiles(), IsEmpty());
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
  EXPECT_EQ(page.ProgressBar1.Value(), 100);
  EXPECT_EQ(page.txtStatus.Text(), L"Downloaden bestand 1_S_A.PRC\r\n#22");
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
  EXPECT_THAT(Boxes(),
              ElementsAre("#1024 " + text::WideToUtf8(folder.Text("program")) +
                          text::WideToUtf8(std::wstring(1, files::Separator())) + "PAP32"));
}

}  // namespace
