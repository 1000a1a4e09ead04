// Page 0: recognising files, passwords, page keys and security ids.
#include "platform/jet/database_header.h"

#include <gmock/gmock.h>

#include <bit>

#include "tests/platform/jet/definitions.h"

namespace jet {
namespace {

using test::FromHex;
using test::KindOf;
using test::ToHex;

// The creation date of a real file whose security ids are known.
const double kRealDate = std::bit_cast<double>(std::uint64_t{0x40E4AB3E3BD3853E});

DatabaseHeader NewHeader(std::u16string_view password = u"", std::uint32_t page_key = 0) {
  return DatabaseHeader::New(password, page_key, kRealDate, Collation{}, 1252);
}

std::string Masked(const DatabaseHeader& header, std::span<const std::byte> id) {
  return ToHex(header.MaskSecurityId(id));
}

TEST(DatabaseHeaderTest, SecurityIdsAreMaskedAsInRealFiles) {
  const DatabaseHeader header = NewHeader();
  EXPECT_EQ(Masked(header, account::kAdmin), "64 8B");
  EXPECT_EQ(Masked(header, account::kUsers), "65 8B");
  EXPECT_EQ(Masked(header, account::kEngine), "65 89");
  EXPECT_EQ(Masked(header, account::kCreator), "65 8E");
  EXPECT_EQ(header.MaskSecurityId(header.MaskSecurityId(account::kEngine)),
            Bytes(account::kEngine.begin(), account::kEngine.end()));
  EXPECT_NE(Masked(NewHeader(u"secret"), account::kAdmin), "64 8B");
}

// Page 0 with other bytes at one place.
PageBytes HeaderWith(std::size_t at, std::string_view hex) {
  PageBytes page = NewHeader().bytes();
  std::ranges::copy(FromHex(hex), page.begin() + static_cast<std::ptrdiff_t>(at));
  return page;
}

TEST(DatabaseHeaderTest, RefusesOtherKindsAndDamage) {
  const std::pair<std::size_t, const char*> foreign[] = {
      {0, "4D 5A"},                                    // any other file
      {0x14, "00"},                                    // the format before
      {0x14, "02"},                                    // a later one
      {0x15, "01"},                                    // the same, later still
      {4, "53 74 61 6E 64 61 72 64 20 41 43 45"},      // another engine's
      {4, "4A 65 74 20 53 79 73 74 65 6D 20 44 42"}};  // workgroup
  for (const auto& [at, hex] : foreign)
    EXPECT_EQ(KindOf([&] { DatabaseHeader::Parse(HeaderWith(at, hex)); }),
              ErrorKind::kNotADatabase);
  // Both maps in row 0, other pages of system tables, a date before the calendar and no date.
  const std::pair<std::size_t, unsigned> damaged[] = {
      {0x1c, 1}, {0x20, 1}, {0x24, 1}, {0x28, 1}, {0x2c, 1}, {0x79, 0x80}, {0x79, 0x3f}};
  for (const auto& [at, change] : damaged) {
    PageBytes page = NewHeader().bytes();
    page[at] ^= static_cast<std::byte>(change);
    EXPECT_EQ(KindOf([&] { DatabaseHeader::Parse(page); }), ErrorKind::kDamaged) << at;
  }
}

TEST(DatabaseHeaderTest, CommitWordsOfCutOffWritersMakeTheFileSuspect) {
  for (const std::size_t at : {0xe00u, 0xe02u, 0xffeu}) {
    EXPECT_TRUE(DatabaseHeader::Parse(HeaderWith(at, "00 00")).is_suspect());
    EXPECT_TRUE(DatabaseHeader::Parse(HeaderWith(at, "01 00")).is_suspect());
    EXPECT_FALSE(
        DatabaseHeader::Parse(HeaderWith(at, "01 01")).is_suspect());  // as a provider does
    EXPECT_FALSE(DatabaseHeader::Parse(HeaderWith(at, "25 01")).is_suspect());
  }
}

}  // namespace
}  // namespace jet
