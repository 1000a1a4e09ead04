// The welcome page: what it makes of its text file.
#include "wizard/usrWelkom.h"

#include <gmock/gmock.h>

#include "platform/files/paths.h"
#include "tests/support/surface_test.h"

namespace {

class usrWelkomTest : public test_support::SurfaceTest {
 protected:
  usrWelkomTest() {
    page.SetStepText = [this](const std::wstring& vCaption) { heard.push_back(vCaption); };
    page.AanzettenVolgende = [this](bool vAan) { heard.push_back(vAan ? L"on" : L"off"); };
  }

  usrWelkom page;
  std::vector<std::wstring> heard;  // the events, in their order
};

TEST_F(usrWelkomTest, TheFirstLineIsAHeadingTheOthersAreTheText) {
  const struct {
    const char* name;
    std::string file;
    std::wstring status;
    std::wstring text;
  } cases[] = {
      {"more", "Welcome \n\nb\rc", L"Welcome  #10", L"\r\nb\r\nc\r\n"},
      {"in the code page", "Pr\xE9\r\n\x80\r\n", L"Pr\u00E9 #10", L"\u20AC\r\n"},
      {"blank heading", "  \r\nto this\r\n", L"#0 #10", L"#5 " + folder.Text("welcome.txt")},
      {"no text at all",
       std::string("\x7F"
                   "ELF\0\1\n\xFF\0\n",
                   10),
       std::wstring(L"\x7F"
                    L"ELF\0\1 #10",
                    10),
       std::wstring(L"\u00FF\0\r\n", 4)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    heard.clear();
    settings.strWelcomeText = files::ToText(folder.Write("welcome.txt", c.file));
    page.Init();
    EXPECT_THAT(heard, testing::ElementsAre(c.status, L"on"));
    EXPECT_EQ(page.Text1.Text(), c.text);
  }
  EXPECT_TRUE(prompt.messages.empty());
}

// The program has a text of its own for that, which names the file in every place where it should.
TEST_F(usrWelkomTest, AMissingFileIsNoError) {
  settings.strProgramFolder = folder.Text("program");
  for (const std::wstring& path : {std::wstring(), folder.Text("missing.txt"), folder.Text(""),
                                   std::wstring(L"elsewhere.txt")}) {
    heard.clear();
    settings.strWelcomeText = path;
    page.Init();
    EXPECT_THAT(heard, testing::ElementsAre(L"#0 #10", L"on"));
    EXPECT_EQ(page.Text1.Text(), L"#5 " + path);
  }
  EXPECT_TRUE(prompt.messages.empty());
}

// A setting can name anything: what never ends, or would fill the memory, must not be read.
TEST_F(usrWelkomTest, OnlyAFileOfReasonableSizeIsRead) {
#ifndef _WIN32
  settings.strWelcomeText = L"/dev/zero";
  page.Init();
  EXPECT_EQ(page.Text1.Text(), L"#5 /dev/zero");
#endif
  constexpr std::size_t kMost = 1024 * 1024;
  const auto path = folder.Write("welcome.txt", "Welcome\r\n" + std::string(kMost - 9, 'x'));
  settings.strWelcomeText = files::ToText(path);
  page.Init();
  EXPECT_EQ(page.Text1.Text().size(), kMost - 9 + 2);
  std::filesystem::resize_file(path, kMost + 1);
  heard.clear();
  page.Init();
  EXPECT_THAT(heard, testing::ElementsAre(L"on"));
  ASSERT_EQ(prompt.messages.size(), 1U);
  EXPECT_THAT(prompt.messages[0].text,
              testing::EndsWith(L"Error = 7: Out of memory: '" + settings.strWelcomeText + L"'"));
}

TEST_F(usrWelkomTest, AFileThatEndsTooSoonIsReportedAndTheUserGoesOn) {
  page.Text1.SetText(L"as it was");
  for (const char* file : {"", "Welcome", "Welcome\r\n", " "}) {
    heard.clear();
    prompt.messages.clear();
    settings.strWelcomeText = files::ToText(folder.Write("welcome.txt", file));
    page.Init();
    EXPECT_THAT(heard, testing::ElementsAre(L"on"));
    EXPECT_EQ(page.Text1.Text(), L"as it was");
    ASSERT_EQ(prompt.messages.size(), 1U);
    EXPECT_THAT(prompt.messages[0].text,
                testing::AllOf(testing::HasSubstr(L"Procedure = usrWelkom.LadenWelkomText (Sub)\r\n"
                                                  L"Error = 62: "),
                               testing::EndsWith(L"'" + settings.strWelcomeText + L"'")));
  }
}

}  // namespace
