// One index page: order, prefixes, the limits of its room, and pages that contradict themselves.
#include "platform/jet/index_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/platform/jet/test_random.h"

namespace jet {
namespace {

constexpr PageNumber kOwner = 0x30;
constexpr PageNumber kNumber = 77;

Bytes FromHex(std::string_view hex) {
  Bytes bytes;
  for (std::size_t i = 0; i + 1 < hex.size();
       i += hex[i + 2 < hex.size() ? i + 2 : i] == ' ' ? 3 : 2)
    bytes.push_back(static_cast<std::byte>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16)));
  return bytes;
}

// A page in memory, changed through the functions under test.
struct TestPage {
  explicit TestPage(bool leaf = true) { InitializeIndexPage(editor(), leaf, kOwner, leaf ? 0 : 1); }

  ByteEditor editor() { return ByteEditor(bytes, kNumber); }
  ByteView view() const { return ByteView(bytes, kNumber); }
  IndexPage page() const { return IndexPage(view()); }

  // Puts the entry where it belongs; whether there was room.
  bool Insert(const IndexEntry& entry) {
    const std::size_t position = page().LowerBound(entry.key, entry.row);
    return InsertEntry(editor(), position, LeafEntryBytes(entry));
  }

  PageBytes bytes{};
};

// The entries as the format's text reads them: straight from bit mask, prefix length and bytes.
std::vector<Bytes> Decode(const PageBytes& page) {
  std::vector<Bytes> entries;
  const std::size_t prefix =
      std::to_integer<std::size_t>(page[24]) | std::to_integer<std::size_t>(page[25]) << 8;
  std::size_t start = 0;
  for (std::size_t bit = 0; bit < 8 * 453; ++bit) {
    if ((page[27 + bit / 8] >> (bit % 8) & std::byte{1}) == std::byte{0}) continue;
    Bytes entry;
    if (!entries.empty())
      entry.assign(entries[0].begin(), entries[0].begin() + static_cast<std::ptrdiff_t>(prefix));
    entry.insert(entry.end(), page.begin() + 480 + static_cast<std::ptrdiff_t>(start),
                 page.begin() + 480 + static_cast<std::ptrdiff_t>(bit));
    entries.push_back(entry);
    start = bit;
  }
  const std::size_t free =
      std::to_integer<std::size_t>(page[2]) | std::to_integer<std::size_t>(page[3]) << 8;
  EXPECT_EQ(free, 3616 - start);
  EXPECT_TRUE(entries.size() > 1 || prefix == 0);
  return entries;
}

std::vector<Bytes> Stored(const std::vector<IndexEntry>& entries) {
  std::vector<Bytes> stored(entries.size());
  std::ranges::transform(entries, stored.begin(), LeafEntryBytes);
  return stored;
}

TEST(IndexPageTest, PrefixReachesIntoTheRowAddress) {
  TestPage page;
  const Bytes key = FromHex("7f6b4a60510100");
  for (unsigned i = 0; i < 500; ++i)
    ASSERT_TRUE(page.Insert({key, {0x162 + (i + 1) / 256, static_cast<std::uint8_t>(i + 1)}}));

  const Bytes start(page.bytes.begin() + 480, page.bytes.begin() + 495);
  EXPECT_EQ(start, FromHex("7f6b4a60510100 00016201 6202 6203"));
  EXPECT_EQ(page.view().U16(24), 9);
  EXPECT_EQ(page.view().U16(2), 3616 - 11 - 499 * 2);
  EXPECT_TRUE(page.page().HasKey(499, key));
  EXPECT_EQ(page.page().Row(499), (RowId{0x163, 0xf4}));
  EXPECT_EQ(page.page().LowerBound(key, {0x163, 0}), 255U);
  // What is short of the prefix, or goes beyond the key inside it, still finds its place.
  EXPECT_EQ(page.page().LowerBound(FromHex("7f6b"), {}), 0U);
  EXPECT_EQ(page.page().LowerBound(FromHex("7f6b4a6051010000"), {}), 500U);
}

