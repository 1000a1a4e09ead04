// Commits cut off at every write, taken back by the next owner of the file.
#include "platform/jet/undo_journal.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "platform/jet/database_header.h"
#include "platform/jet/pager.h"
#include "tests/support/temporary_folder.h"

namespace jet::test {
namespace {

namespace fs = std::filesystem;
using test_support::ReadAll;
using test_support::TemporaryFolder;

constexpr PageNumber kPages = 6;
constexpr std::uint32_t kPageKey = 0x1234'5678;

// Copies the database and its journal before each write, as a process killed there leaves them.
class RecordingStore final : public PageStore {
 public:
  RecordingStore(fs::path file, const TemporaryFolder& folder)
      : file_(std::move(file)),
        folder_(folder),
        store_(OpenPageStore(file_, OpenMode::kReadWrite)) {}

  PageNumber page_count() const override { return store_->page_count(); }
  bool read_only() const override { return store_->read_only(); }
  void Read(PageNumber number, std::span<std::byte, kPageSize> into) const override {
    store_->Read(number, into);
  }
  void Write(PageNumber number, std::span<const std::byte, kPageSize> page) override {
    if (fail_at && writes == *fail_at) throw Error(ErrorKind::kDiskFull, "made to fail", number);
    Record();
    store_->Write(number, page);
    ++writes;
  }
  void Truncate(PageNumber page_count) override {
    if (fail_at) throw Error(ErrorKind::kIo, "made to fail");
    store_->Truncate(page_count);
  }
  void Sync() override {}

  void Record() {
    killed.push_back(folder_ / ("killed-" + std::to_string(killed.size()) + ".pt"));
    fs::copy_file(file_, killed.back());
    if (fs::exists(Journal(file_))) fs::copy_file(Journal(file_), Journal(killed.back()));
  }
  static fs::path Journal(fs::path file) { return file += ".undo"; }

  std::vector<fs::path> killed;
  std::size_t writes = 0;
  std::optional<std::size_t> fail_at;

 private:
  fs::path file_;
  const TemporaryFolder& folder_;
  std::unique_ptr<PageStore> store_;
};

void Fill(Pager& pager, PageNumber number, char letter, WriteOrder order = WriteOrder::kChanged) {
  ByteEditor page = number < pager.page_count() ? pager.Edit(number) : pager.EditNew(number, order);
  std::ranges::fill(page.Slice(0, kPageSize), static_cast<std::byte>(letter));
}

class UndoJournalTest : public testing::TestWithParam<std::uint32_t> {
 protected:
  UndoJournalTest() : file_(folder_.Write("Orv.pt", std::string(kPages * kPageSize, 'a'))) {
    auto owned = std::make_unique<RecordingStore>(file_, folder_);
    store_ = owned.get();
    pager_ = std::make_unique<Pager>(std::move(owned), GetParam(), Pager::kDefaultCachePages,
                                     std::make_unique<UndoJournal>(file_));
  }

  // Changes pages, the same one in two batches, and makes the file grow by two, the last page
  // first.
  void Commit(char letter) {
    PageTransaction transaction(*pager_);
    for (const PageNumber page : {1U, 3U, 4U}) Fill(*pager_, page, letter);
    const PageNumber end = pager_->page_count();
    Fill(*pager_, end, letter, WriteOrder::kAdditions);
    Fill(*pager_, end + 1, letter, WriteOrder::kNewPages);
    pager_->Defer(CleanUp::kUnreferenced, [this, letter] {
      Fill(*pager_, 3, static_cast<char>(letter + 1));
      Fill(*pager_, 5, letter);
    });
    transaction.Commit();
  }

  // The file as the next owner finds it.
  static std::string Recovered(const fs::path& file) {
    OpenRecovered(file, OpenMode::kReadOnly);
    EXPECT_FALSE(fs::exists(RecordingStore::Journal(file)));
    return ReadAll(file);
  }

