// A file of nothing but storage: global maps, one page of usage maps, and what a test puts there.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/jet/check_state.h"
#include "platform/jet/pager.h"
#include "platform/jet/row_store.h"
#include "platform/jet/usage_map.h"
#include "platform/jet/value.h"
#include "tests/platform/jet/memory_page_store.h"

namespace jet::test {

// Page 1 has the global maps, page 4 the definition of a table, page 6 its four usage maps; the
// other pages up to there are empty, and the free pages begin behind it.
class StorageFile {
 public:
  static constexpr PageNumber kFirstFreePage = 7;
  static constexpr PageNumber kTable = 4;
  static constexpr RowPointer kOwned{6, 0};
  static constexpr RowPointer kWithRoom{6, 1};
  static constexpr RowPointer kValuesOwned{6, 2};
  static constexpr RowPointer kValuesWithRoom{6, 3};

  StorageFile();

  // The file as another process finds it: what the disk has, nothing of what was in memory.
  // Few of its pages stay in memory.
  void Reopen();

  // Puts other pages onto the disk and reopens.
  void Load(const std::vector<PageBytes>& pages);

  MemoryDisk& disk() { return *disk_; }
  Pager& pager() { return *pager_; }
  PageAllocator& allocator() { return *allocator_; }
  // A row store on the table's maps. Every call makes one, as the engine's callers may.
  RowStore Rows() { return {*pager_, *allocator_, kTable, kOwned, kWithRoom}; }
  UsageMap Map(RowPointer at, MapKind kind = MapKind::kOwned) {
    return {*pager_, *allocator_, at, kind};
  }

  // What the engine's file check finds wrong with maps, slots and overflow rows. `leaks` says
  // whether what it only notes counts, such as pages that are neither owned nor free.
  std::vector<std::string> Faults(bool leaks = true) const;
  // The same for a file whose pages behind the maps `check` looks at.
  std::vector<std::string> Faults(bool leaks,
                                  const std::function<void(check::State&)>& check) const;

 private:
  std::shared_ptr<MemoryDisk> disk_;
  std::unique_ptr<Pager> pager_;
  std::unique_ptr<PageAllocator> allocator_;
};

// Bytes that differ from row to row: a number, then filling that depends on it.
Bytes TestBytes(std::uint32_t number, std::size_t length);

}  // namespace jet::test