TEST(IndexPageTest, EntriesStayAsAPlainSortHasThem) {
  struct Case {
    const char* name;
    std::size_t key_size;
    unsigned letters;  // few letters: long shared prefixes and equal keys
    bool shared_head;
  };
  for (const Case& c : {Case{"short, alike", 2, 2, false}, Case{"long, alike", 30, 2, true},
                        Case{"mixed", 12, 200, false}, Case{"one head", 12, 3, true}}) {
    SCOPED_TRACE(c.name);
    test::Random random(7);
    TestPage page;
    std::vector<IndexEntry> model;
    for (int step = 0; step < 1500; ++step) {
      IndexEntry entry;
      if (c.shared_head && random() % 50 != 0) entry.key = FromHex("7f4a4b4c4d");
      const std::size_t size = 1 + random() % c.key_size;
      for (std::size_t i = 0; i < size; ++i) entry.key.push_back(std::byte(random() % c.letters));
      entry.row = {random() % 3, static_cast<std::uint8_t>(random() % 3)};
      const auto place = std::ranges::lower_bound(model, entry);
      const bool present = place != model.end() && *place == entry;
      const auto position = static_cast<std::size_t>(place - model.begin());
      ASSERT_EQ(page.page().LowerBound(entry.key, entry.row), position);
      if (present || (step % 3 == 0 && position < model.size())) {
        EraseEntry(page.editor(), position);
        model.erase(place);
      } else if (page.Insert(entry)) {
        model.insert(place, entry);
      } else {
        ASSERT_GT(page.page().used(), 3000U);
        for (int i = 0; i < 20; ++i) {
          const auto victim = random() % model.size();
          EraseEntry(page.editor(), victim);
          model.erase(model.begin() + static_cast<std::ptrdiff_t>(victim));
        }
      }
      ASSERT_EQ(Decode(page.bytes), Stored(model)) << "step " << step;
    }
    for (std::size_t i = 0; i < model.size(); ++i) EXPECT_EQ(page.page().Entry(i), model[i]);
  }
}

// 3616 bytes of entries fit, one more does not, whether the prefix can be made longer or not.
TEST(IndexPageTest, TakesExactlyAFullPage) {
  const auto entry = [](std::uint8_t first, std::size_t key_size) {
    IndexEntry made{Bytes(key_size, std::byte{0x55}), {9, first}};
    made.key[0] = std::byte{first};
    return made;
  };
  TestPage page;
  for (std::uint8_t i = 0; i < 8; ++i) ASSERT_TRUE(page.Insert(entry(i, 400)));
  ASSERT_EQ(page.page().used(), 8U * 404);
  const PageBytes before = page.bytes;
  EXPECT_FALSE(page.Insert(entry(100, 3616 - 8 * 404 - 4 + 1)));
  EXPECT_EQ(page.bytes, before);
  EXPECT_TRUE(page.Insert(entry(100, 3616 - 8 * 404 - 4)));
  EXPECT_EQ(page.view().U16(2), 0);

  // Alike entries: the first 328 fit without prefix, the next makes it as long as it can be, and
  // an unlike one that makes it shorter again has no room.
  TestPage alike;
  for (std::uint32_t i = 0; i < 329; ++i)
    ASSERT_TRUE(alike.Insert({FromHex("7f4a4b4c4d0100"), RowPointer::FromStored(0x1000 + i)}));
  EXPECT_EQ(alike.view().U16(24), 9);
  const PageBytes compact = alike.bytes;
  EXPECT_FALSE(alike.Insert({FromHex("81"), {1, 1}}));
  EXPECT_FALSE(HasRoomFor(alike.page(), LeafEntryBytes({FromHex("81"), {1, 1}})));
  EXPECT_EQ(alike.bytes, compact);
}

TEST(IndexPageTest, NodeEntriesEndInTheirChild) {
  TestPage node(false);
  for (std::uint32_t i = 0; i < 100; ++i) {
    const IndexEntry entry{FromHex("7f800000"), RowPointer::FromStored(i)};
    ASSERT_TRUE(InsertEntry(node.editor(), i, NodeEntryBytes(entry, 0x01020300 + i)));
  }
  node.editor().SetU32(20, 4242);
  const IndexPage page = node.page();
  EXPECT_EQ(page.EntryBytes(0), FromHex("7f800000 00000000 01020300"));
  EXPECT_EQ(page.Child(99), 0x01020300U + 99);
  EXPECT_EQ(page.Child(100), 4242U);
  EXPECT_EQ(page.child_count(), 101U);
  EXPECT_EQ(page.Entry(50), (IndexEntry{FromHex("7f800000"), RowPointer::FromStored(50)}));
  EXPECT_EQ(page.LowerBound(FromHex("7f800000"), RowPointer::FromStored(50)), 50U);
}

