// The file check: sound files of several writers pass, each kind of damage is named, and nothing
// that a file can contain makes it fail or hang.
#include "platform/jet/check.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <iterator>

#include "platform/jet/data_page.h"
#include "platform/jet/index_page_format.h"
#include "platform/jet/map_row.h"
#include "tests/platform/jet/full_database.h"
#include "tests/platform/jet/test_random.h"

namespace jet::test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

// A file with everything, made by the engine.
struct SoundFile {
  SoundFile() {
    TestDatabase database({.password = u"secret"});
    FillWithEverything(database);
    pages = database.disk().Snapshot();
    all = database[u"All"].definition();
    parents = database[u"Parents"].definition();
    children = database[u"Children"].definition();
  }

  std::vector<PageBytes> pages;
  TableDefinition all;
  TableDefinition parents;
  TableDefinition children;
};

const SoundFile& Sound() {
  static const SoundFile file;
  return file;
}

CheckReport Check(const std::vector<PageBytes>& pages, const std::u16string& password = u"secret") {
  auto disk = std::make_shared<MemoryDisk>();
  for (const PageBytes& page : pages) disk->pages.push_back(std::make_unique<PageBytes>(page));
  disk->read_only = true;
  return CheckPages(std::make_unique<MemoryPageStore>(disk), {.password = password});
}

TEST(CheckTest, OwnFilesHaveNothingToRemark) {
  const CheckReport report = Check(Sound().pages);
  EXPECT_THAT(report.problems, IsEmpty());
  EXPECT_THAT(report.notes, IsEmpty());
  EXPECT_EQ(report.tables, 4U);
  EXPECT_EQ(report.rows, 200U + 40 + 200);
}

// ---- Planted damage ----

// The sound file's pages, to be damaged.
struct Damage {
  std::vector<PageBytes> pages = Sound().pages;
  const TableDefinition& all = Sound().all;
  const TableDefinition& parents = Sound().parents;
  const TableDefinition& children = Sound().children;

  ByteEditor Edit(PageNumber page) { return ByteEditor(pages.at(page), page); }
  ByteView View(PageNumber page) const { return ByteView(pages.at(page), page); }

  // The first page that `fits`.
  PageNumber Find(const std::function<bool(ByteView)>& fits) const {
    for (PageNumber page = 1; page < pages.size(); ++page) {
      if (fits(View(page))) return page;
    }
    throw std::logic_error("the sound file lacks a page that the test needs");
  }
  PageNumber DataPage(PageNumber table) const {
    return Find([&](ByteView page) {
      return page.U16(0) == data_page::kType && page.U32(data_page::kOwnerAt) == table;
    });
  }
  PageNumber Leaf() const {
    return Find([&](ByteView page) {
      return page.U16(0) == index_page_format::kLeaf && page.U32(index_page_format::kNextAt) != 0 &&
             page.U32(index_page_format::kOwnerAt) == all.page;
    });
  }
  std::size_t RowStart(PageNumber page, unsigned row) const {
    return View(page).U16(data_page::kSlotsAt + 2 * row) & data_page::kOffsetMask;
  }
  // The rows of the table with everything whose slots have these flags.
  std::vector<RowPointer> RowsOfAllWith(unsigned flags) const {
    std::vector<RowPointer> rows;
    for (PageNumber page = 1; page < pages.size(); ++page) {
      if (!data_page::IsOwnedBy(View(page), all.page)) continue;
      for (std::uint8_t row = 0; row < data_page::SlotCount(View(page)); ++row)
        if (data_page::SlotAt(View(page), row).flags == flags) rows.push_back({page, row});
    }
    return rows;
  }
  void PointTo(RowPointer pointer, RowPointer target) {
    Edit(pointer.page).SetU32(RowStart(pointer.page, pointer.row), target.ToStored());
  }
  void PointTwoToOne() {
    const std::vector<RowPointer> pointers = RowsOfAllWith(data_page::kPointerFlag);
    const RowPointer first = pointers.at(0);
    const std::uint32_t target = View(first.page).U32(RowStart(first.page, first.row));
    PointTo(pointers.at(1), RowPointer::FromStored(target));
  }
  void DeleteFirstRow(const TableDefinition& table) {
    Edit(DataPage(table.page)).SetU8(data_page::kSlotsAt + 1, 0xcf);
  }
  // The bit of a page in a map in inline form that begins with page 0.
  bool HasMapBit(RowPointer map, PageNumber page) const {
    return (View(map.page).U8(MapByte(map, page)) >> page % 8 & 1U) != 0;
  }
  void FlipMapBit(RowPointer map, PageNumber page) {
    pages.at(map.page)[MapByte(map, page)] ^= std::byte(1U << page % 8);
  }
  std::size_t MapByte(RowPointer map, PageNumber page) const {
    return RowStart(map.page, map.row) + usage_map::kBitsAt + page / 8;
  }
  // Changes a definition to another one of the same length.
  void Redefine(TableDefinition table, const std::function<void(TableDefinition&)>& change) {
    change(table);
    const Bytes bytes = SerializeTableDefinition(table);
    std::copy(bytes.begin() + 8, bytes.end(), pages.at(table.page).begin() + 8);
  }
  void ChangeRelation(const std::function<void(LogicalIndex&)>& change) {
    Redefine(children, [&](TableDefinition& table) {
      change(
          *std::ranges::find(table.logical_indexes, IndexKind::kRelationship, &LogicalIndex::kind));
    });
  }
  void ChangeIndex(const TableDefinition& table, std::uint16_t column,
                   const std::function<void(PhysicalIndex&)>& change) {
    Redefine(table, [&](TableDefinition& changed) {
      for (PhysicalIndex& index : changed.physical_indexes)
        if (index.columns.at(0).column_number == column) change(index);
    });
  }
};

