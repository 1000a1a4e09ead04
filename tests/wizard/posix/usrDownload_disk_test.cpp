// The download page with a disk that is full, and a folder that may not be written.
#include <filesystem>

#include "tests/support/posix/ordinary_user.h"
#include "tests/wizard/download_page_test.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class usrDownloadDiskTest : public DownloadPageTest {
 protected:
  void ExpectReported(const char* vNumber) {
    EXPECT_THAT(FetchFiles(),
                ElementsAre("#9 #10", "Downloaden bestand 1_S_A.PRC", "#24", "#23 - 1_S_A.PRC"));
    const std::vector<std::string> messages = Boxes();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_THAT(messages[0], HasSubstr("usrDownload.TransferFile (Function)"));
    EXPECT_THAT(messages[0], HasSubstr(vNumber));
  }
};

TEST_F(usrDownloadDiskTest, ADiskThatIsFull) {
  for (const std::size_t size : {std::size_t{10}, std::size_t{5'000'000}}) {
    index = "OrvPapInfo\r\n";
    Offer("1_S_A.PRC", std::string(size, 'x'));
    const std::filesystem::path full = folder / "program" / "PAP32" / "1_S_A.PRC";
    std::filesystem::remove(full);
    FetchIndex();
    std::filesystem::create_symlink("/dev/full", full);
    ExpectReported("Error = 61:");
  }
}

TEST_F(usrDownloadDiskTest, AFolderThatMayNotBeWritten) {
  Offer("1_S_A.PRC", "body");
  FetchIndex();
  const std::filesystem::path pap_folder = folder / "program" / "PAP32";
  std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
  std::filesystem::permissions(
      pap_folder, std::filesystem::perms::all &
                      ~(std::filesystem::perms::owner_write | std::filesystem::perms::group_write |
                        std::filesystem::perms::others_write));
  {
    const test_support::OrdinaryUser user;
    ExpectReported("Error = 70:");
  }
  std::filesystem::permissions(pap_folder, std::filesystem::perms::owner_all);
}

}  // namespace
