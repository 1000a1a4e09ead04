// Definitions over chains of pages: those of real files, growth and shrinking, kills and damage.
#include "platform/jet/table_definition_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/jet/table_definition_format.h"
#include "tests/platform/jet/definitions.h"
#include "tests/platform/jet/sample_files.h"
#include "tests/platform/jet/storage_file.h"

namespace jet::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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

TEST(TableDefinitionStoreTest, ReadsAndRewritesTheDefinitionsOfRealFiles) {
  const auto samples = jet::test::SampleFiles();
  if (samples.empty()) GTEST_SKIP() << "ORVPAP_SHARED is not set";
  for (const auto& sample : samples) {
    for (const auto& [name, page] : sample.Tables()) {
      SCOPED_TRACE(sample.name() + " page " + std::to_string(page));
      // The file's own pages in memory, so that the rewritten chain can be compared with them.
      StorageFile file;
      std::vector<PageBytes> pages;
      for (PageNumber number = 0; number < sample.page_count(); ++number) {
        const auto bytes = sample.page(number).view().bytes();
        std::ranges::copy(bytes, pages.emplace_back().begin());
      }
      file.Load(pages);
      const TableDefinition table = ReadTableDefinition(file.pager(), page);
      const std::vector<PageNumber> chain = TableDefinitionPages(file.pager(), page);
      Write(file, table);
      const std::vector<PageNumber> new_chain = TableDefinitionPages(file.pager(), page);
      ASSERT_EQ(new_chain.size(), chain.size());
      for (std::size_t i = 0; i < chain.size(); ++i) {
        const ByteView page_before(pages[chain[i]]);
        const ByteView page_after(file.disk().Page(new_chain[i]));
        EXPECT_EQ(page_after.U16(2), page_before.U16(2)) << "free bytes";
        EXPECT_EQ(page_after.U32(4) == 0, page_before.U32(4) == 0);
      }
      EXPECT_EQ(SerializeTableDefinition(ReadTableDefinition(file.pager(), page)),
                SerializeTableDefinition(table));
    }
  }
}

// The lengths at which a definition, with its eight reserve bytes, takes one page more.
TEST(TableDefinitionStoreTest, ReserveBytesDecideTheNumberOfPages) {
  namespace format = table_definition_format;
  std::size_t seen_on_the_edge = 0;
  for (int columns = 1; columns < 200; ++columns) {
    StorageFile file;
    TableDefinition table = WideTable(columns);
    const std::size_t length = SerializeTableDefinition(table).size();
    Write(file, table);
    const std::size_t used = length + 8;
    const std::size_t pages = used <= 4096 ? 1 : 1 + (used - 4096 + 4087) / 4088;
    const auto chain = TableDefinitionPages(file.pager(), 4);
    ASSERT_EQ(chain.size(), pages) << length;
    const std::size_t capacity = 4096 + 4088 * (pages - 1);
    for (std::size_t i = 0; i < pages; ++i) {
      EXPECT_EQ(ByteView(file.disk().Page(chain[i])).U16(format::kFreeSpaceAt),
                i + 1 == pages ? capacity - used : 0);
    }
    if (capacity - used > 4088 - 8 || capacity == used) ++seen_on_the_edge;
    EXPECT_EQ(ReadTableDefinition(file.pager(), 4).columns.size(), table.columns.size());
  }
  RecordProperty("definitions_on_the_edge", static_cast<int>(seen_on_the_edge));
}

TEST(TableDefinitionStoreTest, GrowsAndShrinksByNewPagesBehindTheSameFirstOne) {
  StorageFile file;
  const auto in_use = [&file] {
    std::vector<PageNumber> pages;
    for (PageNumber page = StorageFile::kFirstFreePage; page < file.pager().page_count(); ++page) {
      if (!file.allocator().IsFree(page)) pages.push_back(page);
    }
    return pages;
  };
  Write(file, WideTable(120));
  EXPECT_THAT(TableDefinitionPages(file.pager(), 4), ElementsAre(4, 7, 8));
  Write(file, WideTable(121));
  EXPECT_THAT(TableDefinitionPages(file.pager(), 4), ElementsAre(4, 9, 10));
  EXPECT_THAT(in_use(), ElementsAre(9, 10));
  Write(file, WideTable(2));
  EXPECT_THAT(TableDefinitionPages(file.pager(), 4), ElementsAre(4));
  EXPECT_THAT(in_use(), IsEmpty());
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

TEST(TableDefinitionStoreTest, PatchesCountersInPlace) {
  StorageFile file;
  TableDefinition table = WideTable(3);
  PhysicalIndex index;
  index.columns = {{1, true}};
  index.pages_map = StorageFile::kOwned;
  index.root = 9;
  index.flags = 0x80;
  table.physical_indexes = {index, index};
  Write(file, table);
  file.disk().Heal();
  {
    PageTransaction transaction(file.pager());
    PatchRowCount(file.pager(), 4, 12);
    PatchLastAutonumber(file.pager(), 4, -13);
    PatchDistinctCount(file.pager(), 4, 1, 14);
    PatchDistinctCount(file.pager(), 4, 0, 0);
    transaction.Commit();
  }
  EXPECT_EQ(file.disk().writes, 1U);
  const TableDefinition read = ReadTableDefinition(file.pager(), 4);
  EXPECT_EQ(read.row_count, 12U);
  EXPECT_EQ(read.last_autonumber, -13);
  EXPECT_EQ(read.physical_indexes[0].distinct_count, 0U);
  EXPECT_EQ(read.physical_indexes[1].distinct_count, 14U);
}

TEST(TableDefinitionStoreTest, DropMarksTheFirstPageAndFreesAll) {
  StorageFile file;
  TableDefinition table = WideTable(120);
  {
    PageTransaction transaction(file.pager());
    table.page = file.allocator().Take();
    WriteTableDefinition(file.pager(), file.allocator(), table);
    transaction.Commit();
  }
  PageTransaction transaction(file.pager());
  DropTableDefinition(file.pager(), file.allocator(), table.page);
  transaction.Commit();
  EXPECT_EQ(file.disk().Page(table.page)[0], std::byte{8});
  for (PageNumber page = 7; page < file.pager().page_count(); ++page)
    EXPECT_TRUE(file.allocator().IsFree(page)) << page;
}

TEST(TableDefinitionStoreTest, DamagedChainsAreErrors) {
  struct Damage {
    const char* what;
    PageNumber page;
    std::size_t at;
    std::uint32_t value;
  };
  for (const Damage& damage :
       {Damage{"runs in a circle", 8, 4, 4}, Damage{"leaves the file", 7, 4, 5000},
        Damage{"ends early", 7, 4, 0}, Damage{"another type of page", 8, 0, 0x101},
        Damage{"longer than its pages", 4, 8, 20000}, Damage{"shorter than its pages", 4, 8, 3000},
        Damage{"hardly any length", 4, 8, 1}, Damage{"no definition at all", 4, 0, 0}}) {
    SCOPED_TRACE(damage.what);
    StorageFile file;
    Write(file, WideTable(120));
    ByteEditor(file.disk().Page(damage.page)).SetU32(damage.at, damage.value);
    file.Reopen();
    EXPECT_THROW(ReadTableDefinition(file.pager(), 4), Error);
  }
}

}  // namespace
}  // namespace jet::test