struct DamageCase {
  const char* expected;  // in one of the problems, or of the notes
  std::function<void(Damage&)> plant;
};

const DamageCase kDamages[] = {
    {"wrong number of free bytes", [](Damage& f) { f.Edit(f.DataPage(f.all.page)).SetU16(2, 1); }},
    {"not a data page", [](Damage& f) { f.Edit(f.DataPage(f.all.page)).SetU8(1, 0); }},
    {"rows without the row they refer to", [](Damage& f) { f.DeleteFirstRow(f.parents); }},
    {"1 with another key than their row",
     [](Damage& f) {
       const PageNumber page = f.DataPage(f.parents.page);
       f.Edit(page).SetU8(f.RowStart(page, 3) + 3, 0x77);
     }},
    {"is marked free",
     [](Damage& f) {
       f.FlipMapBit({1, 0}, f.DataPage(f.all.page));
     }},
    {"40 entries without row",
     [](Damage& f) { f.FlipMapBit(f.parents.owned_pages, f.DataPage(f.parents.page)); }},
    {"belongs to data of",
     [](Damage& f) { f.FlipMapBit(f.parents.owned_pages, f.DataPage(f.children.page)); }},
    {"pages that are not owned",
     [](Damage& f) { f.FlipMapBit(f.parents.pages_with_room, f.DataPage(f.children.page)); }},
    {"behind the end of the file", [](Damage& f) { f.FlipMapBit(f.parents.owned_pages, 511); }},
    {"its usage map has",
     [](Damage& f) {
       const PhysicalIndex& index = f.parents.physical_indexes.at(0);
       f.FlipMapBit(index.pages_map, index.root);
     }},
    {"links to pages", [](Damage& f) { f.Edit(f.Leaf()).SetU32(16, 0); }},
    {"links to pages", [](Damage& f) { f.Edit(f.Leaf()).SetU32(12, f.Leaf()); }},
    {"out of order", [](Damage& f) { f.Edit(f.Leaf()).SetU8(480, 0xff); }},
    {"an index page of another table", [](Damage& f) { f.Edit(f.Leaf()).SetU32(4, 3); }},
    {"a level or a tail", [](Damage& f) { f.Edit(f.Leaf()).SetU8(26, 1); }},
    {"have the same key in a unique index",
     [](Damage& f) { f.ChangeIndex(f.all, 2, [](PhysicalIndex& index) { index.flags |= 0x01; }); }},
    {"Null in a column whose index refuses it",
     [](Damage& f) { f.ChangeIndex(f.all, 2, [](PhysicalIndex& index) { index.flags |= 0x08; }); }},
    {"with another key than their row",
     [](Damage& f) {
       f.ChangeIndex(f.all, 2, [](PhysicalIndex& index) { index.columns[0].column_number = 3; });
     }},
    {"its two ends do not agree",
     [](Damage& f) {
       f.ChangeRelation([](LogicalIndex& end) { end.on_update = RelationAction::kCascade; });
     }},
    {"no end that points back",
     [](Damage& f) { f.ChangeRelation([](LogicalIndex& end) { end.other_number = 77; }); }},
    {"has no index in the table that refers",
     [](Damage& f) {
       f.ChangeRelation([](LogicalIndex& end) { end.kind = IndexKind::kOrdinary; });
     }},
    {"5 free bytes stored", [](Damage& f) { f.Edit(f.parents.page).SetU16(2, 5); }},
    {"Parents: page", [](Damage& f) { f.Edit(f.parents.page).SetU32(0x0c, 0); }},
    {"which is no moved row of the table",
     [](Damage& f) {
       const RowPointer pointer = f.RowsOfAllWith(data_page::kPointerFlag).at(0);
       f.PointTo(pointer, pointer);
     }},
    {"two rows point to", [](Damage& f) { f.PointTwoToOne(); }},
    {"moved rows that nothing points to", [](Damage& f) { f.PointTwoToOne(); }},
    {"pages are neither owned nor free",
     [](Damage& f) {
       f.FlipMapBit({1, 0}, f.Find([&](ByteView page) {
         return f.HasMapBit({1, 0}, page.number());
       }));
     }},
    {"another stamp",
     [](Damage& f) {
       const PageNumber page = f.Find([](ByteView view) {
         return view.U32(4) == data_page::kLongValueOwner && view.U32(8) != 0;
       });
       f.Edit(page).SetU32(8, f.View(page).U32(8) + 1);
     }},
    {"a long value on a page that its column does not own",
     [](Damage& f) {
       const RowPointer map = f.all.long_value_maps.at(0).owned;
       f.FlipMapBit(map, f.Find([&](ByteView view) { return f.HasMapBit(map, view.number()); }));
     }},
    {"owner does not fit page 0", [](Damage& f) { f.Edit(0).SetU8(0x6a, f.View(0).U8(0x6a) ^ 1); }},
    {"cut off", [](Damage& f) { f.Edit(0).SetU16(0xe00, 0); }},
    {"object Parents has no rights",
     [](Damage& f) {
       const PageNumber page = f.DataPage(3);
       for (unsigned row = 0; row < f.View(page).U16(12); ++row) {
         const std::size_t object = f.RowStart(page, row) + 2;
         if (f.View(page).U32(object) == f.parents.page) f.Edit(page).SetU32(object, 0);
       }
     }},
};

