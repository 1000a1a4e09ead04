// Property blobs: layout, look-ups, and blobs of real files that must come out as they went in.
#include "platform/jet/property_blob.h"

#include <gmock/gmock.h>

#include "tests/platform/jet/definitions.h"
#include "tests/platform/jet/test_database.h"

namespace jet {
namespace {

using test::FromHex;
using test::KindOf;
using test::ToHex;

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

TEST(PropertyBlobTest, RefusesWhatItCannotHoldOrRead) {
  PropertyBlob blob;
  blob.groups.push_back({1, u"C", {TextProperty(u"DefaultValue", std::u16string(40000, u'x'))}});
  EXPECT_EQ(KindOf([&] { blob.Serialize(); }), ErrorKind::kTooLong);
  const auto kind_of = [](const char* hex) {
    return KindOf([&] { PropertyBlob::Parse(FromHex(hex)); });
  };
  EXPECT_EQ(kind_of("4D 52 32 00 06 00 00 00 03 00"), ErrorKind::kNotSupported);
  // A head that claims to be longer than its name.
  EXPECT_EQ(kind_of("4D 52 32 00 0E 00 00 00 00 00 08 00 00 00 00 00 00 00"), ErrorKind::kDamaged);
}

TEST(PropertyBlobTest, BlobsOfSamplesAreReproduced) {
  const auto files = test::SharedFiles();
  if (files.empty()) GTEST_SKIP() << "ORVPAP_SHARED is not set";
  std::size_t blobs = 0;
  for (const test::SharedFile& file : files) {
    test::TestDatabase database(file.path, file.options);
    const Table& objects = database[u"MSysObjects"];
    for (const StoredRowValues& row : test::RowsOf(objects)) {
      const auto* const blob = std::get_if<Bytes>(&row.values[*objects.FindColumn(u"LvProp")]);
      if (blob == nullptr) continue;
      ++blobs;
      EXPECT_EQ(ToHex(PropertyBlob::Parse(*blob).Serialize()), ToHex(*blob));
    }
  }
  EXPECT_GT(blobs, 10u);
}

}  // namespace
}  // namespace jet
