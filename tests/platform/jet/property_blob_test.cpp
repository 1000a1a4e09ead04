// Property blobs: layout, look-ups, and blobs of real files that must come out as they went in.
#include "platform/jet/property_blob.h"

#include <gmock/gmock.h>

#include "tests/platform/jet/definitions.h"
#include "tests/platform/jet/sample_files.h"

namespace jet {
namespace {

using test::FromHex;
using test::KindOf;
using test::ToHex;

PropertyBlob Blob() {
  PropertyBlob blob;
  blob.groups.push_back({0, u"", {TextProperty(u"Title", u"T", ColumnType::kText)}});
  blob.groups.push_back(
      {1,
       u"Code",
       {BooleanProperty(u"Required", true), BooleanProperty(u"AllowZeroLength", false)}});
  blob.groups.push_back({1, u"Name", {BooleanProperty(u"Required", false)}});
  return blob;
}

TEST(PropertyBlobTest, ABlobHasItsChunksInOrder) {
  PropertyBlob blob;
  blob.groups.push_back({0, u"", {TextProperty(u"Ab", u"T", ColumnType::kText)}});
  blob.groups.push_back({1, u"C", {BooleanProperty(u"R", true), BooleanProperty(u"Ab", false)}});
  EXPECT_EQ(blob.Serialize(),
            FromHex("4D 52 32 00 "
                    "10 00 00 00 80 00 04 00 41 00 62 00 02 00 52 00 "
                    "16 00 00 00 00 00 06 00 00 00 00 00 0A 00 01 0A 00 00 02 00 54 00 "
                    "20 00 00 00 01 00 08 00 00 00 02 00 43 00 "
                    "09 00 01 01 01 00 01 00 01 09 00 01 01 00 00 01 00 00"));
}

TEST(PropertyBlobTest, FindsPropertiesWithoutRegardToCase) {
  const PropertyBlob blob = PropertyBlob::Parse(Blob().Serialize());
  ASSERT_EQ(blob.groups.size(), 3u);
  EXPECT_EQ(blob.Object()->Text(u"title"), u"T");
  const PropertyGroup* code = blob.FindColumn(u"CODE");
  ASSERT_NE(code, nullptr);
  EXPECT_TRUE(code->IsTrue(u"required"));
  EXPECT_TRUE(code->IsFalse(u"AllowZeroLength"));
  EXPECT_FALSE(code->IsFalse(u"Required"));
  EXPECT_TRUE(blob.FindColumn(u"Name")->IsFalse(u"Required"));
  EXPECT_FALSE(blob.FindColumn(u"Name")->IsFalse(u"AllowZeroLength"));  // missing is not false
  EXPECT_EQ(code->Text(u"Required"), u"");
  EXPECT_EQ(blob.FindColumn(u"Price"), nullptr);
  EXPECT_EQ(PropertyBlob().Object(), nullptr);
}

TEST(PropertyBlobTest, RefusesWhatItCannotHoldOrRead) {
  PropertyBlob blob;
  blob.groups.push_back({1, u"C", {TextProperty(u"DefaultValue", std::u16string(40000, u'x'))}});
  EXPECT_EQ(KindOf([&] { blob.Serialize(); }),
            std::to_string(static_cast<int>(ErrorKind::kTooLong)));
  EXPECT_EQ(KindOf([] { PropertyBlob::Parse(FromHex("4D 52 32 00 06 00 00 00 03 00")); }),
            std::to_string(static_cast<int>(ErrorKind::kNotSupported)));
  // A head that claims to be longer than its name.
  EXPECT_EQ(KindOf([] {
              PropertyBlob::Parse(FromHex("4D 52 32 00 0E 00 00 00 00 00 08 00 00 00 00 00 00 00"));
            }),
            std::to_string(static_cast<int>(ErrorKind::kDamaged)));
  test::UseDamaged(Blob().Serialize(), [](const Bytes& damaged) {
    const PropertyBlob parsed = PropertyBlob::Parse(damaged);
    for (const PropertyGroup& group : parsed.groups) group.Text(u"Title");
    parsed.Serialize();
  });
}

TEST(PropertyBlobTest, BlobsOfSamplesAreReproduced) {
  const auto samples = test::SampleFiles();
  if (samples.empty()) GTEST_SKIP() << "ORVPAP_SHARED names no folder of samples";
  std::size_t blobs = 0;
  for (const test::SampleFile& sample : samples) {
    const TableDefinition catalog = sample.Definition(2);
    const auto properties = *std::ranges::find(catalog.columns, u"LvProp", &ColumnDefinition::name);
    for (const auto& row : sample.Rows(2)) {
      SCOPED_TRACE(sample.name() + ", page " + std::to_string(row.id.page));
      const auto field = StoredRow(catalog, row.bytes, row.id.page).GetLongValue(properties);
      const Bytes blob = field ? sample.LongValue(*field) : Bytes{};
      if (blob.empty()) continue;
      ++blobs;
      EXPECT_EQ(ToHex(PropertyBlob::Parse(blob).Serialize()), ToHex(blob));
    }
  }
  EXPECT_GT(blobs, 10u);
}

}  // namespace
}  // namespace jet
