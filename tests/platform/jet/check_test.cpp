// The file check: sound files of several writers pass, each kind of damage is named, and nothing
// that a file can contain makes it fail or hang.
#include "platform/jet/check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <vector>

#include "platform/jet/data_page_format.h"
#include "platform/jet/index_page_format.h"
#include "platform/jet/map_row.h"
#include "tests/platform/jet/memory_page_store.h"
#include "tests/platform/jet/test_random.h"
#include "tests/support/temporary_folder.h"

namespace jet {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::u16string_view kPassword = u"secret";

// A file with two related tables, made by the engine: moved rows, long values of all forms, deleted
// rows, an index of several pages, Nulls.
struct SoundFile {
  std::vector<PageBytes> pages;
  TableDefinition groups;
  TableDefinition articles;
};

SoundFile MakeSoundFile() {
  const test_support::TemporaryFolder folder;
  const auto path = folder / "sound.mdb";
  SoundFile file;
  {
    const auto database = Database::Create(path, {std::u16string(kPassword), false, {}});
    database->CreateTable({u"Groups",
                           {{u"Id", ColumnType::kLong, 0, true}, {u"Code", ColumnType::kText, 20}},
                           {{u"PrimaryKey", {{u"Id"}}, true}}});
    database->CreateTable({u"Articles",
                           {{u"Id", ColumnType::kLong, 0, true},
                            {u"GroupId", ColumnType::kLong},
                            {u"Code", ColumnType::kText, 255},
                            {u"Notes", ColumnType::kMemo}},
                           {{u"PrimaryKey", {{u"Id"}}, true}, {u"Code", {{u"Code"}}}}});
    database->CreateRelationship(
        {u"GroupsArticles", u"Articles", {u"GroupId"}, u"Groups", {u"Id"}});
    Table& groups = database->OpenTable(u"Groups");
    for (int i = 0; i < 10; ++i) {
      Row row{Null{}, std::u16string(u"Group")};
      groups.Insert(row);
    }
    Table& articles = database->OpenTable(u"Articles");
    std::vector<RowId> ids;
    for (std::int32_t i = 0; i < 400; ++i) {
      const std::u16string code = u"Article " + std::u16string(std::size_t(i % 20), u'x');
      const auto notes = static_cast<std::size_t>(i % 40 == 0 ? 9000 : i % 5 * 60);
      Row row{Null{}, i % 7 == 0 ? Value(Null{}) : Value(i % 10 + 1), code,
              std::u16string(notes, u'\u0416')};
      ids.push_back(articles.Insert(row));
    }
    for (std::size_t i = 0; i < ids.size(); i += 9) articles.Delete(ids[i]);
    for (std::size_t i = 1; i < ids.size(); i += 9) {
      Row row = *articles.Read(ids[i]);
      row[2] = std::u16string(200, u'y') + std::get<std::u16string>(row[2]);
      articles.Update(ids[i], row);
    }
    file.groups = groups.definition();
    file.articles = articles.definition();
  }
  const auto store = OpenPageStore(path, OpenMode::kReadOnly);
  file.pages.resize(store->page_count());
  for (PageNumber i = 0; i < store->page_count(); ++i) store->Read(i, file.pages[i]);
  return file;
}

const SoundFile& Sound() {
  static const SoundFile file = MakeSoundFile();
  return file;
}

CheckReport Check(const std::vector<PageBytes>& pages, std::u16string_view password = kPassword) {
  auto disk = std::make_shared<test::MemoryDisk>();
  disk->Resize(static_cast<PageNumber>(pages.size()));
  for (PageNumber i = 0; i < pages.size(); ++i) disk->Page(i) = pages[i];
  disk->read_only = true;
  return CheckPages(std::make_unique<test::MemoryPageStore>(disk),
                    {.password = std::u16string(password)});
}

TEST(CheckTest, OwnFilesHaveNothingToRemark) {
  const CheckReport report = Check(Sound().pages);
  EXPECT_THAT(report.problems, IsEmpty());
  EXPECT_THAT(report.notes, IsEmpty());
  EXPECT_EQ(report.tables, 2U);
  EXPECT_EQ(report.rows, 10U + 400 - 45);
  EXPECT_EQ(report.index_entries, 10U + 3 * (400 - 45));
}

TEST(CheckTest, FilesOfOtherWritersAreSound) {
  const char* shared = std::getenv("ORVPAP_SHARED");
  if (shared == nullptr) GTEST_SKIP() << "ORVPAP_SHARED names no folder with sample files";
  struct Sample {
    const char* path;
    std::size_t tables;
    std::size_t rows;
    std::size_t entries;
  };
  for (const Sample& sample : {Sample{"jet/samples/made-by-the-jet-provider.mdb", 0, 0, 0},
                               Sample{"jet/samples/made-by-access-2003.mdb", 3, 11, 30},
                               Sample{"jet/samples/made-by-a-java-library.mdb", 2, 407, 1842},
                               Sample{"product-tables/linked.pt", 15, 769, 2150},
                               Sample{"product-tables/loose.pt", 16, 767, 1252},
                               Sample{"product-tables/large.pt", 16, 51737, 91826}}) {
    SCOPED_TRACE(sample.path);
    const CheckReport report =
        CheckFile(std::filesystem::path(shared) / sample.path, {.password = u"quorbelintax"});
    EXPECT_THAT(report.problems, IsEmpty());
    EXPECT_EQ(report.tables, sample.tables);
    EXPECT_EQ(report.rows, sample.rows);
    EXPECT_EQ(report.index_entries, sample.entries);
  }
}

TEST(CheckTest, ThrowsWhatOpeningThrows) {
  const auto kind_of = [](const std::vector<PageBytes>& pages, std::u16string_view password) {
    try {
      Check(pages, password);
    } catch (const Error& error) {
      return error.kind();
    }
    return ErrorKind::kRecordDeleted;
  };
  EXPECT_EQ(kind_of(Sound().pages, u"Secret"), ErrorKind::kWrongPassword);
  EXPECT_EQ(kind_of({PageBytes{}}, kPassword), ErrorKind::kNotADatabase);
  EXPECT_EQ(kind_of({}, kPassword), ErrorKind::kNotADatabase);
}

// ---- Planted damage ----

// The sound file's pages, to be damaged.
struct Damage {
  std::vector<PageBytes> pages = Sound().pages;
  const TableDefinition& groups = Sound().groups;
  const TableDefinition& articles = Sound().articles;

