// Long values in their three forms: where they go, what is given back, and what damage is refused.
#include "platform/jet/long_value_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "platform/jet/data_page.h"
#include "tests/platform/jet/storage_file.h"

namespace jet::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Form = LongValueField::Form;

LongValueStore ValuesOf(StorageFile& file) {
  LongValueMaps maps;
  maps.owned = StorageFile::kValuesOwned;
  maps.with_room = StorageFile::kValuesWithRoom;
  return {file.pager(), file.allocator(), maps};
}

LongValueField Write(StorageFile& file, const Bytes& bytes) {
  PageTransaction transaction(file.pager());
  LongValueField field = ValuesOf(file).Write(bytes, bytes.size());
  transaction.Commit();
  return field;
}

void Free(StorageFile& file, const LongValueField& field) {
  PageTransaction transaction(file.pager());
  ValuesOf(file).Free(field);
  transaction.Commit();
}

std::vector<PageNumber> OwnedPages(StorageFile& file) {
  return file.Map(StorageFile::kValuesOwned).Pages();
}

TEST(LongValueStoreTest, TheFormFollowsFromTheUncompressedLength) {
  struct Case {
    std::size_t stored;
    std::size_t uncompressed;
    bool may_inline;
    Form form;
    std::size_t pages;
  };
  for (const Case& c : {
           Case{0, 0, false, Form::kInline, 0},
           Case{64, 64, true, Form::kInline, 0},
           Case{64, 64, false, Form::kSingle, 1},
           Case{40, 65, true, Form::kSingle, 1},
           Case{3816, 3816, true, Form::kSingle, 1},
           Case{3817, 3817, true, Form::kChain, 1},
           Case{2000, 3817, true, Form::kChain, 1},
           Case{4072, 4072, true, Form::kChain, 1},
           Case{4073, 4073, true, Form::kChain, 2},
           Case{40720, 40720, true, Form::kChain, 10},
       }) {
    SCOPED_TRACE(testing::Message() << c.stored << " of " << c.uncompressed);
    StorageFile file;
    const Bytes bytes = TestBytes(7, c.stored);
    PageTransaction transaction(file.pager());
    const LongValueField field = ValuesOf(file).Write(bytes, c.uncompressed, c.may_inline);
    transaction.Commit();
    EXPECT_EQ(field.form, c.form);
    EXPECT_EQ(field.length, c.stored);
    EXPECT_EQ(OwnedPages(file).size(), c.pages);
    EXPECT_EQ(field.at.is_null(), c.form == Form::kInline);
    EXPECT_EQ(field.stamp != 0, c.form == Form::kChain);
    if (c.form == Form::kChain) {
      EXPECT_EQ(ByteView(file.disk().Page(field.at.page)).U32(8), field.stamp);
      EXPECT_THAT(file.Map(StorageFile::kValuesWithRoom).Pages(), IsEmpty());
    }
    EXPECT_THAT(file.Faults(), IsEmpty());
    file.Reopen();
    EXPECT_EQ(ValuesOf(file).Read(field), bytes);
    Free(file, field);
    EXPECT_THAT(OwnedPages(file), IsEmpty());
    EXPECT_THAT(file.Faults(), IsEmpty());
  }
}

TEST(LongValueStoreTest, SharedPagesLeaveTheirMapAt257FreeBytes) {
  StorageFile file;
  // 4082 bytes behind an empty page's header; each row takes a slot of 2.
  Write(file, TestBytes(1, 3816));
  EXPECT_THAT(file.Map(StorageFile::kValuesWithRoom).Pages(), ElementsAre(7)) << "264 bytes";
  Write(file, TestBytes(2, 300));
  EXPECT_THAT(file.Map(StorageFile::kValuesWithRoom).Pages(), ElementsAre(7, 8));
  Write(file, TestBytes(3, 3500));
  const LongValueField last = Write(file, TestBytes(4, 100));
  EXPECT_EQ(last.at, (RowPointer{8, 2})) << "the highest page first";
  EXPECT_THAT(file.Map(StorageFile::kValuesWithRoom).Pages(), ElementsAre(7)) << "176 bytes";
  Free(file, last);
  EXPECT_THAT(file.Map(StorageFile::kValuesWithRoom).Pages(), ElementsAre(7, 8));
  EXPECT_THAT(file.Faults(), IsEmpty());
}

TEST(LongValueStoreTest, DamagedChainsAreNeitherReadNorFreed) {
  struct Damage {
    const char* what;
    std::function<void(StorageFile&, LongValueField&)> make;
  };
  const auto edit = [](StorageFile& file, PageNumber page) {
    return ByteEditor(file.disk().Page(page), page);
  };
  // A chain of three rows on pages 7, 8 and 9; the first two fill their pages from byte 20 on.
  const Damage damages[] = {
      {"another stamp", [](auto&, LongValueField& field) { ++field.stamp; }},
      {"too short", [](auto&, LongValueField& field) { ++field.length; }},
      {"too long", [](auto&, LongValueField& field) { --field.length; }},
      {"ends early", [&](auto& file, auto&) { edit(file, 8).SetU32(20, 0); }},
      {"runs in a circle", [&](auto& file, auto&) { edit(file, 9).SetU32(3092, 0x700); }},
      {"a circle of the largest length",
       [&](auto& file, LongValueField& field) {
         edit(file, 9).SetU32(3092, 0x700);
         field.length = 0x3fffffff;
       }},
      {"leaves the file", [&](auto& file, auto&) { edit(file, 8).SetU32(20, 0x77777700); }},
      {"no such row", [&](auto& file, auto&) { edit(file, 8).SetU32(20, 0x901); }},
      {"a page of another kind", [&](auto& file, auto&) { edit(file, 9).SetU32(4, 40000); }},
      {"a deleted row", [&](auto& file, auto&) { edit(file, 9).SetU16(14, 0xc000 | 3000); }},
      {"begins nowhere", [](auto&, LongValueField& field) { field.at = {}; }},
  };
  for (const Damage& damage : damages) {
    SCOPED_TRACE(damage.what);
    StorageFile file;
    LongValueField field = Write(file, TestBytes(1, 2 * 4072 + 1000));
    ASSERT_EQ(ByteView(file.disk().Page(7)).U32(20), 0x800U);
    damage.make(file, field);
    file.Reopen();
    const auto before = file.disk().Snapshot();
    EXPECT_THROW(ValuesOf(file).Read(field), Error);
    EXPECT_THROW(Free(file, field), Error);
    EXPECT_TRUE(file.disk().Snapshot() == before);
  }
}

}  // namespace
}  // namespace jet::test
