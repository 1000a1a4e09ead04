// Compaction: the copy holds the same and is sound, dense and in order; what cannot be carried over
// is refused.
#include "platform/jet/compaction.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

#include "platform/jet/check.h"
#include "platform/jet/data_page.h"
#include "platform/jet/database_header_format.h"
#include "platform/jet/database_impl.h"
#include "platform/jet/table_impl.h"
#include "tests/platform/jet/full_database.h"
#include "tests/support/temporary_folder.h"

namespace jet::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// Every table of one database is in the other and holds the same.
void ExpectSame(TestDatabase& copy, TestDatabase& source) {
  const Contents expected = ContentsOf(*source.operator->());
  const Contents found = ContentsOf(*copy.operator->());
  EXPECT_EQ(found.size(), expected.size());
  for (const auto& [name, contents] : expected) {
    SCOPED_TRACE(Ascii(name));
    ASSERT_TRUE(found.contains(name));
    EXPECT_EQ(found.at(name).design, contents.design);
    EXPECT_EQ(found.at(name).indexes, contents.indexes);
    EXPECT_TRUE(found.at(name).rows == contents.rows);
  }
}

// Compacts a file; the copy is sound, not larger, and holds the same.
void ExpectCarriedOver(const std::filesystem::path& path, const std::filesystem::path& target,
                       const OpenOptions& options) {
  SCOPED_TRACE(path.filename().string());
  EXPECT_THAT(CheckFile(path, options).problems, IsEmpty());
  CompactFile(path, target, {.password = options.password});
  TestDatabase source(path, options);
  TestDatabase copy(target, options);
  EXPECT_EQ(copy->write_refusal(), "");
  ExpectSame(copy, source);
  EXPECT_THAT(copy.Problems(), IsEmpty());
  EXPECT_LE(copy.disk().pages.size(), source.disk().pages.size());
  EXPECT_EQ(copy->impl().header.page_key(), source->impl().header.page_key());
  if (const auto verdict = IndependentCheck(target, options.password)) {
    EXPECT_THAT(*verdict, StartsWith("ok: "));
  }
}

TEST(CompactionTest, TheCopyHoldsTheSameAndIsSound) {
  const std::vector<CreateOptions> kinds = {
      {}, {.password = u"secret"}, {.password = u"secret", .encode = true}};
  const test_support::TemporaryFolder folder;
  for (const CreateOptions& kind : kinds) {
    TestDatabase source(kind);
    FillWithEverything(source);
    source.Save(folder / "source.mdb");
    const auto target = folder / ("target" + std::to_string(&kind - kinds.data()) + ".mdb");
    ExpectCarriedOver(folder / "source.mdb", target, {.password = kind.password});
    EXPECT_EQ(FailureOf([&] { Database::Open(target, {.password = u"wrong"}); }).has_value(),
              !kind.password.empty());
    EXPECT_LT(std::filesystem::file_size(target), source.disk().pages.size() * kPageSize);
    EXPECT_EQ(Database::Open(target, {.password = kind.password})->Relationships().size(), 1u);
  }
}

TEST(CompactionTest, TheCopyIsDenseInOrderAndGoesOnWhereTheSourceWas) {
  TestDatabase source;
  FillWithEverything(source);
  TestDatabase copy;
  copy.Restore(source.Compacted());
  EXPECT_EQ(copy.Compacted().size(), copy.disk().pages.size()) << "nothing left to gain";
  std::vector<Value> keys;
  for (const StoredRowValues& row : RowsOf(copy[u"All"])) keys.push_back(row.values[0]);
  EXPECT_TRUE(std::is_sorted(keys.begin(), keys.end()));

  const TableDefinition& children = copy[u"Children"].definition();
  std::set<int> numbers;
  for (const ColumnDefinition& column : children.columns) numbers.insert(column.number);
  EXPECT_THAT(numbers, ElementsAre(0, 1, 2, 3));
  EXPECT_EQ(children.next_column_number, 4);
  EXPECT_EQ(children.variable_slots, 2);
  EXPECT_EQ(children.physical_indexes[0].entry_count, copy[u"Children"].row_count());
  EXPECT_EQ(children.physical_indexes[0].distinct_count, 5u);

  Row parent{Null{}, u"new"};
  copy[u"Parents"].Insert(parent);
  EXPECT_EQ(parent[0], Value(61)) << "rows 41 to 60 are gone, their numbers stay used";
  EXPECT_EQ(FailureOf([&] {
              Add(copy[u"Children"], {62, false, Null{}, Null{}});
            }),
            (Failure{ErrorKind::kNoParentRow, {u"Parents"}}));
  copy[u"Parents"].Delete(RowsOf(copy[u"Parents"])[0].id);
  EXPECT_THAT(copy.Problems(), IsEmpty());

  source.EditDefinition(u"Parents", [](TableDefinition& table) { table.last_autonumber = 7; });
  copy.Restore(source.Compacted());
  EXPECT_EQ(copy[u"Parents"].definition().last_autonumber, 40) << "a lagging counter catches up";
}

