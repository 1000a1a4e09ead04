// A Jet 4 database file, open for one owner: its catalog and its tables.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/jet/page_store.h"
#include "platform/jet/schema.h"
#include "platform/jet/table.h"

namespace jet {

struct OpenOptions {
  std::u16string password{};  // compared exactly; a file without password accepts any
  bool read_only = false;
};

struct CreateOptions {
  std::u16string password{};
  bool encode = false;  // encode pages with a random key
  Collation collation{};
};

// The open file. Tables handed out belong to it. Not synchronised: use from one thread.
class Database {
 public:
  // Throws what OpenPageStore throws, and kNotADatabase, kDamaged, kWrongPassword. A file that is
  // sound to read but not to write (see write_refusal) opens all the same.
  static std::unique_ptr<Database> Open(const std::filesystem::path& path,
                                        const OpenOptions& options = {});
  // The same over pages that the caller supplies; for tests.
  static std::unique_ptr<Database> Open(std::unique_ptr<PageStore> store,
                                        const OpenOptions& options = {});
  // Makes a new, empty database; the file appears at `path` complete or not at all.
  static std::unique_ptr<Database> Create(const std::filesystem::path& path,
                                          const CreateOptions& options = {});

  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  // Why nothing can be written to this file; "" when it can.
  const std::string& write_refusal() const;

  // User tables by name, without case order; system and hidden ones left out.
  std::vector<std::u16string> TableNames() const;
  // Name without case, also of system tables. kTableNotFound.
  Table& OpenTable(std::u16string_view name);

  // Each is done whole or not at all. kTableExists, kObjectExists, kBadName, kTooManyIndexes ...
  void CreateTable(const TableSpec& spec);
  void CreateIndex(std::u16string_view table, const IndexSpec& spec);
  // kNoParentRow when a row breaks it, kObjectNotFound when the referenced columns have no unique
  // index.
  void CreateRelationship(const RelationshipSpec& spec);

  struct Relationship {
    RelationshipSpec spec;
  };
  std::vector<Relationship> Relationships() const;

  // Pages written since opening; for benchmarks.
  std::uint64_t pages_written() const;

  struct Impl;
  explicit Database(std::unique_ptr<Impl> impl);
  Impl& impl() { return *impl_; }

 private:
  std::unique_ptr<Impl> impl_;
};

}  // namespace jet
