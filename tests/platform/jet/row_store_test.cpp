// Rows on data pages: room, slots, moves and deletion, against a plain map and against kills.
#include "platform/jet/row_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "tests/platform/jet/storage_file.h"
#include "tests/platform/jet/test_random.h"

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

template <typename Action>
ErrorKind KindOf(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return error.kind();
  }
  ADD_FAILURE() << "nothing was thrown";
  return ErrorKind::kIo;
}

// The page of docs/jet_format.md, "Data pages".
TEST(RowStoreTest, WritesTheWorkedPageOfTheDocument) {
  StorageFile file;
  const auto bytes = [](std::initializer_list<int> values) {
    Bytes made;
    for (const int value : values) made.push_back(static_cast<std::byte>(value));
    return made;
  };
  Insert(file, bytes({0x02, 0x00, 0x0a, 0x00, 0x00, 0x00, 0x03}));
  Insert(file, bytes({0x02, 0x00, 0x0b, 0x00, 0x00, 0x00, 0x03}));
  Insert(file, bytes({0x02, 0x00, 0x0c, 0x00, 0x00, 0x00, 0x03}));
  Delete(file, {7, 1});
  Insert(file, Bytes(4034, std::byte{0x11}));
  Replace(file, {7, 2}, Bytes(100, std::byte{0x22}));

  const PageBytes& page = file.disk().Page(7);
  EXPECT_THAT(Bytes(page.begin(), page.begin() + 22),
              testing::ElementsAreArray(
                  bytes({0x01, 0x01, 0x1d, 0x00, 0x40, 0x9c, 0x00, 0x00, 0x00, 0x00, 0x00,
                         0x00, 0x04, 0x00, 0xf9, 0x0f, 0xf9, 0xcf, 0xf5, 0x4f, 0x33, 0x00})));
  EXPECT_THAT(Bytes(page.end() - 11, page.end()),
              testing::ElementsAreArray(
                  bytes({0x00, 0x08, 0x00, 0x00, 0x02, 0x00, 0x0a, 0x00, 0x00, 0x00, 0x03})));
  EXPECT_EQ(file.disk().Page(8)[15], std::byte{0x8f}) << "the moved row is a hidden one";
}

// Thousands of changes in transactions of several, some dropped, some failing on the way to disk.
TEST(RowStoreTest, BehavesAsAMapOfRows) {
  for (const std::uint32_t seed : {1U, 2U, 3U}) {
    SCOPED_TRACE(seed);
    Random random(seed);
    StorageFile file(seed == 3 ? 0x01020304 : 0);
    Model model;
    std::uint32_t number = 0;
    const auto any_row = [&] {
      const auto at = model.lower_bound({7 + random() % 40, static_cast<std::uint8_t>(random())});
      return at == model.end() ? model.begin() : at;
    };
    const auto any_length = [&]() -> std::size_t {
      switch (random() % 8) {
        case 0:
          return random() % 4;  // shorter than the address it may have to become
        case 1:
          return kLargestRow - random() % 50;
        case 2:
          return 1000 + random() % 1500;
        default:
          return 10 + random() % 200;
      }
    };
    for (int step = 0; step < 1200; ++step) {
      const Model before = model;
      const bool shrinking = step / 150 % 3 == 2;
      const bool fails = random() % 10 == 0;
      file.disk().Heal();
      if (fails) file.disk().FailAtWrite(random() % 4);
      try {
        PageTransaction transaction(file.pager());
        RowStore rows = file.Rows();
        for (std::uint32_t change = random() % 5 + 1; change > 0; --change) {
          const std::uint32_t kind = random() % 10;
          const Bytes row = TestBytes(++number, any_length());
          if (model.empty() || kind < (shrinking ? 1U : 4U)) {
            const RowId id = rows.Insert(row);
            ASSERT_TRUE(model.emplace(id, row).second) << "a slot used again";
          } else if (kind < (shrinking ? 3U : 8U)) {
            const auto at = any_row();
            try {
              rows.Replace(at->first, row);
            } catch (const Error& error) {
              ASSERT_EQ(error.kind(), ErrorKind::kRowTooLarge);
              ASSERT_LT(at->second.size(), 4U);
              continue;
            }
            at->second = row;
          } else {
            const auto at = any_row();
            rows.Delete(at->first);
            ASSERT_FALSE(rows.Read(at->first).has_value());
            model.erase(at);
          }
        }
        if (random() % 10 == 0) {
          model = before;
          continue;
        }
        transaction.Commit();
      } catch (const Error& error) {
        ASSERT_TRUE(fails) << error.what();
        model = before;
      }
      file.disk().Heal();
      if (step % 20 == 0) {
        ASSERT_THAT(file.Faults(), IsEmpty()) << step;
        ASSERT_EQ(Contents(file), model) << step;
      }
      if (step % 100 == 50) file.Reopen(16);
    }
    while (!model.empty()) {
      Delete(file, model.begin()->first);
      model.erase(model.begin());
    }
    EXPECT_THAT(file.Faults(), IsEmpty());
    EXPECT_LE(file.Map(StorageFile::kOwned).Pages().size(), 1U) << "only the first page stays";
  }
}