  ByteEditor Edit(PageNumber page) { return ByteEditor(pages.at(page), page); }
  ByteView View(PageNumber page) const { return ByteView(pages.at(page), page); }

  // The first page that `fits`.
  PageNumber Find(const std::function<bool(ByteView)>& fits) const {
    for (PageNumber page = 1; page < pages.size(); ++page) {
      if (fits(View(page))) return page;
    }
    throw std::logic_error("the sound file lacks a page that the test needs");
  }
  PageNumber DataPage(const TableDefinition& table) const {
    return Find([&](ByteView page) {
      return page.U16(0) == data_page::kType && page.U32(data_page::kOwnerAt) == table.page;
    });
  }
  PageNumber Leaf(const TableDefinition& table) const {
    return Find([&](ByteView page) {
      return page.U16(0) == index_page_format::kLeaf &&
             page.U32(index_page_format::kOwnerAt) == table.page &&
             page.U32(index_page_format::kNextAt) != 0;
    });
  }
  std::size_t RowStart(PageNumber page, unsigned row) const {
    return View(page).U16(data_page::kSlotsAt + 2 * row) & data_page::kOffsetMask;
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
  // Replaces a definition by a changed one of the same length.
  void Redefine(const TableDefinition& table, const std::function<void(TableDefinition&)>& change) {
    TableDefinition changed = table;
    change(changed);
    const Bytes bytes = SerializeTableDefinition(changed);
    std::copy(bytes.begin() + 8, bytes.end(), pages.at(table.page).begin() + 8);
  }
};

struct DamageCase {
  const char* name;
  std::function<void(Damage&)> plant;
  const char* expected;  // in one of the problems
};

std::ostream& operator<<(std::ostream& out, const DamageCase& test) { return out << test.name; }

class PlantedDamageTest : public testing::TestWithParam<DamageCase> {};

TEST_P(PlantedDamageTest, IsNamed) {
  Damage damage;
  GetParam().plant(damage);
  EXPECT_THAT(Check(damage.pages).problems, Contains(HasSubstr(GetParam().expected)));
}

LogicalIndex& RelationEnd(TableDefinition& table) {
  return *std::ranges::find(table.logical_indexes, IndexKind::kRelationship, &LogicalIndex::kind);
}

PhysicalIndex& IndexOf(TableDefinition& table, std::uint16_t column) {
  return *std::ranges::find_if(table.physical_indexes, [&](const PhysicalIndex& index) {
    return index.columns.at(0).column_number == column;
  });
}

const DamageCase kDamages[] = {
    {"free_bytes", [](Damage& file) { file.Edit(file.DataPage(file.articles)).SetU16(2, 1); },
     "wrong number of free bytes"},
    {"data_page_type", [](Damage& file) { file.Edit(file.DataPage(file.articles)).SetU8(1, 0); },
     "not a data page"},
    {"deleted_row_still_indexed",
     [](Damage& file) {
       const PageNumber page = file.DataPage(file.groups);
       file.Edit(page).SetU8(data_page::kSlotsAt + 1, 0xcf);
     },
     "1 entries without row"},
    {"lost_parent_row",
     [](Damage& file) {
       const PageNumber page = file.DataPage(file.groups);
       file.Edit(page).SetU8(data_page::kSlotsAt + 1, 0xcf);
     },
     "rows without the row they refer to"},
    {"changed_key",
     [](Damage& file) {
       const PageNumber page = file.DataPage(file.groups);
       file.Edit(page).SetU8(file.RowStart(page, 3) + 2, 0x77);
     },
     "1 with another key than their row"},
    {"used_page_marked_free",
     [](Damage& file) {
       file.FlipMapBit({1, 0}, file.DataPage(file.articles));
     },
     "is marked free"},
    {"data_page_not_in_map",
     [](Damage& file) { file.FlipMapBit(file.groups.owned_pages, file.DataPage(file.groups)); },
     "10 entries without row"},
    {"data_page_with_two_owners",
     [](Damage& file) { file.FlipMapBit(file.groups.owned_pages, file.DataPage(file.articles)); },
     "belongs to data of"},
    {"room_on_a_page_not_owned",
     [](Damage& file) {
       file.FlipMapBit(file.groups.pages_with_room, file.DataPage(file.articles));
     },
     "pages that are not owned"},
    {"map_beyond_the_end", [](Damage& file) { file.FlipMapBit(file.groups.owned_pages, 500); },
     "behind the end of the file"},
    {"index_page_not_in_map",
     [](Damage& file) {
       const PhysicalIndex& index = file.articles.physical_indexes.at(0);
       file.FlipMapBit(index.pages_map, index.root);
     },
     "its usage map has"},
    {"broken_leaf_link", [](Damage& file) { file.Edit(file.Leaf(file.articles)).SetU32(16, 0); },
     "links to pages"},
    {"leaf_out_of_order",
     [](Damage& file) { file.Edit(file.Leaf(file.articles)).SetU8(480, 0xff); }, "out of order"},
    {"leaf_of_another_table",
     [](Damage& file) { file.Edit(file.Leaf(file.articles)).SetU32(4, 3); },
     "an index page of another table"},
    {"leaf_with_level", [](Damage& file) { file.Edit(file.Leaf(file.articles)).SetU8(26, 1); },
     "a level or a tail"},
    {"duplicate_in_unique_index",
     [](Damage& file) {
       file.Redefine(file.articles,
                     [](TableDefinition& table) { IndexOf(table, 2).flags |= 0x01; });
     },
     "have the same key in a unique index"},
    {"null_where_refused",
     [](Damage& file) {
       file.Redefine(file.articles,
                     [](TableDefinition& table) { IndexOf(table, 1).flags |= 0x08; });
     },
     "Null in a column whose index refuses it"},
    {"index_over_another_column",
     [](Damage& file) {
       file.Redefine(file.articles, [](TableDefinition& table) {
         IndexOf(table, 0).columns.at(0).column_number = 2;
       });
     },
     "with another key than their row"},
    {"relationship_ends_disagree",
     [](Damage& file) {
       file.Redefine(file.articles, [](TableDefinition& table) {
         RelationEnd(table).on_delete = RelationAction::kCascade;
       });
     },
     "its two ends do not agree"},
    {"relationship_points_nowhere",
     [](Damage& file) {
       file.Redefine(file.articles,
                     [](TableDefinition& table) { RelationEnd(table).other_number = 77; });
     },
     "no end that points back"},
    {"relationship_index_missing",
     [](Damage& file) {
       file.Redefine(file.articles, [](TableDefinition& table) {
         RelationEnd(table).kind = IndexKind::kOrdinary;
       });
     },
     "has no index in the table that refers"},
    {"definition_free_bytes", [](Damage& file) { file.Edit(file.groups.page).SetU16(2, 5); },
     "5 free bytes stored"},
    {"definition_constant", [](Damage& file) { file.Edit(file.groups.page).SetU32(0x0c, 0); },
     "Groups: page"},
    {"moved_row_lost",
     [](Damage& file) {
       for (PageNumber page = 1; page < file.pages.size(); ++page) {
         if (file.View(page).U32(4) != file.articles.page || file.View(page).U16(0) != 0x0101)
           continue;
         for (unsigned row = 0; row < file.View(page).U16(12); ++row) {
           if ((file.View(page).U16(14 + 2 * row) & 0xc000) != 0x4000) continue;
           file.Edit(page).SetU8(file.RowStart(page, row), 250);
           return;
         }
       }
       FAIL() << "the sound file has no moved row";
     },
     "which is no moved row of the table"},
    {"stamp_of_a_chain",
     [](Damage& file) {
       const PageNumber page = file.Find([](ByteView view) {
         return view.U32(4) == data_page::kLongValueOwner && view.U32(8) != 0;
       });
       file.Edit(page).SetU32(8, file.View(page).U32(8) + 1);
     },
     "another stamp"},
    {"long_value_page_of_nobody",
     [](Damage& file) {
       const RowPointer map = file.articles.long_value_maps.at(0).owned;
       file.FlipMapBit(
           map, file.Find([&](ByteView view) { return file.HasMapBit(map, view.number()); }));
     },
     "a long value on a page that its column does not own"},
    {"security_ids", [](Damage& file) { file.Edit(0).SetU8(0x6a, file.View(0).U8(0x6a) ^ 1); },
     "owner does not fit page 0"},
    {"writer_cut_off", [](Damage& file) { file.Edit(0).SetU16(0xe00, 0); }, "cut off"},
    {"rights_of_nobody",
     [](Damage& file) {
       const PageNumber page =
           file.Find([](ByteView view) { return view.U16(0) == 0x0101 && view.U32(4) == 3; });
       for (unsigned row = 0; row < file.View(page).U16(12); ++row) {
         const std::size_t object = file.RowStart(page, row) + 2;
         if (file.View(page).U32(object) == file.groups.page) file.Edit(page).SetU32(object, 0);
       }
     },
     "object Groups has no rights"},
};

INSTANTIATE_TEST_SUITE_P(Each, PlantedDamageTest, testing::ValuesIn(kDamages),
                         [](const auto& test) { return std::string(test.param.name); });

// Bytes replaced at random, many at once or few: the check always ends, and says no more than a
// reader can bear.
TEST(CheckTest, AnyDamageEndsInAReport) {
  test::Random random(20);
  std::size_t noticed = 0;
  constexpr int kRounds = 250;
  for (int round = 0; round < kRounds; ++round) {
    std::vector<PageBytes> pages = Sound().pages;
    for (std::uint32_t left = 1U << random() % 12; left > 0; --left) {
      // The head of a page, where counts and pointers stand, is hit as often as all the rest.
      const std::size_t at = random() % (random() % 2 == 0 ? 64 : kPageSize);
      pages[1 + random() % (pages.size() - 1)][at] = std::byte(random() % 256);
    }
    const CheckReport report = Check(pages);
    EXPECT_LE(report.problems.size(), 201U);
    noticed += report.problems.empty() ? 0 : 1;
  }
  EXPECT_GT(noticed, kRounds / 2);
}

// Whole pages exchanged, so that every page is well formed in itself.
TEST(CheckTest, ExchangedPagesAreNoticed) {
  test::Random random(21);
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

TEST(CheckTest, LongListsEndInANumber) {
  std::vector<PageBytes> pages = Sound().pages;
  for (PageNumber page = 6; page < pages.size(); ++page) {
    ByteEditor editor(pages[page], page);
    if (editor.view().U16(0) != data_page::kType || editor.view().U32(4) != Sound().articles.page)
      continue;
    // Every row has a column more than its table.
    for (unsigned row = 0; row < editor.view().U16(12); ++row) {
      const std::size_t slot = editor.view().U16(14 + 2 * row);
      if ((slot & 0xe000) == 0) editor.SetU16(slot, 99);
    }
  }
  const CheckReport report = Check(pages);
  EXPECT_EQ(report.problems.size(), 201U);
  EXPECT_THAT(report.problems.back(), HasSubstr("more"));
}

}  // namespace
}  // namespace jet
