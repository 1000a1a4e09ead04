// Creating and inspecting databases, in the shape of the classic engine objects.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/text/runtime_error.h"

namespace database {

class Session;

// The classic numbers of field types.
enum class DataType {
  kBoolean = 1,
  kByte = 2,
  kInteger = 3,
  kLong = 4,
  kCurrency = 5,
  kSingle = 6,
  kDouble = 7,
  kDate = 8,
  kBinary = 9,
  kText = 10,
  kLongBinary = 11,
  kMemo = 12,
  kGuid = 15,
  kDecimal = 20,
};

struct FieldDefinition {
  std::wstring Name;
  DataType Type = DataType::kLong;
  int Size = 0;  // characters of a text, bytes of a binary
  bool Required = false;
  bool AllowZeroLength = true;
  bool AutoIncrement = false;
};

struct IndexDefinition {
  std::wstring Name;
  std::vector<std::wstring> Fields;  // a leading "-" means descending
  bool Primary = false;
  bool Unique = false;
  bool IgnoreNulls = false;
  bool Required = false;
};

struct TableDef {
  std::wstring Name;
  std::vector<FieldDefinition> Fields;
  std::vector<IndexDefinition> Indexes;
};

struct Relation {
  std::wstring Name;
  std::wstring Table;                                         // the referenced side
  std::wstring ForeignTable;                                  // the referencing side
  std::vector<std::pair<std::wstring, std::wstring>> Fields;  // referenced, referencing
  bool Enforced = true;
  bool CascadeUpdates = false;
  bool CascadeDeletes = false;
};

// An open database; the file is shared with the process's connections to it and released when the
// last of them is closed or destroyed. Failures are text::RuntimeError (docs/database-errors.md);
// 3704 after Close.
class Database {
 public:
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  std::vector<TableDef> TableDefs() const;  // user tables by name
  void AppendTable(const TableDef& table);  // 3010 when it exists
  void AppendRelation(const Relation& relation);
  void Close();  // no effect when closed

 private:
  friend class DBEngine;
  explicit Database(std::shared_ptr<Session> session);
  Session& RequireOpen() const;  // 3704
  std::shared_ptr<Session> session_;
};

// `connect` is "MS Access;PWD=..." or ";pwd=..." (keywords without case); "" for no password;
// another kind of file before the first semicolon is refused (3170).
class DBEngine {
 public:
  // Files are always opened exclusively, whatever `exclusive` says. `read_only` counts only when
  // the process does not have the file open already.
  std::unique_ptr<Database> OpenDatabase(const std::wstring& path, bool exclusive = false,
                                         bool read_only = false, const std::wstring& connect = L"");
  // A new file with this password; 3204 ("Database already exists.") over an existing one.
  std::unique_ptr<Database> CreateDatabase(const std::wstring& path,
                                           const std::wstring& connect = L"", bool encrypt = false);
  // Makes the new file `target` with the contents of `source` and its password, which `connect`
  // gives, without the gaps that changes have left (docs/compaction.md). `progress` is called now
  // and then and may throw to end it. 3045 when anybody, this process included, has the source
  // open; 3204 over an existing target; 3027 when the source holds what cannot be carried over
  // whole, 3049 when it is damaged. After a failure there is no target.
  void CompactDatabase(const std::wstring& source, const std::wstring& target,
                       const std::wstring& connect = L"",
                       const std::function<void()>& progress = {});
};

}  // namespace database
