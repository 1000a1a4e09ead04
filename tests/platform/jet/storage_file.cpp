// A hand-made file image, and the checks of its pages.
#include "tests/platform/jet/storage_file.h"

#include <iterator>

#include "platform/jet/check_maps.h"
#include "platform/jet/check_tables.h"
#include "platform/jet/data_page.h"
#include "platform/jet/table_definition_store.h"
#include "tests/platform/jet/definitions.h"

namespace jet::test {
namespace {

constexpr std::size_t kMapRow = 69;

// A data page whose rows are all usage maps of the usual size, empty.
void MakeMapPage(PageBytes& bytes, PageNumber owner, int maps) {
  ByteEditor page(bytes);
  data_page::Format(page, owner);
  for (int i = 0; i < maps; ++i) data_page::AddRow(page, Bytes(kMapRow));
}

}  // namespace

StorageFile::StorageFile() : disk_(std::make_shared<MemoryDisk>()) {
  disk_->Resize(kFirstFreePage);
  MakeMapPage(disk_->Page(1), 1, 2);
  MakeMapPage(disk_->Page(6), 0, 4);
  PageBytes& global = disk_->Page(1);
  for (std::size_t i = 0; i < 64; ++i)
    global[kPageSize - 64 + i] = i == 0 ? std::byte{0x80} : std::byte{0xff};
  Reopen();
  PageTransaction transaction(*pager_);
  TableDefinition table;
  table.page = kTable;
  table.owned_pages = kOwned;
  table.pages_with_room = kWithRoom;
  AddColumn(table, u"Raw", ColumnType::kBinary, 510);
  WriteTableDefinition(*pager_, *allocator_, table);
  transaction.Commit();
  disk_->Heal();
}

void StorageFile::Reopen() {
  constexpr std::size_t kCachePages = 16;
  allocator_.reset();
  pager_.reset();
  pager_ = std::make_unique<Pager>(std::make_unique<MemoryPageStore>(disk_), 0, kCachePages);
  allocator_ = std::make_unique<PageAllocator>(*pager_);
}

std::vector<std::string> StorageFile::Faults(bool leaks) const {
  return Faults(leaks, [](check::State& state) {
    check::LoadTable(state, kTable, u"table", true);
    for (const PageNumber page : ClaimPages(state, kValuesOwned, kValuesWithRoom, "values")) {
      state.Guard("values", [&] {
        check::CheckDataPage(state.pager.View(page), data_page::kLongValueOwner);
      });
    }
  });
}

std::vector<std::string> StorageFile::Faults(
    bool leaks, const std::function<void(check::State&)>& check) const {
  const Pager pager(std::make_unique<MemoryPageStore>(disk_), 0);
  const DatabaseHeader header = DatabaseHeader::New(u"", 0, 38061, {}, 1252);
  check::State state(pager, header);
  for (const PageNumber page : {2, 3, 5}) state.Claim(page, state.owners.Name("the frame"));
  check(state);
  check::CheckGlobalMaps(state);
  std::vector<std::string> faults = state.problems.Take();
  if (leaks) std::ranges::move(state.notes.Take(), std::back_inserter(faults));
  return faults;
}

void StorageFile::Load(const std::vector<PageBytes>& pages) {
  disk_->Heal();
  disk_->Resize(static_cast<PageNumber>(pages.size()));
  for (PageNumber page = 0; page < pages.size(); ++page) disk_->Page(page) = pages[page];
  Reopen();
}

Bytes TestBytes(std::uint32_t number, std::size_t length) {
  Bytes bytes(length);
  for (std::size_t i = 0; i < length; ++i)
    bytes[i] = static_cast<std::byte>(i < 4 ? number >> (8 * i) & 0xff : (number + i) * 37 & 0xff);
  return bytes;
}

}  // namespace jet::test
