// The download page with servers and networks that misbehave: what the user is told, and what is
// on the disk afterwards.
#include <filesystem>

#include "app/modShared.h"
#include "platform/text/code_page.h"
#include "tests/wizard/download_page_test.h"

namespace {

using std::chrono::steady_clock;
using test_support::Head;
using test_support::Response;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kIndexPath = std::string(kFolderPath) + "Info.txt";
const std::string kFilePath = std::string(kFolderPath) + "1_S_A.PRC";

class usrDownloadBadServerTest : public DownloadPageTest {
 protected:
  static Answer Send(const std::string& vBytes) {
    return [=](auto& peer, const std::string&) { peer.Send(vBytes); };
  }
  static Answer SendAndReset(const std::string& vBytes) {
    return [=](auto& peer, const std::string&) {
      peer.Send(vBytes);
      // A reset may overtake what was sent just before.
      if (!vBytes.empty()) peer.Pause(std::chrono::milliseconds(200));
      peer.Reset();
    };
  }
  static Answer SendAndFallSilent(const std::string& vBytes) {
    return [=](auto& peer, const std::string&) {
      peer.Send(vBytes);
      peer.StaySilent();
    };
  }
};

// Every one of them leaves an empty list: nothing of an index that came in part is offered.
TEST_F(usrDownloadBadServerTest, AnIndexThatIsNone) {
  const std::string line = "1_S_A.PRC,Beams,First,20260105,4,\r\n";
  const std::string sound = "OrvPapInfo\r\n" + line;
  std::string many = sound;
  for (int i = 0; i < 500'000; ++i) many += "x\n";
  struct Case {
    const char* what;
    Answer answer;
    const char* message;
    bool slow = false;
  };
  const Case cases[] = {
      {"closed", Send(""), "#26"},
      {"reset", SendAndReset(""), "#26"},
      {"silent", SendAndFallSilent(""), "#26", true},
      {"silent after the headers", SendAndFallSilent(Head("100")), "#26", true},
      {"no HTTP", Send("220 mail server ready\r\n\r\n"), "#26"},
      {"cut off", Send(Head("5000") + sound + line), "#26"},
      {"empty", Send(Response("")), "#26"},
      {"too large", Send(Response(sound + std::string(34'000'000, '\n'))), "#26"},
      {"redirected for ever", Send(test_support::Redirect(kIndexPath)), "#26"},
      {"without rights", Send(Response("who are you", "401 Unauthorized")), "#27"},
      {"not there", Send(Response("no such file", "404 Not Found")), "#27"},
      {"not there, and nothing said", Send(Response("", "404 Not Found")), "#26"},
      {"a fault that looks like an index", Send(Response(sound, "500 Fault")), "#27"},
      {"of another kind", Send(Response("orvpapinfo\r\n" + line)), "#27"},
      {"with more in its first line", Send(Response("OrvPapInfo 2\r\n" + line)), "#27"},
      {"with an empty first line", Send(Response("\r\n" + sound)), "#27"},
      {"with more files than there can be", Send(Response(many)), "#27"},
      {"binary", Send(Response({"\0\xFF\xFE\n\0\r\n\x1A,,,", 11})), "#27"},
  };
  for (const Case& bad : cases) {
    SCOPED_TRACE(bad.what);
    usrDownload& asked = bad.slow ? impatient : page;
    answers[kIndexPath] = Send(Response(sound));
    Step(2, asked);
    ASSERT_THAT(asked.SelectedDownloadFiles(), SizeIs(1));
    answers[kIndexPath] = bad.answer;
    EXPECT_THAT(Step(2, asked), ElementsAre("#8 #10", "#28", "#29"));
    EXPECT_THAT(Boxes(), ElementsAre(bad.message));
    EXPECT_THAT(asked.SelectedDownloadFiles(), IsEmpty()) << "nor anything of the index before";
  }
}

TEST_F(usrDownloadBadServerTest, NoServer) {
  const auto refused = test_support::Socket::Refuse();
  usrDownload lonely(L"http://127.0.0.1:" + std::to_wstring(refused.Port()));
  lonely.Init(2);
  EXPECT_THAT(Boxes(), ElementsAre("#26"));
}

TEST_F(usrDownloadBadServerTest, LinesThatAreBadCostOnlyThemselves) {
  index += std::string("\0\0\0\r\n,,,,,\r\n1_S_A.PRC\r\nx\r\n", 26);
  index += std::string(100'000, '_') + "\r\n" + std::string(100'000, ',') + "\r\n";
  index += "2_S_A.PRC,a,s,yesterday,much,\r\n3_S_A.PRC,a,s,99999999,-1,r\tm\r\n";
  Offer("4_S_A.PRC", "body");
  FetchIndex();
  // The first name ends in a carriage return, its line has nothing behind it.
  EXPECT_THAT(Listed(), ElementsAre("1_S_A.PRC", "2_S_A.PRC", "3_S_A.PRC", "4_S_A.PRC"));
  EXPECT_EQ(page.lvPrc.Item(1).sub_items[3], L"0 KB");
  EXPECT_EQ(page.lvPrc.Item(2).sub_items[4], L"rm");
  FetchFiles();
  EXPECT_EQ(Fetched("4_S_A.PRC"), "body");
  EXPECT_FALSE(Fetched("2_S_A.PRC"));
  EXPECT_THAT(Boxes(), IsEmpty());
}

// The work grows with the lines and no faster, whatever they hold, and the window stays alive.
TEST_F(usrDownloadBadServerTest, AnIndexOfTwentyMegabytes) {
  constexpr int kRefused = 20'000;
  for (int i = 0; i < kRefused; ++i)
    index += "../" + std::to_string(i) + "_S_A.PRC,Beams,First,20260105,4,\r\n";
  const std::string line =
      "_T_A.PRC,Somebody else's beams,Another supplier,20260105,12345,none\r\n";
  for (int i = 0; index.size() < 20'000'000; ++i) index += std::to_string(i) + line;
  Offer("1_S_A.PRC", "body");
  const auto start = steady_clock::now();
  FetchIndex();
  pump.calls = 0;
  EXPECT_THAT(FetchFiles(), SizeIs(1 + 2 * (kRefused + 1)));
  EXPECT_GE(pump.calls, kRefused);
  EXPECT_EQ(Fetched("1_S_A.PRC"), "body");
  EXPECT_LT(page.txtStatus.Text().size(), 300'000U);
  EXPECT_TRUE(page.txtStatus.Text().starts_with(L"Downloaden") ||
              page.txtStatus.Text().starts_with(L"#23 - "))
      << "whole lines";
  EXPECT_TRUE(page.txtStatus.Text().ends_with(L"Downloaden bestand 1_S_A.PRC\r\n#22"));
  EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(60));
}

// The names are asked for nowhere and written nowhere.
TEST_F(usrDownloadBadServerTest, NamesThatLeadOutOfTheFolder) {
  folder.Write("program/victim_S_A.PRC", "old");
  const std::string names[] = {"../victim_S_A.PRC", "..\\victim_S_A.PRC", "/tmp/x_S_A.PRC",
                               "C:x_S_A.PRC",       "x_S_A.PRC:y",        "x_S_A.PRC.",
                               "x_S_A.P\x01RC",     "sub/x_S_A.PRC",      "con.x_S_A.PRC"};
  for (const std::string& name : names) index += name + ",Beams,First,20260105,4,\r\n";
  FetchIndex();
  ASSERT_THAT(Listed(), SizeIs(std::size(names)));
  const std::vector<std::string> lines = FetchFiles();
  ASSERT_THAT(lines, SizeIs(1 + 2 * std::size(names)));
  EXPECT_EQ(lines[1], "Downloaden bestand ../victim_S_A.PRC");
  EXPECT_EQ(lines[2], "#23 - ../victim_S_A.PRC");
  EXPECT_THAT(server.Requests(), SizeIs(1)) << "the index";
  EXPECT_TRUE(std::filesystem::is_empty(folder / "program" / "PAP32"));
  EXPECT_EQ(test_support::ReadAll(folder / "program" / "victim_S_A.PRC"), "old");
}

// The status lines behind "Downloaden bestand", and what is in the folder. One that fails does not
// keep the next one from coming.
TEST_F(usrDownloadBadServerTest, AFileThatDoesNotComeAsItShould) {
  const std::string body = "0123456789";
  const std::string ten = Head("10");
  using Lines = std::vector<std::string>;
  const Lines other = {"Incorrect filesize", "#23 - 1_S_A.PRC"};
  const Lines broken = {"#24", "#23 - 1_S_A.PRC"};
  const auto no_length = [](const std::string& vRefusal) {
    Lines lines(10, "Retry...");
    lines.insert(lines.end(), {"#30", vRefusal, "#23 - 1_S_A.PRC"});
    return lines;
  };
  const Lines none = no_length("Incorrect filesize");
  const Answer trickle = [&](auto& peer, const std::string&) {
    peer.Send(ten + "0");
    while (peer.Pause(std::chrono::milliseconds(400)) && peer.Send("0")) {
    }
  };
  struct Case {
    const char* what;
    const char* size;  // in the index
    Answer answer;
    Lines lines;
    std::optional<std::string> file;
    bool slow = false;
  };
  const Case cases[] = {
      {"one byte less than the index says", "11", Send(Response(body)), other, {}},
      {"one byte more", "9", Send(Response(body)), other, {}},
      {"an index without a size", "much", Send(Response(body)), other, {}},
      {"no length", "10", Send(Head("") + body), none, {}},
      {"a length that is none", "10", Send(Head("ten") + body), none, {}},
      {"length 0", "10", Send(Head("0")), none, {}},
      {"no length and none expected", "0", Send(Head("") + body), no_length("#25"), {}},
      {"an empty file", "0", Send(Head("0")), no_length("#25"), {}},
      {"not found", "10", Send(Response("12 letters..", "404 Not Found")), other, {}},
      {"an error page of the same length", "10", Send(Response(body, "500 Fault")), other, {}},
      {"without rights", "10", Send(Response(body, "401 Unauthorized")), other, {}},
      {"reset at once", "10", SendAndReset(""), none, {}},
      {"silent", "10", SendAndFallSilent(""), none, {}, true},
      {"silent after the headers", "10", SendAndFallSilent(ten), broken, "", true},
      {"slow", "10", trickle, broken, "0", true},
      {"shorter than its length", "10", Send(ten + "0123"), broken, "0123"},
      {"reset half-way", "10", SendAndReset(ten + "01234"), broken, "01234"},
      {"longer than its length", "10", Send(ten + body + "and more"), {"#22"}, body},
  };
  for (const Case& bad : cases) {
    SCOPED_TRACE(bad.what);
    usrDownload& asked = bad.slow ? impatient : page;
    for (const char* name : {"1_S_A.PRC", "2_S_A.PRC"})
      std::filesystem::remove(folder / "program" / "PAP32" / name);
    index = "OrvPapInfo\r\n";
    Offer("1_S_A.PRC", body, bad.size);
    Offer("2_S_A.PRC", "next");
    answers[kFilePath] = bad.answer;
    Step(2, asked);
    Lines expected = {"#9 #10", "Downloaden bestand 1_S_A.PRC"};
    expected.insert(expected.end(), bad.lines.begin(), bad.lines.end());
    expected.insert(expected.end(), {"Downloaden bestand 2_S_A.PRC", "#22"});
    EXPECT_EQ(Step(3, asked), expected);
    std::optional<std::string> came = Fetched("1_S_A.PRC");
    if (bad.slow && came) came = came->substr(0, 1);  // how much of a trickle came is chance
    EXPECT_EQ(came, bad.file);
    EXPECT_EQ(Fetched("2_S_A.PRC"), "next");
    EXPECT_THAT(Boxes(), IsEmpty());
  }
}

// A file that came in part counts as there: it is not offered again until the user deletes it.
TEST_F(usrDownloadBadServerTest, APartialFileIsNotOfferedAgain) {
  Offer("1_S_A.PRC", "0123456789");
  answers[kFilePath] = [](auto& peer, const std::string&) { peer.Send(Head("10") + "0123"); };
  FetchIndex();
  FetchFiles();
  FetchIndex();
  EXPECT_THAT(Listed(), IsEmpty());
  std::filesystem::remove(folder / "program" / "PAP32" / "1_S_A.PRC");
  answers.clear();
  FetchIndex();
  FetchFiles();
  EXPECT_EQ(Fetched("1_S_A.PRC"), "0123456789");
}

// A second between two looks for the length, unless a test is in a hurry.
TEST_F(usrDownloadBadServerTest, WaitsASecondBeforeItLooksAgain) {
  Offer("1_S_A.PRC", "body");
  answers[kFilePath] = [](auto& peer, const std::string&) { peer.Send(Head("")); };
  usrDownload patient(server.Address());
  std::vector<steady_clock::time_point> retries;
  patient.ProductTable = product_table;
  patient.SetStepText = [&](const std::wstring& vCaption) {
    if (vCaption == L"Retry...") retries.push_back(steady_clock::now());
    if (retries.size() == 3) throw ProcessEnding();
  };
  patient.Init(2);
  EXPECT_THROW(patient.Init(3), ProcessEnding);
  ASSERT_THAT(retries, SizeIs(3));
  EXPECT_GE(retries[2] - retries[0], std::chrono::milliseconds(2000));
  EXPECT_LT(retries[2] - retries[0], std::chrono::seconds(60));
}

// The window is closed while the page waits: the process ends without waiting for the server.
TEST_F(usrDownloadBadServerTest, TheProgramEndsDuringAWait) {
  Offer("1_S_A.PRC", "0123456789");
  usrDownload patient(server.Address());  // would wait for half a minute
  patient.ProductTable = product_table;
  patient.Init(2);
  const auto end_when = [this](int vCalls) {
    pump.calls = 0;
    pump.meanwhile = [this, vCalls] {
      if (pump.calls >= vCalls) throw ProcessEnding();
    };
  };
  const auto start = steady_clock::now();
  answers[kFilePath] = [](auto& peer, const std::string&) { peer.StaySilent(); };
  end_when(2);
  EXPECT_THROW(patient.Init(3), ProcessEnding);
  answers[kFilePath] = [](auto& peer, const std::string&) {
    peer.Send(Head("10") + "0123");
    peer.StaySilent();
  };
  end_when(5);
  EXPECT_THROW(patient.Init(3), ProcessEnding);
  answers[kIndexPath] = [](auto& peer, const std::string&) { peer.StaySilent(); };
  end_when(2);
  EXPECT_THROW(patient.Init(2), ProcessEnding);
  EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(60));
  EXPECT_THAT(Boxes(), IsEmpty());
}

}  // namespace
