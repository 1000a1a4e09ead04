// Rows on data pages: room, slots, moves and deletion, against a plain map and against kills.
#include "platform/jet/row_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "tests/platform/jet/definitions.h"
#include "tests/platform/jet/storage_file.h"

namespace jet::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Model = std::map<RowId, Bytes>;

constexpr std::size_t kLargestRow = 4060;

Model Contents(StorageFile& file) {
  Model rows;
  const RowStore store = file.Rows();
  RowStore::Scan scan(store);
  while (const auto row = scan.Next()) {
    const bool is_new = rows.emplace(row->id, Bytes(row->bytes.begin(), row->bytes.end())).second;
    EXPECT_TRUE(is_new) << "a row seen twice";
  }
  return rows;
}

// The transaction that every change of a test is.
template <typename Action>
void Commit(StorageFile& file, Action action) {
  PageTransaction transaction(file.pager());
  RowStore rows = file.Rows();
  action(rows);
  transaction.Commit();
}

RowId Insert(StorageFile& file, const Bytes& row) {
  RowId id;
  Commit(file, [&](RowStore& rows) { id = rows.Insert(row); });
  return id;
}

void Replace(StorageFile& file, RowId id, const Bytes& row) {
  Commit(file, [&](RowStore& rows) { rows.Replace(id, row); });
}

void Delete(StorageFile& file, RowId id) {
  Commit(file, [&](RowStore& rows) { rows.Delete(id); });
}

// The page of docs/jet_format.md, "Data pages", but for its owner.
TEST(RowStoreTest, WritesTheWorkedPageOfTheDocument) {
  StorageFile file;
  for (const char* row : {"02 00 0A 00 00 00 03", "02 00 0B 00 00 00 03", "02 00 0C 00 00 00 03"})
    Insert(file, FromHex(row));
  Delete(file, {7, 1});
  Insert(file, Bytes(4034, std::byte{0x11}));
  Replace(file, {7, 2}, Bytes(100, std::byte{0x22}));
  const PageBytes& page = file.disk().Page(7);
  EXPECT_EQ(ToHex(Bytes(page.begin(), page.begin() + 22)),
            "01 01 1D 00 04 00 00 00 00 00 00 00 04 00 F9 0F F9 CF F5 4F 33 00");
  EXPECT_EQ(ToHex(Bytes(page.end() - 11, page.end())), "00 08 00 00 02 00 0A 00 00 00 03");
  EXPECT_EQ(file.disk().Page(8)[15], std::byte{0x8f}) << "the moved row is a hidden one";
}

constexpr RowId kMoved{7, 0};
constexpr RowId kAlone{9, 0};

// Page 7 is full of rows of which the first has moved to page 8; page 9 has one row. Pages 10, 11
// and 12 have 2570, 498 and 1498 free bytes and are in the map of pages with room.
void FillForKills(StorageFile& file) {
  for (std::uint32_t i = 0; i < 20; ++i) Insert(file, TestBytes(i, 200));
  Replace(file, kMoved, TestBytes(50, 400));
  Insert(file, TestBytes(60, 3450));
  ASSERT_EQ(Insert(file, TestBytes(70, 4000)), kAlone);
  for (std::uint32_t i = 0; i < 6; ++i) Insert(file, TestBytes(80 + i, 300));
  for (const std::size_t length : {3178, 400, 10, 2478, 100, 10})
    Insert(file, TestBytes(90, length));
  for (const RowId id : {RowId{10, 5}, RowId{11, 2}, RowId{12, 2}}) Delete(file, id);
  ASSERT_THAT(file.Map(StorageFile::kWithRoom).Pages(), ElementsAre(10, 11, 12));
  ASSERT_EQ(file.pager().page_count(), 13U);
}

// One step of a transaction: the row gets another length, or goes for good when it gets none; a row
// without page is a new one.
struct Step {
  RowId id;
  std::size_t length = 0;
};
constexpr RowId kNew{0, 0};

struct Change {
  const char* name;
  std::vector<Step> steps;
  bool map_changes_second = false;  // the map of owned pages, behind the first step
};

// Makes the change and returns the rows it touches.
std::vector<RowId> Make(StorageFile& file, const Change& change) {
  std::vector<RowId> touched;
  Commit(file, [&](RowStore& rows) {
    std::uint32_t number = 100;
    for (const Step& step : change.steps) {
      const Bytes row = TestBytes(number++, step.length);
      touched.push_back(step.id == kNew ? rows.Insert(row) : step.id);
      if (step.length == 0) rows.Delete(step.id);
      if (step.length != 0 && step.id != kNew) rows.Replace(step.id, row);
      if (change.map_changes_second) file.pager().Edit(StorageFile::kOwned.page);
    }
  });
  return touched;
}

const Change kChanges[] = {
    {"insert", {{kNew, 100}}},
    {"insert on a new page", {{kNew, 4060}}},
    {"replace in place", {{{7, 5}, 150}}},
    {"move to a page with room", {{{7, 5}, 1000}}},
    {"move to a new page", {{{7, 5}, 3900}}},
    {"move a moved row", {{kMoved, 1500}}},
    {"move a moved row twice at once", {{kMoved, 1500}, {kMoved, 3500}}},
    {"bring a moved row home", {{{7, 1}}, {{7, 2}}, {{7, 3}}, {kMoved, 450}}},
    {"delete", {{{7, 5}}}},
    {"delete a moved row", {{kMoved}}},
    {"delete a moved row from a page changed before", {{{8, 1}, 3400}, {kMoved}}},
    {"delete the last row of a page", {{kAlone}}},
    {"move a row of a page changed before", {{{7, 6}, 150}, {{7, 5}, 1100}}},
    {"move rows to each other's pages", {{{11, 1}, 1000}, {{12, 1}, 700}}},
    {"move to a new page when the map changed before", {{{7, 6}, 150}, {{7, 5}, 3900}}, true},
    {"move many rows",
     {{{10, 0}, 290}, {{7, 5}, 1100}, {{10, 1}, 2900}, {{7, 6}, 700}, {kMoved, 900}}},
};