TEST(CheckTest, EachPlantedDamageIsNamed) {
  for (const DamageCase& test : kDamages) {
    Damage damage;
    test.plant(damage);
    CheckReport report = Check(damage.pages);
    std::ranges::move(report.notes, std::back_inserter(report.problems));
    EXPECT_THAT(report.problems, Contains(HasSubstr(test.expected)));
  }
}

TEST(CheckTest, LongListsEndInANumber) {
  Damage damage;
  for (PageNumber number = 6; number < damage.pages.size(); ++number) {
    const ByteView page = damage.View(number);
    const bool is_of_rows = page.U32(4) == damage.all.page || page.U32(4) == damage.children.page;
    if (page.U16(0) != data_page::kType || !is_of_rows) continue;
    // Every row has a column more than its table.
    for (unsigned row = 0; row < page.U16(12); ++row)
      if (page.U16(14 + 2 * row) < 0x2000) damage.Edit(number).SetU16(page.U16(14 + 2 * row), 99);
  }
  const CheckReport report = Check(damage.pages);
  EXPECT_EQ(report.problems.size(), 201U);
  EXPECT_THAT(report.problems.back(), HasSubstr("more"));
}

// Whole pages exchanged, so that every page is well formed in itself.
TEST(CheckTest, ExchangedPagesAreNoticed) {
  Random random(21);
  for (int round = 0; round < 60; ++round) {
    Damage damage;
    const auto count = static_cast<PageNumber>(damage.pages.size());
    const PageNumber from = 2 + random() % (count - 2);
    const PageNumber to = 2 + random() % (count - 2);
    if (damage.HasMapBit({1, 0}, to) || damage.pages[from] == damage.pages[to]) continue;
    damage.pages[to] = damage.pages[from];
    SCOPED_TRACE(testing::Message() << "page " << from << " over page " << to);
    const CheckReport report = Check(damage.pages);
    EXPECT_FALSE(report.problems.empty() && report.notes.empty());
  }
}

}  // namespace
}  // namespace jet::test
