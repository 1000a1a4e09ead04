// An open database file, shared by everything in this process that uses it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/database/column_hash.h"
#include "platform/jet/database.h"

namespace database {

class Connection;

// What a recordset tells of one of its columns.
struct FieldInfo {
  std::wstring name;
  jet::ColumnType type = jet::ColumnType::kLong;
  jet::Collation collation;
};
using FieldList = std::vector<FieldInfo>;

// A table in use: its columns with the names as the surface writes them, and its transient indexes.
// Belongs to its session.
class SessionTable {
 public:
  explicit SessionTable(jet::Table& table);

  jet::Table& jet() { return table_; }
  const jet::Table& jet() const { return table_; }
  const std::wstring& name() const { return name_; }
  // Its columns, in the table's order.
  const std::shared_ptr<const FieldList>& fields() const { return fields_; }
  std::optional<std::size_t> FindColumn(std::wstring_view name) const;  // position; without case

  // The transient index on these columns. The first request only notes the wish and returns
  // nullptr, because one search costs no more than building it; unless the caller is going to
  // search repeatedly.
  const ColumnHash* HashOn(const std::vector<std::size_t>& columns, bool repeatedly);

 private:
  jet::Table& table_;
  std::wstring name_;
  std::shared_ptr<const FieldList> fields_;
  std::vector<std::unique_ptr<ColumnHash>> hashes_;
  std::vector<std::vector<std::size_t>> wished_hashes_;
};

// The position of the name in the list, without case.
std::optional<std::size_t> FindField(const FieldList& fields, std::wstring_view name);

// A file is open at most once in this process: Open gives out the same session as long as somebody
// holds it, known by the file's identity. Whoever holds a session keeps the file open, so only
// connections and engine databases do; recordsets go through their connection.
// One thread only, for all sessions together.
class Session {
 public:
  // RuntimeError as docs/database-errors.md lists them; 3031 also when the file is open already.
  static std::shared_ptr<Session> Open(const std::wstring& path, const std::wstring& password,
                                       bool read_only = false);
  // Makes a new, empty file. 3204 over an existing one.
  static std::shared_ptr<Session> Create(const std::wstring& path, const std::wstring& password,
                                         bool encode);

  Session(std::unique_ptr<jet::Database> database, std::wstring path);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  jet::Database& database() { return *database_; }
  const std::wstring& path() const { return path_; }

  // Name without case. Throws jet::Error (kTableNotFound and others), 3112 for a system table.
  SessionTable& Table(std::wstring_view name);

  // Grows with every row change made through the session, so that values read before can be known
  // to be still good.
  std::uint64_t change_count() const { return change_count_; }
  void CountChange() { ++change_count_; }

 private:
  std::unique_ptr<jet::Database> database_;
  std::wstring path_;
  std::unordered_map<std::wstring, std::unique_ptr<SessionTable>> tables_;  // by upper-case name
  std::uint64_t change_count_ = 0;
};

// What a connection and its recordsets share: `session` is empty once the connection is closed.
struct ConnectionState {
  Connection* connection = nullptr;
  std::shared_ptr<Session> session;
};

}  // namespace database