// Killed between any two writes, the file still has every other row, the changed ones as they were
// or as they were to be, and takes further changes.
TEST(RowStoreTest, AKilledChangeLeavesEveryFinishedRow) {
  StorageFile file;
  FillForKills(file);
  const auto pages = file.disk().Snapshot();
  const Model before = Contents(file);
  for (const Change& change : kChanges) {
    file.Load(pages);
    const std::vector<RowId> touched = Make(file, change);
    const Model after = Contents(file);
    EXPECT_THAT(file.Faults(), IsEmpty()) << change.name;
    const std::size_t writes = file.disk().writes;
    for (std::size_t killed_at = 0; killed_at <= writes; ++killed_at) {
      SCOPED_TRACE(testing::Message()
                   << change.name << ", killed at " << killed_at << " of " << writes);
      file.Load(pages);
      file.disk().CutOffAtWrite(killed_at);
      Make(file, change);
      file.disk().Heal();
      file.Reopen();
      EXPECT_THAT(file.Faults(false), IsEmpty());
      Model found = Contents(file);
      const auto is_as_in = [&](const Model& model, RowId id) {
        const auto row = model.find(id);
        return row == model.end() ? !found.contains(id)
                                  : found.contains(id) && found[id] == row->second;
      };
      for (const RowId& id : touched)
        EXPECT_TRUE(is_as_in(before, id) || is_as_in(after, id)) << id.page << ":" << int{id.row};
      for (const auto& [id, row] : before) {
        const bool is_touched = std::ranges::find(touched, id) != touched.end();
        EXPECT_TRUE(is_touched || is_as_in(before, id)) << id.page << ":" << int{id.row};
      }
      for (std::uint32_t i = 0; i < 30; ++i) Insert(file, TestBytes(500 + i, 10 + 40 * i));
      for (const auto& [id, row] : Contents(file)) Replace(file, id, TestBytes(id.page, 350));
      for (const auto& [id, row] : Contents(file)) Delete(file, id);
      EXPECT_THAT(file.Faults(false), IsEmpty());
      EXPECT_THAT(Contents(file), IsEmpty());
    }
  }
}

TEST(RowStoreTest, FillsAPageToItsLastByteAndItsLastSlot) {
  StorageFile file;
  EXPECT_EQ(Insert(file, TestBytes(1, kLargestRow)), (RowId{7, 0}));
  EXPECT_EQ(Insert(file, TestBytes(2, 18)), (RowId{7, 1})) << "4060 + 2 + 18 + 2 = 4082";
  EXPECT_EQ(Insert(file, Bytes{}), (RowId{8, 0}));
  EXPECT_EQ(KindOf([&] { Insert(file, Bytes(kLargestRow + 1)); }), ErrorKind::kRowTooLarge);
  for (std::uint32_t i = 1; i < 255; ++i) Insert(file, TestBytes(i, 5));
  EXPECT_EQ(Insert(file, TestBytes(255, 5)), (RowId{9, 0})) << "255 slots";
  EXPECT_THAT(file.Map(StorageFile::kWithRoom).Pages(), ElementsAre(9));
  EXPECT_THAT(file.Faults(), IsEmpty());
}

TEST(RowStoreTest, EmptiedPagesGoButForTheFirst) {
  StorageFile file;
  for (std::uint32_t i = 0; i < 3; ++i) Insert(file, TestBytes(i, 4000));
  Delete(file, {8, 0});
  EXPECT_EQ(file.disk().Page(8)[0], std::byte{9});
  Delete(file, {7, 0});
  EXPECT_THAT(file.Map(StorageFile::kOwned).Pages(), ElementsAre(7, 9));
  EXPECT_THAT(file.Map(StorageFile::kWithRoom).Pages(), ElementsAre(7, 9));
  EXPECT_EQ(KindOf([&] { Delete(file, {7, 0}); }), ErrorKind::kRecordDeleted);
  EXPECT_EQ(KindOf([&] { Replace(file, {8, 0}, Bytes(5)); }), ErrorKind::kRecordDeleted);
  // A page that empties and fills again within one transaction stays.
  Commit(file, [](RowStore& rows) {
    rows.Delete({9, 0});
    rows.Insert(TestBytes(5, 3900));
  });
  EXPECT_EQ(Contents(file), (Model{{RowId{9, 1}, TestBytes(5, 3900)}}));
  EXPECT_THAT(file.Faults(), IsEmpty());
}

TEST(RowStoreTest, AScanBearsChangesWhileItRuns) {
  StorageFile file;
  for (std::uint32_t i = 0; i < 40; ++i) Insert(file, TestBytes(i, 300));
  Replace(file, {7, 3}, TestBytes(3, 900));
  const RowStore rows = file.Rows();
  RowStore::Scan scan(rows);
  std::vector<RowId> seen;
  while (const auto row = scan.Next()) {
    seen.push_back(row->id);
    if (row->id.row % 2 == 0) Replace(file, row->id, TestBytes(1, 700));
    if (row->id == RowId{7, 2}) Delete(file, {7, 3});
    if (row->id.row % 2 == 1) Delete(file, row->id);
  }
  EXPECT_EQ(seen.size(), 39U);
  EXPECT_EQ(std::set(seen.begin(), seen.end()).size(), seen.size());
  EXPECT_EQ(std::ranges::find(seen, RowId{7, 3}), seen.end());
  EXPECT_THAT(file.Faults(), IsEmpty());
}

}  // namespace
}  // namespace jet::test