TEST(CompactionTest, FilesOfOtherWritersAreCarriedOverWhole) {
  const std::vector<SharedFile> files = SharedFiles();
  if (files.empty()) GTEST_SKIP() << "ORVPAP_SHARED is not set";
  const test_support::TemporaryFolder folder;
  for (const SharedFile& file : files) {
    // A copy, since a file has one owner at a time, and other tests read the same files.
    const auto source = folder / file.path.filename();
    std::filesystem::copy_file(file.path, source);
    std::filesystem::permissions(source, std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add);
    const auto target = folder / ("compacted-" + file.path.filename().string());
    ExpectCarriedOver(source, target, file.options);
    if (file.options.password.empty())
      TestDatabase(target, file.options).SaveForOtherReaders(target.stem().string());
  }
}

// Gives the texts of a table an order whose keys this engine cannot make.
void UseUnknownOrder(TestDatabase& database, std::u16string_view table) {
  database.EditDefinition(table, [](TableDefinition& definition) {
    for (ColumnDefinition& column : definition.columns)
      if (column.type == ColumnType::kText) column.collation.language = 2052;
  });
}

std::vector<Bytes> KeysOf(const Table& table, std::size_t index) {
  std::vector<Bytes> keys;
  const IndexTree& tree = const_cast<Table&>(table).impl().indexes.at(index).tree();
  for (IndexTree::Cursor at = tree.First(); !at.at_end(); at.Next()) keys.push_back(at.entry().key);
  return keys;
}

TEST(CompactionTest, KeysOfAnUnknownOrderAreTakenOver) {
  TestDatabase source;
  FillWithEverything(source);
  UseUnknownOrder(source, u"Children");
  TestDatabase copy;
  copy.Restore(source.Compacted());
  ExpectSame(copy, source);
  EXPECT_EQ(KeysOf(copy[u"Children"], 0), KeysOf(source[u"Children"], 0));
  EXPECT_EQ(KeysOf(copy[u"Children"], 0).size(), 200u);
}

TEST(CompactionTest, EveryWriteThatFailsIsReported) {
  TestDatabase source;
  FillWithEverything(source);
  source.disk().Heal();
  const std::size_t writes = source.Compacted().size();
  for (std::size_t failing = 0; failing < writes; failing += writes / 20 + 1)
    EXPECT_EQ(FailureOf([&] { source.Compacted(failing); }), (Failure{ErrorKind::kDiskFull, {}}));
  EXPECT_EQ(source.disk().writes, 0u) << "the source is only read";
}

TEST(CompactionTest, WhatCannotBeCarriedOverWholeIsRefused) {
  struct Case {
    const char* name;
    std::function<void(TestDatabase&)> damage;
    ErrorKind kind;
    const char* detail;
  };
  const Case cases[] = {
      {"a writer that was cut off",
       [](TestDatabase& d) {
         namespace format = database_header_format;
         ByteEditor(d.disk().Page(0)).SetU16(format::kCommitWordsAt, format::kCommitWriting);
       },
       ErrorKind::kNotSupported, "did not finish"},
      {"replication",
       [](TestDatabase& d) {
         d->CreateTable({u"R", {{u"s_GUID", ColumnType::kGuid}}});
       },
       ErrorKind::kNotSupported, "replication"},
      {"a relationship with a table that is not there",
       [](TestDatabase& d) {
         d.EditDefinition(u"Children", [](TableDefinition& definition) {
           for (LogicalIndex& logical : definition.logical_indexes)
             if (logical.other_table != 0) logical.other_table = 4000;
         });
       },
       ErrorKind::kDamaged, "not there"},
      {"a chain of long values that is not the row's",
       [](TestDatabase& d) {
         for (PageNumber page = 6; page < d.disk().pages.size(); ++page) {
           ByteEditor editor(d.disk().Page(page), page);
           if (editor.view().U32(data_page::kOwnerAt) == data_page::kLongValueOwner &&
               editor.view().U32(data_page::kStampAt) != 0) {
             editor.SetU32(data_page::kStampAt, editor.view().U32(data_page::kStampAt) + 1);
             return;
           }
         }
       },
       ErrorKind::kDamaged, "stamp"},
      {"keys of an unknown order that do not fit the rows",
       [](TestDatabase& d) {
         UseUnknownOrder(d, u"Children");
         const RowId row = RowsOf(d[u"Children"])[0].id;
         d.EditPage(row.page, [&](ByteEditor& page) { data_page::RemoveRow(page, row.row); });
       },
       ErrorKind::kNotSupported, "do not fit the rows"},
      {"a column of an unknown type",
       [](TestDatabase& d) {
         const PageNumber page = d[u"Empty"].definition().page;
         ByteEditor editor(d.disk().Page(page), page);
         editor.SetU8(63, 18);
       },
       ErrorKind::kNotSupported, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    TestDatabase source;
    FillWithEverything(source);
    c.damage(source);
    try {
      source.Compacted();
      ADD_FAILURE() << "compacted";
    } catch (const Error& error) {
      EXPECT_EQ(error.kind(), c.kind);
      EXPECT_THAT(error.what(), HasSubstr(c.detail));
    }
  }
}

}  // namespace
}  // namespace jet::test