  const TemporaryFolder folder_;
  const fs::path file_;
  RecordingStore* store_ = nullptr;
  std::unique_ptr<Pager> pager_;
};

TEST_P(UndoJournalTest, ACommitCutOffAnywhereHasNotHappened) {
  for (const char letter : {'k', 'n'}) {
    const std::string before = ReadAll(file_);
    store_->killed.clear();
    Commit(letter);
    store_->Record();
    const std::string after = ReadAll(file_);
    ASSERT_NE(before, after);
    ASSERT_EQ(store_->killed.size(), 9U);
    // Or in the middle of a write: the file does not end with a page.
    std::ofstream(store_->killed[1], std::ios::binary | std::ios::app) << "half a page";
    for (const fs::path& killed : store_->killed) {
      SCOPED_TRACE(killed.filename().string());
      EXPECT_TRUE(Recovered(killed) == (killed == store_->killed.back() ? after : before));
      fs::remove(killed);
    }
  }
  pager_.reset();
  EXPECT_FALSE(fs::exists(RecordingStore::Journal(file_))) << "left by a process that ended well";
}

TEST_P(UndoJournalTest, ADamagedOrForeignJournalChangesNothing) {
  Commit('k');
  const fs::path killed = store_->killed[4];
  const std::string half = ReadAll(killed);
  const std::string journal = ReadAll(RecordingStore::Journal(killed));
  std::vector<std::string> damaged = {"", journal.substr(0, 20),
                                      journal.substr(0, journal.size() - 1),
                                      std::string(journal.size(), '\xff')};
  // The version, the counts of pages, writes and images, a write's page, an old page.
  for (const std::size_t at : {std::size_t{7}, std::size_t{24}, std::size_t{28}, std::size_t{32},
                               std::size_t{44}, journal.size() - 1})
    damaged.emplace_back(journal)[at] ^= 1;
  for (const std::string& content : damaged) {
    std::ofstream(RecordingStore::Journal(killed), std::ios::binary) << content;
    EXPECT_TRUE(Recovered(killed) == half) << &content - damaged.data();
  }
}

TEST_P(UndoJournalTest, AFileThatOthersHaveWrittenToStaysAsItIs) {
  Commit('k');
  const fs::path killed = store_->killed[5];
  const std::string half = ReadAll(killed);
  const std::string journal = ReadAll(RecordingStore::Journal(killed));
  ASSERT_EQ(half.size(), (kPages + 2) * kPageSize);
  const auto changed = [&half](std::vector<PageNumber> pages) {
    std::string file = half;
    for (const PageNumber page : pages) file[page * kPageSize + 7] = 'x';
    return file;
  };
  const struct {
    const char* what;
    std::string file;
  } cases[] = {{"a backup in its place", changed({3})},
               {"a row in free room, counted in page 0", changed({0, 2})},
               {"a page where the commit had one", changed({kPages + 1})},
               {"pages behind those of the commit", half + std::string(kPageSize, 'x')},
               {"compacted", half.substr(0, (kPages - 1) * kPageSize)}};
  for (const auto& [what, file] : cases) {
    std::ofstream(killed, std::ios::binary) << file;
    std::ofstream(RecordingStore::Journal(killed), std::ios::binary) << journal;
    EXPECT_TRUE(Recovered(killed) == file) << what;
  }
}

// A journal that lived on would be taken for the next commit's.
TEST_P(UndoJournalTest, AJournalThatIsBeingReadIsEmptiedWhereItCannotBeRemoved) {
  const auto gone = [](const fs::path& journal) {
    return !fs::exists(journal) || fs::file_size(journal) == 0;
  };
  Commit('k');
  for (const fs::path& file : {store_->killed[4], file_}) {
    const std::ifstream reader(RecordingStore::Journal(file), std::ios::binary);
    ASSERT_TRUE(reader.is_open());
    if (file == file_) pager_.reset();
    OpenRecovered(file, OpenMode::kReadWrite);
    EXPECT_TRUE(gone(RecordingStore::Journal(file))) << file;
  }
}

TEST_P(UndoJournalTest, WhatCouldNotBePutBackIsTakenBackAtTheNextOpening) {
  const std::string before = ReadAll(file_);
  store_->fail_at = 4;  // putting back starts over with this write, which fails again
  EXPECT_THROW(Commit('k'), Error);
  EXPECT_FALSE(ReadAll(file_) == before);
  pager_.reset();
  EXPECT_TRUE(Recovered(file_) == before);
}

INSTANTIATE_TEST_SUITE_P(PlainAndEncoded, UndoJournalTest, testing::Values(0U, kPageKey));

}  // namespace
}  // namespace jet::test
