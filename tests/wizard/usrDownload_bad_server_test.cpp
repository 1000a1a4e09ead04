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

class usrDownloadBadServerTest : public DownloadPageTest {};

// Every one of them leaves an empty list: nothing of an index that came in part is offered.
TEST_F(usrDownloadBadServerTest, AnIndexThatIsNone) {
  const std::string line = "1_S_A.PRC,Beams,First,20260105,4,\r\n";
  const std::string sound = "OrvPapInfo\r\n" + line;
  struct Case {
    const char* what;
    Answer answer;
    const char* text;
  };
  const auto body = [](const std::string& vBody, const std::string& vStatus = "200 OK") {
    return [=](auto& peer, const std::string&) { peer.Send(Response(vBody, vStatus)); };
  };
  const Case cases[] = {
      {"reset", [](auto& peer, const std::string&) { peer.Reset(); }, "#26"},
      {"silent", [](auto& peer, const std::string&) { peer.StaySilent(); }, "#26"},
      {"silent after the headers",
       [](auto& peer, const std::string&) {
         peer.Send(Head("100"));
         peer.StaySilent();
       },
       "#26"},
      {"cut off", [&](auto& peer, const std::string&) { peer.Send(Head("5000") + sound + line); },
       "#26"},
      {"empty", body(""), "#26"},
      {"redirected for ever",
       [](auto& peer, const std::string&) { peer.Send(test_support::Redirect("/again")); }, "#26"},
      {"without rights", body("who are you", "401 Unauthorized"), "#27"},
      {"not there", body("no such file", "404 Not Found"), "#27"},
      {"not there, and nothing said", body("", "404 Not Found"), "#26"},
      {"a fault that looks like an index", body(sound, "500 Internal Server Error"), "#27"},
      {"of another kind", body("orvpapinfo\r\n" + line), "#27"},
      {"with more in its first line", body("OrvPapInfo 2\r\n" + line), "#27"},
      {"with an empty first line", body("\r\n" + sound), "#27"},
      {"binary", body(std::string("\0\xFF\xFE\n\0\r\n\x1A,,,", 11)), "#27"},
  };
  answers["/again"] = [](auto& peer, const std::string&) {
    peer.Send(test_support::Redirect("/again"));
  };
  for (const Case& bad : cases) {
    SCOPED_TRACE(bad.what);
    answers[kIndexPath] = bad.answer;
    EXPECT_EQ(FetchIndex().back(), bad.text);
    EXPECT_THAT(Messages(), ElementsAre(bad.text));
    EXPECT_THAT(Listed(), IsEmpty());
    EXPECT_THAT(page.SelectedDownloadFiles(), IsEmpty());
  }
}

TEST_F(usrDownloadBadServerTest, NoServer) {
  std::wstring nobody;
  {
    const test_support::ScriptedServer gone([](auto&, const std::string&) {});
    nobody = gone.Address();
  }
  usrDownload lonely(nobody);
  lonely.Init(2);
  EXPECT_THAT(Messages(), ElementsAre("#26"));
}

// What an earlier visit fetched is not offered when the server has gone.
TEST_F(usrDownloadBadServerTest, AFailureForgetsTheIndexBefore) {
  Offer("1_S_A.PRC", "body");
  FetchIndex();
  ASSERT_THAT(Listed(), SizeIs(1));
  answers[kIndexPath] = [](auto& peer, const std::string&) { peer.Reset(); };
  FetchIndex();
  EXPECT_THAT(page.SelectedDownloadFiles(), IsEmpty());
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
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(usrDownloadBadServerTest, AnIndexOfTwentyMegabytes) {
  const std::string line =
      "_T_A.PRC,Somebody else's beams,Another supplier,20260105,12345,none\r\n";
  for (int i = 0; index.size() < 20'000'000; ++i) index += std::to_string(i) + line;
  Offer("1_S_A.PRC", "body");
  const auto start = steady_clock::now();
  FetchIndex();
  EXPECT_THAT(Listed(), ElementsAre("1_S_A.PRC"));
  EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(60));
}

