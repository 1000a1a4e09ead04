// A whole database on a disk in memory, and short ways to change it and to see what is wrong.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "platform/jet/database.h"
#include "platform/jet/property_blob.h"
#include "tests/platform/jet/memory_page_store.h"

namespace jet::test {

class TestDatabase {
 public:
  // A new, empty database.
  explicit TestDatabase(const CreateOptions& options = {});
  // A copy of a file.
  TestDatabase(const std::filesystem::path& file, const OpenOptions& options);

  Database* operator->() { return database_.get(); }
  Table& operator[](std::u16string_view table) { return database_->OpenTable(table); }
  MemoryDisk& disk() { return *disk_; }

  // The database as another process finds it: what the disk has.
  void Reopen();
  // The same after the disk was given these pages.
  void Restore(const std::vector<PageBytes>& pages);
  // What the engine's own check finds on the disk, notes included.
  std::vector<std::string> Problems() const;
  // The pages of the database as compaction copies it, onto a disk that fails at a write if wanted.
  std::vector<PageBytes> Compacted(std::optional<std::size_t> failing_write = {}) const;
  // Puts the disk's pages into a file.
  void Save(const std::filesystem::path& path) const;
  // Leaves the database for the independent readers where the variable ORVPAP_CHANGED_FILES says.
  void SaveForOtherReaders(const std::string& name) const;

  // Changes that the engine itself never makes, as another writer might have left them. They end
  // with Reopen.
  void EditDefinition(std::u16string_view table,
                      const std::function<void(TableDefinition&)>& change);
  void EditPage(PageNumber page, const std::function<void(ByteEditor&)>& change);
  void SetProperties(std::u16string_view table, const PropertyBlob& properties);

 private:
  OpenOptions options_;
  std::shared_ptr<MemoryDisk> disk_ = std::make_shared<MemoryDisk>();
  std::unique_ptr<Database> database_;
};

// The usual primary key.
IndexSpec PrimaryKey(std::u16string column);
RowId Add(Table& table, Row row);
// All rows in the order of a scan.
std::vector<StoredRowValues> RowsOf(const Table& table);

// A text of plain characters.
std::u16string Text(std::string_view ascii);

// How an action failed.
struct Failure {
  ErrorKind kind;
  std::vector<std::u16string> names;
  bool operator==(const Failure&) const = default;
};
void PrintTo(const Failure& failure, std::ostream* out);

// Nothing when it succeeded.
std::optional<Failure> FailureOf(const std::function<void()>& action);

// The environment's files of others: samples of all kinds with their passwords; none when the
// variable ORVPAP_SHARED is not set.
struct SharedFile {
  std::filesystem::path path;
  OpenOptions options;
};
std::vector<SharedFile> SharedFiles();

// What the independent checker that the variable ORVPAP_JETCHECK names says about the file; nothing
// when it is not set.
std::optional<std::string> IndependentCheck(const std::filesystem::path& file,
                                            const std::u16string& password);

}  // namespace jet::test