// A file with rows of every kind, and the changes that touch most pages.
struct Change {
  const char* name;
  void (*make)(StorageFile& file, RowStore& rows, std::vector<RowId>& touched);
};

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

const Change kChanges[] = {
    {"insert", [](auto&, RowStore& rows,
                  auto& touched) { touched.push_back(rows.Insert(TestBytes(100, 100))); }},
    {"insert on a new page",
     [](auto&, RowStore& rows, auto& touched) {
       touched.push_back(rows.Insert(TestBytes(100, 4060)));
     }},
    {"replace in place",
     [](auto&, RowStore& rows, auto& touched) {
       touched = {{7, 5}};
       rows.Replace({7, 5}, TestBytes(101, 150));
     }},
    {"move to a page with room",
     [](auto&, RowStore& rows, auto& touched) {
       touched = {{7, 5}};
       rows.Replace({7, 5}, TestBytes(102, 1000));
     }},
    {"move to a new page",
     [](auto&, RowStore& rows, auto& touched) {
       touched = {{7, 5}};
       rows.Replace({7, 5}, TestBytes(102, 3900));
     }},
    {"move a moved row",
     [](auto&, RowStore& rows, auto& touched) {
       touched = {kMoved};
       rows.Replace(kMoved, TestBytes(103, 1500));
     }},
    {"move a moved row twice at once",
     [](auto&, RowStore& rows, auto& touched) {
       touched = {kMoved};
       rows.Replace(kMoved, TestBytes(103, 1500));
       rows.Replace(kMoved, TestBytes(103, 3500));
     }},
    {"bring a moved row home",
     [](auto&, RowStore& rows, auto& touched) {
       touched = {kMoved, {7, 1}, {7, 2}, {7, 3}};
       for (std::uint8_t i = 1; i < 4; ++i) rows.Delete({7, i});
       rows.Replace(kMoved, TestBytes(104, 450));
     }},
    {"delete",
     [](auto&, RowStore& rows, auto& touched) {
       touched = {{7, 5}};
       rows.Delete({7, 5});
     }},
    {"delete a moved row",
     [](auto&, RowStore& rows, auto& touched) {
       touched = {kMoved};
       rows.Delete(kMoved);
     }},
    {"delete a moved row from a page changed before",
     [](auto&, RowStore& rows, auto& touched) {
       touched = {kMoved, {8, 1}};
       rows.Replace({8, 1}, TestBytes(105, 3400));
       rows.Delete(kMoved);
     }},
    {"delete the last row of a page",
     [](auto&, RowStore& rows, auto& touched) {
       touched = {kAlone};
       rows.Delete(kAlone);
     }},
    {"move a row of a page changed before",
     [](auto&, RowStore& rows, auto& touched) {
       touched = {{7, 5}, {7, 6}};
       rows.Replace({7, 6}, TestBytes(105, 150));
       rows.Replace({7, 5}, TestBytes(106, 1100));
     }},
    {"move rows to each other's pages",
     [](auto&, RowStore& rows, auto& touched) {
       touched = {{11, 1}, {12, 1}};
       rows.Replace({11, 1}, TestBytes(107, 1000));
       rows.Replace({12, 1}, TestBytes(108, 700));
     }},
    {"move a row to a new page when its map has already lost another",
     [](StorageFile& file, RowStore& rows, auto& touched) {
       touched = {{7, 5}, {7, 6}};
       rows.Replace({7, 6}, TestBytes(105, 150));
       file.pager().Edit(StorageFile::kOwned.page);
       rows.Replace({7, 5}, TestBytes(109, 3900));
     }},
    {"move many rows",
     [](auto&, RowStore& rows, auto& touched) {
       touched = {{7, 5}, {7, 6}, {10, 0}, {10, 1}, kMoved};
       rows.Replace({10, 0}, TestBytes(105, 290));
       rows.Replace({7, 5}, TestBytes(106, 1100));
       rows.Replace({10, 1}, TestBytes(107, 2900));
       rows.Replace({7, 6}, TestBytes(108, 700));
       rows.Replace(kMoved, TestBytes(109, 900));
     }},
};