// The names are asked for nowhere and written nowhere.
TEST_F(usrDownloadBadServerTest, NamesThatLeadOutOfTheFolder) {
  folder.Write("program/victim_S_A.PRC", "old");
  const std::string names[] = {"../victim_S_A.PRC", "..\\victim_S_A.PRC", "/tmp/x_S_A.PRC",
                               "C:x_S_A.PRC",       "x_S_A.PRC:y",        "x_S_A.PRC.",
                               "x_S_A.P\x01RC",     "sub/x_S_A.PRC",      "x?_S_A.PRC"};
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

// The status lines behind "Downloaden bestand", and what is in the folder.
TEST_F(usrDownloadBadServerTest, AFileThatDoesNotComeAsItShould) {
  struct Case {
    const char* what;
    const char* size;  // in the index
    Answer answer;
    std::vector<std::string> lines;
    std::optional<std::string> file;
  };
  const std::string body = "0123456789";
  const auto send = [](const std::string& vBytes) {
    return [=](auto& peer, const std::string&) { peer.Send(vBytes); };
  };
  const auto retried = [](std::vector<std::string> vLines) {
    vLines.insert(vLines.begin(), 10, "Retry...");
    return vLines;
  };
  const std::string failed = "#23 - 1_S_A.PRC";
  const Case cases[] = {
      {"one byte less than the index says",
       "11",
       send(Response(body)),
       {"Incorrect filesize", failed},
       {}},
      {"one byte more", "9", send(Response(body)), {"Incorrect filesize", failed}, {}},
      {"an index without a size", "much", send(Response(body)), {"Incorrect filesize", failed}, {}},
      {"no length",
       "10",
       send(Head("") + body),
       retried({"#30", "Incorrect filesize", failed}),
       {}},
      {"no length and none expected",
       "0",
       send(Head("") + body),
       retried({"#30", "#25", failed}),
       {}},
      {"a length that is none",
       "10",
       send(Head("ten") + body),
       retried({"#30", "Incorrect filesize", failed}),
       {}},
      {"length 0", "10", send(Head("0")), retried({"#30", "Incorrect filesize", failed}), {}},
      {"an empty file", "0", send(Head("0")), retried({"#30", "#25", failed}), {}},
      {"not found",
       "10",
       send(Response("12 letters..", "404 Not Found")),
       {"Incorrect filesize", failed},
       {}},
      {"an error page of the same length",
       "10",
       send(Response(body, "500 Fault")),
       {"Incorrect filesize", failed},
       {}},
      {"without rights",
       "10",
       send(Response(body, "401 Unauthorized")),
       {"Incorrect filesize", failed},
       {}},
      {"reset at once",
       "10",
       [](auto& peer, const std::string&) { peer.Reset(); },
       retried({"#30", "Incorrect filesize", failed}),
       {}},
      {"silent",
       "10",
       [](auto& peer, const std::string&) { peer.StaySilent(); },
       retried({"#30", "Incorrect filesize", failed}),
       {}},
      {"silent after the headers",
       "10",
       [](auto& peer, const std::string&) {
         peer.Send(Head("10"));
         peer.StaySilent();
       },
       {"#24", failed},
       ""},
      {"shorter than its length", "10", send(Head("10") + "0123"), {"#24", failed}, "0123"},
      {"reset half-way",
       "10",
       [](auto& peer, const std::string&) {
         peer.Send(Head("10") + "01234");
         peer.Pause(std::chrono::milliseconds(200));
         peer.Reset();
       },
       {"#24", failed},
       "01234"},
      {"longer than its length", "10", send(Head("10") + body + "and more"), {"#22"}, body},
  };
  for (const Case& bad : cases) {
    SCOPED_TRACE(bad.what);
    std::filesystem::remove(folder / "program" / "PAP32" / "1_S_A.PRC");
    index = "OrvPapInfo\r\n";
    Offer("1_S_A.PRC", body, bad.size);
    Offer("2_S_A.PRC", "next");
    answers[kFilePath] = bad.answer;
    FetchIndex();
    std::vector<std::string> lines = FetchFiles();
    ASSERT_GE(lines.size(), 4U);
    EXPECT_THAT(std::vector(lines.end() - 2, lines.end()),
                ElementsAre("Downloaden bestand 2_S_A.PRC", "#22"))
        << "one that fails does not keep the next one from coming";
    EXPECT_EQ(std::vector(lines.begin() + 2, lines.end() - 2), bad.lines);
    EXPECT_EQ(Fetched("1_S_A.PRC"), bad.file);
    EXPECT_EQ(Fetched("2_S_A.PRC"), "next");
    std::filesystem::remove(folder / "program" / "PAP32" / "2_S_A.PRC");
    EXPECT_THAT(Messages(), IsEmpty());
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
  EXPECT_THAT(Messages(), IsEmpty());
}

}  // namespace
