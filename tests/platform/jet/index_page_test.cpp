// One index page: prefixes and the limits of its room.
#include "platform/jet/index_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/platform/jet/definitions.h"

namespace jet {
namespace {

constexpr PageNumber kOwner = 0x30;
constexpr PageNumber kNumber = 77;

using test::FromHex;

// A page in memory, changed through the functions under test.
struct TestPage {
  TestPage() { InitializeIndexPage(editor(), true, kOwner, 0); }

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

TEST(IndexPageTest, PrefixReachesIntoTheRowAddress) {
  TestPage page;
  const Bytes key = FromHex("7F6B4A60510100");
  for (unsigned i = 0; i < 500; ++i)
    ASSERT_TRUE(page.Insert({key, {0x162 + (i + 1) / 256, static_cast<std::uint8_t>(i + 1)}}));

  const Bytes start(page.bytes.begin() + 480, page.bytes.begin() + 495);
  EXPECT_EQ(start, FromHex("7F6B4A60510100 00016201 6202 6203"));
  EXPECT_EQ(page.view().U16(24), 9);
  EXPECT_EQ(page.view().U16(2), 3616 - 11 - 499 * 2);
  EXPECT_TRUE(page.page().HasKey(499, key));
  EXPECT_EQ(page.page().Row(499), (RowId{0x163, 0xf4}));
  EXPECT_EQ(page.page().LowerBound(key, {0x163, 0}), 255U);
  // What is short of the prefix, or goes beyond the key inside it, still finds its place.
  EXPECT_EQ(page.page().LowerBound(FromHex("7F6B"), {}), 0U);
  EXPECT_EQ(page.page().LowerBound(FromHex("7F6B4A6051010000"), {}), 500U);
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
    ASSERT_TRUE(alike.Insert({FromHex("7F4A4B4C4D0100"), RowPointer::FromStored(0x1000 + i)}));
  EXPECT_EQ(alike.view().U16(24), 9);
  const PageBytes compact = alike.bytes;
  EXPECT_FALSE(alike.Insert({FromHex("81"), {1, 1}}));
  EXPECT_FALSE(HasRoomFor(alike.page(), LeafEntryBytes({FromHex("81"), {1, 1}})));
  EXPECT_EQ(alike.bytes, compact);
}

}  // namespace
}  // namespace jet
