// An index in a file of its own in memory, and a reader of its pages that shares nothing with the
// engine.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/jet/index_tree.h"
#include "tests/platform/jet/storage_file.h"

namespace jet::test {

// A file that holds nothing but one index, each change a transaction of its own.
class TestIndex {
 public:
  static constexpr PageNumber kTable = StorageFile::kTable;

  TestIndex();                        // an empty index
  TestIndex(const TestIndex& other);  // a copy of the file as it is
  TestIndex& operator=(const TestIndex&) = delete;

  bool Insert(const IndexEntry& entry);
  bool Remove(const IndexEntry& entry);
  IndexTree tree();

  // Drops everything in memory, as a new process would.
  void Reopen() { file_.Reopen(); }
  MemoryDisk& disk() { return file_.disk(); }
  StorageFile& file() { return file_; }
  PageNumber root() const { return root_; }
  std::set<PageNumber> MapPages();

  // All entries as the cursor gives them.
  std::vector<IndexEntry> Walk();

 private:
  StorageFile file_;
  PageNumber root_ = 0;
};

// What the pages of a tree say, read byte by byte as the format describes them.
struct TreeContent {
  std::vector<IndexEntry> entries;
  std::set<PageNumber> pages;
  std::size_t height = 0;  // levels of nodes
  std::vector<std::string> faults;
};

// Walks the whole tree from its root and checks every rule that the format has for its pages, and
// that each node entry equals its child's last entry.
TreeContent ReadTree(TestIndex& index);

}  // namespace jet::test
