// Page 0: recognising files, passwords, page keys and security ids.
#include "platform/jet/database_header.h"

#include <gmock/gmock.h>

#include <bit>
#include <functional>

#include "tests/platform/jet/definitions.h"
#include "tests/platform/jet/sample_files.h"

namespace jet {
namespace {

using test::FromHex;
using test::KindOf;
using test::ToHex;
using ::testing::AnyOf;

// The creation date of a real file whose security ids are known.
const double kRealDate = std::bit_cast<double>(std::uint64_t{0x40E4AB3E3BD3853E});

DatabaseHeader NewHeader(std::u16string_view password = u"", std::uint32_t page_key = 0) {
  return DatabaseHeader::New(password, page_key, kRealDate, Collation{}, 1252);
}

std::string Masked(const DatabaseHeader& header, std::span<const std::byte> id) {
  return ToHex(header.MaskSecurityId(id));
}

TEST(DatabaseHeaderTest, Rc4MatchesTheStreamOfTheHeaderMask) {
  Bytes stream(8);
  ApplyRc4(FromHex("C7 DA 39 6B"), stream);
  EXPECT_EQ(ToHex(stream), "B5 6F 03 62 61 08 C2 55");
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

TEST(DatabaseHeaderTest, NewHeaderReadsBack) {
  const std::u16string longest = u"12345678901234567890";
  for (const std::u16string& password : {std::u16string(), std::u16string(u"Gehëim"), longest}) {
    const DatabaseHeader made = NewHeader(password, 0x12345678);
    const DatabaseHeader header = DatabaseHeader::Parse(made.bytes());
    EXPECT_EQ(header.password(), password);
    EXPECT_EQ(header.page_key(), 0x12345678u);
    EXPECT_EQ(header.free_pages_map(), (RowPointer{1, 0}));
    EXPECT_EQ(header.released_pages_map(), (RowPointer{1, 1}));
    EXPECT_EQ(header.collation(), Collation{});
    EXPECT_EQ(header.code_page(), 1252);
    EXPECT_FALSE(header.is_suspect());
  }
  EXPECT_EQ(KindOf([&] { NewHeader(longest + u"1"); }),
            std::to_string(static_cast<int>(ErrorKind::kTooLong)));
}

// What other programs look at before they unmask anything.
TEST(DatabaseHeaderTest, NewHeaderHasThePlainFieldsInTheirPlaces) {
  const DatabaseHeader header = NewHeader();
  const ByteView page(header.bytes());
  const auto hex = [&page](std::size_t at, std::size_t length) {
    const auto bytes = page.Slice(at, length);
    return ToHex(Bytes(bytes.begin(), bytes.end()));
  };
  EXPECT_EQ(hex(0, 0x18),
            "00 01 00 00 53 74 61 6E 64 61 72 64 20 4A 65 74 20 44 42 00 01 00 00 00");
  EXPECT_EQ(hex(0x98, 8), "54 06 00 00 34 2E 30 00");
  for (std::size_t at = 0xe00; at < kPageSize; at += 2) ASSERT_EQ(hex(at, 2), "00 01");
}

TEST(DatabaseHeaderTest, RefusesOtherKindsAndDamage) {
  const auto kind_after = [](std::size_t at, std::string_view hex) {
    PageBytes page = NewHeader().bytes();
    std::ranges::copy(FromHex(hex), page.begin() + static_cast<std::ptrdiff_t>(at));
    return KindOf([&page] { DatabaseHeader::Parse(page); });
  };
  const auto xored = [](std::size_t at, unsigned change) {
    PageBytes page = NewHeader().bytes();
    page[at] ^= static_cast<std::byte>(change);
    return KindOf([&page] { DatabaseHeader::Parse(page); });
  };
  const std::string foreign = std::to_string(static_cast<int>(ErrorKind::kNotADatabase));
  const std::string damaged = std::to_string(static_cast<int>(ErrorKind::kDamaged));

  EXPECT_EQ(kind_after(0, "4D 5A"), foreign);  // any other file
  EXPECT_EQ(kind_after(0x14, "00"), foreign);  // the format before
  EXPECT_EQ(kind_after(0x14, "02"), foreign);  // a later one
  EXPECT_EQ(kind_after(0x15, "01"), foreign);  // the same, later still
  EXPECT_EQ(kind_after(4, "53 74 61 6E 64 61 72 64 20 41 43 45"), foreign);
  EXPECT_EQ(kind_after(4, "4A 65 74 20 53 79 73 74 65 6D 20 44 42"), foreign);  // workgroup
  EXPECT_EQ(xored(0x1c, 0x01), damaged);  // both maps in row 0
  for (const std::size_t table : {0x20u, 0x24u, 0x28u, 0x2cu}) EXPECT_EQ(xored(table, 1), damaged);
  EXPECT_EQ(xored(0x79, 0x80), damaged);  // a date before the calendar
  EXPECT_EQ(xored(0x79, 0x3f), damaged);  // no date at all
}

TEST(DatabaseHeaderTest, CommitWordsOfCutOffWritersMakeTheFileSuspect) {
  const auto is_suspect = [](std::size_t word, std::string_view hex) {
    PageBytes page = NewHeader().bytes();
    std::ranges::copy(FromHex(hex), page.begin() + static_cast<std::ptrdiff_t>(0xe00 + 2 * word));
    return DatabaseHeader::Parse(page).is_suspect();
  };
  for (const std::size_t word : {0u, 1u, 255u}) {
    EXPECT_TRUE(is_suspect(word, "00 00"));
    EXPECT_TRUE(is_suspect(word, "01 00"));
    EXPECT_FALSE(is_suspect(word, "01 01"));  // as a provider leaves word 0
    EXPECT_FALSE(is_suspect(word, "25 01"));
  }
}

TEST(DatabaseHeaderTest, PageKeyDependsOnThePage) {
  const PageBytes plain{};
  PageBytes first = plain;
  PageBytes second = plain;
  ApplyPageKey(0xC0FFEE11, 7, first);
  ApplyPageKey(0xC0FFEE11, 8, second);
  EXPECT_NE(first, second);
  ApplyPageKey(0xC0FFEE11, 7, first);
  EXPECT_EQ(first, plain);
}

TEST(DatabaseHeaderTest, AnyPageZeroGivesAHeaderOrAnError) {
  const PageBytes page = NewHeader(u"secret").bytes();
  test::UseDamaged(Bytes(page.begin(), page.end()), [](const Bytes& damaged) {
    if (damaged.size() != kPageSize) return;
    const DatabaseHeader header = DatabaseHeader::Parse(std::span(damaged).first<kPageSize>());
    header.MaskSecurityId(account::kAdmin);
  });
}

TEST(DatabaseHeaderTest, SamplesOpenAndTheirSystemObjectsBelongToTheEngine) {
  const auto samples = test::SampleFiles();
  if (samples.empty()) GTEST_SKIP() << "ORVPAP_SHARED names no folder of samples";
  for (const test::SampleFile& sample : samples) {
    SCOPED_TRACE(sample.name());
    const DatabaseHeader& header = sample.header();
    EXPECT_THAT(header.password(), AnyOf(u"", u"quorbelintax"));
    EXPECT_EQ(header.collation(), Collation{});
    EXPECT_FALSE(header.is_suspect());

    const TableDefinition catalog = sample.Definition(2);
    const ColumnDefinition* owner = catalog.FindColumn(6);
    ASSERT_EQ(owner->name, u"Owner");
    const auto engine = header.MaskSecurityId(account::kEngine);
    const auto rows = sample.Rows(2);
    EXPECT_TRUE(std::ranges::any_of(rows, [&](const auto& row) {
      return StoredRow(catalog, row.bytes, row.id.page).Get(*owner) == Value(engine);
    }));
  }
}

}  // namespace
}  // namespace jet
