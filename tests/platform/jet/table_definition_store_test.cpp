// Definitions over chains of pages: those of real files, growth and shrinking, kills and damage.
#include "platform/jet/table_definition_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/jet/database_impl.h"
#include "tests/platform/jet/definitions.h"
#include "tests/platform/jet/storage_file.h"
#include "tests/platform/jet/test_database.h"

namespace jet::test {
namespace {

// A table with so many columns that its definition takes some pages, on page 4 of the file.
TableDefinition WideTable(int columns) {
  TableDefinition table;
  table.page = 4;
  table.owned_pages = StorageFile::kOwned;
  table.pages_with_room = StorageFile::kWithRoom;
  for (int i = 0; i < columns; ++i) {
    std::u16string name = u"Column with a long name ";
    name += static_cast<char16_t>(u'A' + i % 26);
    name.append(static_cast<std::size_t>(i / 26), u'x');
    jet::test::AddColumn(table, name, ColumnType::kText, 100);
  }
  return table;
}

void Write(StorageFile& file, const TableDefinition& table) {
  PageTransaction transaction(file.pager());
  WriteTableDefinition(file.pager(), file.allocator(), table);
  transaction.Commit();
}

// A definition's bytes and the free bytes of its pages, straight from the pages.
std::pair<Bytes, std::vector<int>> StoredDefinition(const Pager& pager, PageNumber first) {
  Bytes bytes;
  std::vector<int> free;
  for (PageNumber number = first; number != 0;) {
    const Page page = pager.Read(number);
    const auto part = page.view().Slice(bytes.empty() ? 0 : 8, kPageSize - (bytes.empty() ? 0 : 8));
    bytes.insert(bytes.end(), part.begin(), part.end());
    free.push_back(page.view().U16(2));
    number = page.view().U32(4);
  }
  bytes.resize(ByteView(bytes).U32(8));
  return {bytes, free};
}

TEST(TableDefinitionStoreTest, ReadsAndRewritesTheDefinitionsOfRealFiles) {
  const std::vector<SharedFile> files = SharedFiles();
  if (files.empty()) GTEST_SKIP() << "ORVPAP_SHARED is not set";
  for (const SharedFile& file : files) {
    TestDatabase database(file.path, file.options);
    Database::Impl& impl = database->impl();
    for (const CatalogEntry& entry : impl.catalog->entries()) {
      if (entry.type != ObjectType::kTable) continue;
      const auto page = static_cast<PageNumber>(entry.id);
      SCOPED_TRACE(file.path.filename().string() + " " + std::to_string(page));
      const auto [bytes, free] = StoredDefinition(impl.pager, page);
      const TableDefinition table = ReadTableDefinition(impl.pager, page);
      EXPECT_EQ(SerializeTableDefinition(table), bytes);
      PageTransaction transaction(impl.pager);
      WriteTableDefinition(impl.pager, impl.allocator, table);
      EXPECT_EQ(StoredDefinition(impl.pager, page).second, free);
    }
  }
}

// The lengths at which a definition, with its eight reserve bytes, takes one page more.
TEST(TableDefinitionStoreTest, ReserveBytesDecideTheNumberOfPages) {
  for (int columns = 1; columns < 200; ++columns) {
    StorageFile file;
    const TableDefinition table = WideTable(columns);
    Write(file, table);
    const auto [bytes, free] = StoredDefinition(file.pager(), 4);
    const std::size_t used = SerializeTableDefinition(table).size() + 8;
    const std::size_t pages = used <= 4096 ? 1 : 1 + (used - 4096 + 4087) / 4088;
    std::vector<int> expected(pages);
    expected.back() = static_cast<int>(4096 + 4088 * (pages - 1) - used);
    ASSERT_EQ(free, expected) << used;
    EXPECT_EQ(ReadTableDefinition(file.pager(), 4).columns.size(), table.columns.size());
  }
}

TEST(TableDefinitionStoreTest, AKilledRewriteLeavesTheOldDefinitionOrTheNew) {
  StorageFile file;
  Write(file, WideTable(120));
  const auto pages = file.disk().Snapshot();
  std::size_t writes = 1;
  for (std::size_t killed_at = 0; killed_at <= writes; ++killed_at) {
    SCOPED_TRACE(killed_at);
    file.Load(pages);
    file.disk().CutOffAtWrite(killed_at);
    Write(file, WideTable(150));
    writes = file.disk().writes;
    file.disk().Heal();
    file.Reopen();
    EXPECT_THAT(ReadTableDefinition(file.pager(), 4).columns.size(), ::testing::AnyOf(120, 150));
  }
  EXPECT_GT(writes, 4U);
}

}  // namespace
}  // namespace jet::test
