// Damages a database at chosen places, then opens, checks, dumps and changes it.
//
// The input is a list of patches to a sound database made at the start: three bytes of offset
// (little-endian), one of length (its low three bits, plus 1), then the bytes. The highest bit of
// the length cuts the file at the offset's page instead. So a few bytes reach any place of the
// file, and the corpus stays small. Nothing but jet::Error may come out.
#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/jet/check.h"
#include "platform/jet/database.h"
#include "tests/platform/jet/memory_page_store.h"
#include "tests/support/temporary_folder.h"

namespace {

using jet::test::MemoryDisk;
using jet::test::MemoryPageStore;

constexpr int kRows = 40;
constexpr int kMostRowsWalked = 2000;

std::u16string Repeated(char16_t letter, int count) {
  return std::u16string(static_cast<std::size_t>(count), letter);
}

void FillDatabase(jet::Database& database) {
  using jet::ColumnType;
  database.CreateTable(
      {.name = u"Supplier",
       .columns = {{.name = u"ID", .autonumber = true},
                   {.name = u"Code", .type = ColumnType::kText, .size = 20, .required = true},
                   {.name = u"Notes", .type = ColumnType::kMemo}},
       .indexes = {{.name = u"PrimaryKey", .columns = {{u"ID"}}, .primary = true},
                   {.name = u"Code", .columns = {{u"Code"}}, .unique = true}}});
  database.CreateTable(
      {.name = u"Article",
       .columns = {{.name = u"ID", .autonumber = true},
                   {.name = u"fkSupplier"},
                   {.name = u"Price", .type = ColumnType::kDouble},
                   {.name = u"Cost", .type = ColumnType::kCurrency},
                   {.name = u"Exact", .type = ColumnType::kNumeric, .precision = 12, .scale = 3},
                   {.name = u"Active", .type = ColumnType::kBoolean},
                   {.name = u"Picture", .type = ColumnType::kOle},
                   {.name = u"Description", .type = ColumnType::kText, .size = 200}},
       .indexes = {{.name = u"PrimaryKey", .columns = {{u"ID"}}, .primary = true},
                   {.name = u"PriceDown", .columns = {{u"Price", false}, {u"Description"}}},
                   {.name = u"Cost", .columns = {{u"Cost"}}, .ignore_nulls = true}}});
  database.CreateRelationship({.name = u"SupplierArticle",
                               .table = u"Article",
                               .columns = {u"fkSupplier"},
                               .referenced_table = u"Supplier",
                               .referenced_columns = {u"ID"},
                               .cascade_deletes = true});
  jet::Table& suppliers = database.OpenTable(u"Supplier");
  jet::Table& articles = database.OpenTable(u"Article");
  for (int i = 0; i < kRows; ++i) {
    jet::Row supplier{jet::Null{},
                      u"S" + Repeated(static_cast<char16_t>(u'A' + i % 26), 1 + i / 26),
                      Repeated(u'n', i * 300)};
    suppliers.Insert(supplier);
    jet::Row article{jet::Null{},
                     std::int32_t{1 + i / 2},
                     i * 1.5,
                     jet::Currency{i * 12345},
                     jet::Numeric{.negative = i % 2 == 1, .scale = 3, .magnitude = {0, 0, 0, 77U}},
                     i % 3 == 0,
                     jet::Bytes(static_cast<std::size_t>(i * 200), std::byte{0x5a}),
                     Repeated(u'd', i)};
    const jet::RowId id = articles.Insert(article);
    article[7] = Repeated(u'\u00e9', 200);
    if (i % 4 == 0) articles.Update(id, article);
  }
}

std::vector<jet::PageBytes> SoundDatabase() {
  const test_support::TemporaryFolder folder;
  const std::filesystem::path path = folder.path() / "sound.pt";
  { FillDatabase(*jet::Database::Create(path)); }
  std::vector<jet::PageBytes> pages(std::filesystem::file_size(path) / jet::kPageSize);
  std::ifstream file(path, std::ios::binary);
  for (jet::PageBytes& page : pages)
    file.read(reinterpret_cast<char*>(page.data()), static_cast<std::streamsize>(page.size()));
  return pages;
}

std::shared_ptr<MemoryDisk> Damaged(const std::vector<jet::PageBytes>& sound,
                                    std::span<const std::uint8_t> patches) {
  auto disk = std::make_shared<MemoryDisk>();
  disk->Resize(static_cast<jet::PageNumber>(sound.size()));
  for (std::size_t i = 0; i < sound.size(); ++i)
    disk->Page(static_cast<jet::PageNumber>(i)) = sound[i];
  while (patches.size() >= 5) {
    const std::size_t at = patches[0] | patches[1] << 8 | patches[2] << 16;
    const std::uint8_t kind = patches[3];
    patches = patches.subspan(4);
    const std::size_t page = at / jet::kPageSize % disk->pages.size();
    if ((kind & 0x80) != 0) {
      disk->Resize(static_cast<jet::PageNumber>(page + 1));
      continue;
    }
    const std::size_t length = std::min<std::size_t>((kind & 7) + 1, patches.size());
    for (std::size_t i = 0; i < length; ++i) {
      jet::PageBytes& bytes = disk->Page(static_cast<jet::PageNumber>(page));
      bytes[(at + i) % jet::kPageSize] = std::byte{patches[i]};
    }
    patches = patches.subspan(length);
  }
  return disk;
}

template <class Action>
void ExpectOnlyErrors(const Action& action) {
  try {
    action();
  } catch (const jet::Error&) {
    return;  // the expected outcome on damage
  }
}

void ChangeTable(jet::Table& table) {
  std::vector<jet::StoredRowValues> first_rows;
  ExpectOnlyErrors([&] {
    auto scan = table.ScanRows();
    for (int i = 0; i < kMostRowsWalked; ++i) {
      auto row = scan.Next();
      if (!row) break;
      if (first_rows.size() < 3) first_rows.push_back(std::move(*row));
    }
  });
  if (first_rows.size() < 3) return;
  ExpectOnlyErrors([&] {
    jet::Row copy = first_rows[0].values;
    if (!copy.empty()) copy[0] = jet::Null{};
    table.Insert(copy);
  });
  ExpectOnlyErrors([&] {
    jet::Row changed = first_rows[1].values;
    for (jet::Value& value : changed) {
      if (auto* text = std::get_if<std::u16string>(&value)) text->append(u"changed");
    }
    table.Update(first_rows[1].id, changed);
  });
  ExpectOnlyErrors([&] { table.Delete(first_rows[2].id); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::vector<jet::PageBytes> sound = SoundDatabase();
  const auto disk = Damaged(sound, {data, size});
  ExpectOnlyErrors([&] { jet::CheckPages(std::make_unique<MemoryPageStore>(disk)); });
  ExpectOnlyErrors([&] {
    const auto database = jet::Database::Open(std::make_unique<MemoryPageStore>(disk));
    for (const std::u16string& name : database->TableNames())
      ExpectOnlyErrors([&] { ChangeTable(database->OpenTable(name)); });
  });
  return 0;
}
