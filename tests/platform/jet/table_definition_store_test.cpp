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

using ::testing::IsEmpty;

// A table with so many columns that its definition takes some pages, on page 4 of the file.
TableDefinition WideTable(int columns) {
  TableDefinition table;
  table.page = StorageFile::kTable;
  table.owned_pages = StorageFile::kOwned;
  table.pages_with_room = StorageFile::kWithRoom;
  for (int i = 0; i < columns; ++i) {
    std::u16string name = u"Column with a long name ";
    name += static_cast<char16_t>(u'A' + i % 26);
    name.append(static_cast<std::size_t>(i / 26), u'x');
    AddColumn(table, name, ColumnType::kText, 100);
  }
  return table;
}

void Write(StorageFile& file, const TableDefinition& table) {
  PageTransaction transaction(file.pager());
  WriteTableDefinition(file.pager(), file.allocator(), table);
  transaction.Commit();
}

TEST(TableDefinitionStoreTest, ReadsAndRewritesTheDefinitionsOfRealFiles) {
  const std::vector<SharedFile> files = SharedFiles();
  if (files.empty()) GTEST_SKIP() << "ORVPAP_SHARED is not set";
  for (const SharedFile& file : files) {
    TestDatabase database(file.path, file.options);
    Database::Impl& impl = database->impl();
    for (const CatalogEntry& entry : impl.catalog->entries()) {
      if (entry.type != ObjectType::kTable) continue;
      SCOPED_TRACE(file.path.filename().string() + " " + std::to_string(entry.id));
      const TableDefinition table =
          ReadTableDefinition(impl.pager, static_cast<PageNumber>(entry.id));
      EXPECT_EQ(SerializeTableDefinition(table), table.verbatim);
    }
  }
}

// The lengths at which a definition, with its eight reserve bytes, takes one page more.
TEST(TableDefinitionStoreTest, ReserveBytesDecideTheNumberOfPages) {
  for (int columns = 1; columns < 200; ++columns) {
    StorageFile file;
    const TableDefinition table = WideTable(columns);
    Write(file, table);
    EXPECT_THAT(file.Faults(), IsEmpty());
    const std::size_t used = SerializeTableDefinition(table).size() + 8;
    EXPECT_EQ(TableDefinitionPages(file.pager(), StorageFile::kTable).size(),
              used <= 4096 ? 1 : 1 + (used - 4096 + 4087) / 4088);
    EXPECT_EQ(ReadTableDefinition(file.pager(), StorageFile::kTable).columns.size(),
              table.columns.size());
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
    EXPECT_THAT(ReadTableDefinition(file.pager(), StorageFile::kTable).columns.size(),
                ::testing::AnyOf(120, 150));
  }
  EXPECT_THAT(file.Faults(), IsEmpty()) << "of the last one, which nobody killed";
  EXPECT_GT(writes, 4U);
}

}  // namespace
}  // namespace jet::test