TEST(IndexPageTest, CopiesARunUnderItsLongestPrefix) {
  TestPage source;
  for (std::uint8_t i = 0; i < 40; ++i)
    ASSERT_TRUE(source.Insert({{std::byte{0x7f}, std::byte(i / 10), std::byte{0x33}}, {5, i}}));
  TestPage target;
  CopyEntries(source.page(), 10, 20, target.editor());
  const std::vector<Bytes> all = Decode(source.bytes);
  EXPECT_EQ(Decode(target.bytes), std::vector<Bytes>(all.begin() + 10, all.begin() + 20));
  EXPECT_EQ(target.view().U16(24), 6);
  CopyEntries(source.page(), 10, 11, target.editor());
  EXPECT_EQ(Decode(target.bytes), std::vector<Bytes>(1, all[10]));
  CopyEntries(source.page(), 10, 10, target.editor());
  EXPECT_EQ(target.page().count(), 0U);
}

// Every byte of a page in turn replaced: damage is reported as such, or the page reads as some
// other sound page. Run under sanitizers this shows reads outside the page.
TEST(IndexPageTest, DamagedPagesAreReportedOrReadSafely) {
  TestPage leaf;
  TestPage node(false);
  for (std::uint32_t i = 0; i < 120; ++i) {
    const IndexEntry entry{FromHex("7f4a4b4c4d0100"), RowPointer::FromStored(0x1000 + 3 * i)};
    leaf.Insert(entry);
    InsertEntry(node.editor(), i, NodeEntryBytes(entry, 100 + i));
  }
  PageBytes packed{};
  InitializeIndexPage(ByteEditor(packed, kNumber), true, kOwner, 0);
  CopyEntries(leaf.page(), 0, 120, ByteEditor(packed, kNumber));

  int damaged = 0;
  for (const PageBytes& sound : {leaf.bytes, node.bytes, packed}) {
    for (std::size_t at = 0; at < kPageSize; ++at) {
      for (const unsigned flip : {1U << at % 8, 0xffU}) {
        if (at > 1000 && at % 16 != 0) continue;  // more of the same entries
        PageBytes bytes = sound;
        bytes[at] ^= std::byte(flip);
        try {
          const IndexPage page{ByteView(bytes, kNumber)};
          for (std::size_t i = 0; i < page.count(); ++i) page.Entry(i);
          for (std::size_t i = 0; i < page.child_count() && !page.is_leaf(); ++i) page.Child(i);
          page.LowerBound(FromHex("7f4a4b"), {});
          PageBytes copy = bytes;
          ByteEditor editor(copy, kNumber);
          InsertEntry(editor, page.count() / 2, FromHex("7f4a4b4c4d0100 00001001 00000001"));
          EraseEntry(editor, 0);
          IndexPage again(editor.view());
        } catch (const Error& error) {
          EXPECT_EQ(error.kind(), ErrorKind::kDamaged);
          EXPECT_EQ(error.page(), kNumber);
          ++damaged;
        }
      }
    }
  }
  // Nearly every change to type, free space or mask contradicts something.
  EXPECT_GT(damaged, 2000);
}

TEST(IndexPageTest, ContradictionsAreDamage) {
  struct Case {
    const char* name;
    std::size_t at;
    std::uint8_t value;
  };
  for (const Case& c :
       {Case{"type", 0, 0x05}, Case{"second type byte", 1, 0x00}, Case{"free space", 2, 0x00},
        Case{"tail on a leaf", 20, 1}, Case{"prefix longer than the first entry", 24, 8},
        Case{"level on a leaf", 26, 1}, Case{"empty first entry", 27, 0x81},
        Case{"end behind the page", 27 + 452, 0x80}}) {
    SCOPED_TRACE(c.name);
    TestPage page;
    ASSERT_TRUE(page.Insert({FromHex("7f0102"), {3, 4}}));
    page.bytes[c.at] = std::byte{c.value};
    EXPECT_THROW(page.page(), Error);
  }
}

}  // namespace
}  // namespace jet