// Killed between any two writes, the file still has every other row, the changed ones as they were
// or as they were to be, and takes further changes.
TEST(RowStoreTest, AKilledChangeLeavesEveryFinishedRow) {
  StorageFile file;
  FillForKills(file);
  const auto pages = file.disk().Snapshot();
  const Model before = Contents(file);
  for (const Change& change : kChanges) {
    std::vector<RowId> touched;
    const auto run = [&] {
      Commit(file, [&](RowStore& rows) { change.make(file, rows, touched); });
    };
    file.Load(pages);
    run();
    const Model after = Contents(file);
    EXPECT_THAT(file.Faults(), IsEmpty()) << change.name;
    const std::size_t writes = file.disk().writes;
    for (std::size_t killed_at = 0; killed_at <= writes; ++killed_at) {
      SCOPED_TRACE(testing::Message()
                   << change.name << ", killed at " << killed_at << " of " << writes);
      file.Load(pages);
      file.disk().CutOffAtWrite(killed_at);
      run();
      file.disk().Heal();
      file.Reopen();
      EXPECT_THAT(file.Faults(false), IsEmpty());
      Model found = Contents(file);
      for (const RowId& id : touched) {
        const auto row = found.find(id);
        const bool is_old = row == found.end()
                                ? !before.contains(id)
                                : before.contains(id) && row->second == before.at(id);
        const bool is_new = row == found.end() ? !after.contains(id)
                                               : after.contains(id) && row->second == after.at(id);
        EXPECT_TRUE(is_old || is_new) << id.page << ":" << int{id.row};
        found.erase(id);
      }
      for (const auto& [id, row] : before) {
        const bool is_touched = std::ranges::find(touched, id) != touched.end();
        EXPECT_TRUE(is_touched || found[id] == row) << id.page << ":" << int{id.row};
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
  EXPECT_EQ(KindOf([&] {
              Replace(file, {7, 1}, Bytes(kLargestRow + 1));
            }),
            ErrorKind::kRowTooLarge);
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
  EXPECT_EQ(file.disk().Page(8)[15], std::byte{0xd0});
  EXPECT_THAT(file.Map(StorageFile::kOwned).Pages(), ElementsAre(7, 9));
  Delete(file, {7, 0});
  EXPECT_EQ(file.disk().Page(7)[0], std::byte{1});
  EXPECT_THAT(file.Map(StorageFile::kOwned).Pages(), ElementsAre(7, 9));
  EXPECT_THAT(file.Map(StorageFile::kWithRoom).Pages(), ElementsAre(7, 9));
  EXPECT_THAT(file.Faults(), IsEmpty());
  EXPECT_EQ(KindOf([&] { Delete(file, {7, 0}); }), ErrorKind::kRecordDeleted);
  EXPECT_EQ(KindOf([&] { Replace(file, {8, 0}, Bytes(5)); }), ErrorKind::kRecordDeleted);
  EXPECT_EQ(file.Rows().Read({500, 0}), std::nullopt);
  // A page that empties and fills again within one transaction stays.
  Commit(file, [](RowStore& rows) {
    rows.Delete({9, 0});
    rows.Insert(TestBytes(5, 3900));
  });
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

TEST(RowStoreTest, DamagedPagesAreErrorsNotRows) {
  struct Damage {
    const char* what;
    PageNumber page;
    std::size_t at;
    std::uint16_t value;
  };
  // Page 7: row 0 there, row 1 moved to page 8, row 2 of 4000 bytes. Page 8: the moved row alone.
  for (const Damage& damage :
       {Damage{"more slots than there can be", 7, 12, 0x0100},
        Damage{"offsets rise", 7, 16, 0x4fff}, Damage{"offset over the slots", 7, 18, 0x0005},
        Damage{"free bytes", 7, 2, 0x0001}, Damage{"an unused flag", 7, 14, 0x2000 | 4046},
        Damage{"another's page", 7, 4, 0x0009}, Damage{"an index page", 7, 0, 0x0104},
        Damage{"target not hidden", 8, 14, 4096 - 1000},
        Damage{"target of another table", 8, 4, 0x0009},
        Damage{"target behind the end", 7, 4042, 0x4000},
        Damage{"target on its own page", 7, 4042, 0x0700}}) {
    SCOPED_TRACE(damage.what);
    StorageFile file;
    Insert(file, TestBytes(1, 50));
    Insert(file, TestBytes(2, 4));
    Insert(file, TestBytes(3, 4000));
    Replace(file, {7, 1}, TestBytes(2, 1000));
    ASSERT_EQ(ByteView(file.disk().Page(7)).U32(4042), 0x800U);
    ByteEditor(file.disk().Page(damage.page)).SetU16(damage.at, damage.value);
    file.Reopen();
    const auto everything = [&] {
      Contents(file);
      Replace(file, {7, 1}, TestBytes(2, 2000));
      for (const auto& [id, row] : Contents(file)) Delete(file, id);
    };
    EXPECT_EQ(KindOf(everything), ErrorKind::kDamaged);
  }
}

TEST(RowStoreTest, HintsAreNotTrusted) {
  StorageFile file;
  Insert(file, TestBytes(1, 50));
  {
    // Left by a kill: the page has left the table but not the map of pages with room.
    PageTransaction transaction(file.pager());
    file.Map(StorageFile::kWithRoom).Add(300);
    file.Map(StorageFile::kWithRoom).Add(6);
    transaction.Commit();
  }
  EXPECT_EQ(Insert(file, TestBytes(2, 50)), (RowId{7, 1}));
  EXPECT_THAT(file.Map(StorageFile::kWithRoom).Pages(), ElementsAre(6, 7));
  Insert(file, TestBytes(2, 4000));
  EXPECT_THAT(file.Faults(), IsEmpty());
}

}  // namespace
}  // namespace jet::test
