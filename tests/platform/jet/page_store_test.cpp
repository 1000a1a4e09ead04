// The database file itself: who may open it, what is refused, and that pages land where they
// belong.
#include "platform/jet/page_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/jet/test_database.h"
#include "tests/support/file_protection.h"
#include "tests/support/temporary_folder.h"

namespace jet::test {
namespace {

using test_support::TemporaryFolder;

std::string Pages(std::size_t count) { return std::string(count * kPageSize, 'x'); }

std::optional<ErrorKind> OpenError(const std::filesystem::path& path,
                                   OpenMode mode = OpenMode::kReadWrite) {
  const auto failure = FailureOf([&] { OpenPageStore(path, mode); });
  if (!failure) return std::nullopt;
  EXPECT_THAT(failure->names, testing::ElementsAre(path.u16string()));
  return failure->kind;
}

TEST(PageStoreTest, ReadsWritesGrowsAndTruncates) {
  const TemporaryFolder folder;
  const auto path = folder.Write("product table.pt", Pages(3));
  {
    const auto store = OpenPageStore(path, OpenMode::kReadWrite);
    EXPECT_EQ(store->page_count(), 3U);
    EXPECT_FALSE(store->read_only());
    PageBytes page{};
    page.fill(std::byte{'a'});
    store->Write(1, page);
    page.fill(std::byte{'b'});
    store->Write(3, page);
    store->Write(4, page);
    EXPECT_THROW(store->Write(6, page), Error);
    store->Truncate(4);
    store->Sync();
    store->Read(1, page);
    EXPECT_EQ(page.front(), std::byte{'a'});
    EXPECT_EQ(page.back(), std::byte{'a'});
    EXPECT_THROW(store->Read(4, page), Error);
    EXPECT_EQ(store->page_count(), 4U);
  }
  EXPECT_EQ(test_support::ReadAll(path),
            Pages(1) + std::string(kPageSize, 'a') + Pages(1) + std::string(kPageSize, 'b'));
}

TEST(PageStoreTest, OneOwnerAtATimeWhateverTheMode) {
  const TemporaryFolder folder;
  const auto path = folder.Write("a.mdb", Pages(3));
  for (const OpenMode mode : {OpenMode::kReadWrite, OpenMode::kReadOnly}) {
    const auto owner = OpenPageStore(path, mode);
    EXPECT_EQ(OpenError(path), ErrorKind::kInUse);
    EXPECT_EQ(OpenError(path, OpenMode::kReadOnly), ErrorKind::kInUse);
    EXPECT_EQ(test_support::ReadAll(path).size(), 3 * kPageSize) << "others may copy it";
  }
  EXPECT_NE(OpenPageStore(path, OpenMode::kReadWrite), nullptr);
}

TEST(PageStoreTest, CreatesOnlyWhereNothingIs) {
  const TemporaryFolder folder;
  const auto path = folder / "new.mdb";
  const auto store = OpenPageStore(path, OpenMode::kCreate);
  EXPECT_EQ(store->page_count(), 0U);
  EXPECT_EQ(OpenError(path), ErrorKind::kInUse);
  store->Write(0, PageBytes{});
  EXPECT_EQ(std::filesystem::file_size(path), kPageSize);
  EXPECT_EQ(OpenError(path, OpenMode::kCreate), ErrorKind::kDatabaseExists);
  EXPECT_EQ(OpenError(folder / "nowhere" / "new.mdb", OpenMode::kCreate), ErrorKind::kPathNotFound);
}

TEST(PageStoreTest, SaysWhatItCannotOpen) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder / "folder");
  const auto huge = folder.Write("huge", Pages(3));
  std::filesystem::resize_file(huge, 0x80000000U + kPageSize);
  for (const auto& [name, kind] : std::initializer_list<std::pair<const char*, ErrorKind>>{
           {"missing", ErrorKind::kFileNotFound},
           {"folder", ErrorKind::kCannotOpen},
           {"nowhere/missing", ErrorKind::kPathNotFound},
           {"huge", ErrorKind::kNotADatabase}}) {
    for (const OpenMode mode : {OpenMode::kReadWrite, OpenMode::kReadOnly})
      EXPECT_EQ(OpenError(folder / name, mode), kind) << name;
  }
  for (const std::size_t size :
       {std::size_t{0}, std::size_t{1}, 2 * kPageSize, 3 * kPageSize - 1, 3 * kPageSize + 1}) {
    const auto path = folder.Write("odd", std::string(size, 'x'));
    EXPECT_EQ(OpenError(path), ErrorKind::kNotADatabase) << size;
  }
}

TEST(PageStoreTest, AWriteProtectedFileOpensForReading) {
  const TemporaryFolder folder;
  const auto path = folder.Write("a.mdb", Pages(3));
  const test_support::WriteProtection protection(path);
  if (!protection.Holds()) GTEST_SKIP() << "this account may write to any file";
  const auto store = OpenPageStore(path, OpenMode::kReadWrite);
  EXPECT_TRUE(store->read_only());
  EXPECT_THROW(store->Write(1, PageBytes{}), Error);
  PageBytes page{};
  store->Read(2, page);
  EXPECT_EQ(page[0], std::byte{'x'});
}

}  // namespace
}  // namespace jet::test
