// A small product table in a folder of its own, and short verbs to fill and read it.
#pragma once

#include <string>
#include <vector>

#include "platform/database/connection.h"
#include "platform/database/database_engine.h"
#include "platform/database/recordset.h"
#include "tests/support/error_number.h"
#include "tests/support/temporary_folder.h"

namespace database {

using test_support::ErrorNumberOf;

// Series, their articles and prices; a table "Kinds" with a column of each common type.
class TestDatabase {
 public:
  static constexpr const wchar_t* kPassword = L"top secret";

  enum class Indexes { kNone, kOnCodesAndKeys };

  explicit TestDatabase(Indexes indexes = Indexes::kOnCodesAndKeys);

  const std::wstring& path() const { return path_; }
  const test_support::TemporaryFolder& folder() const { return folder_; }
  Connection& connection() { return connection_; }

  // Adds a row with these values.
  using Values = std::vector<std::pair<std::wstring, text::Variant>>;
  void Add(const std::wstring& table, const Values& values);

  // The texts of one column of what a source selects, joined by commas; Null as "-".
  std::wstring Column(const std::wstring& source, const std::wstring& column);

 private:
  test_support::TemporaryFolder folder_;
  std::wstring path_;
  Connection connection_;
};

// Opens a connection with the password.
void OpenConnection(Connection& connection, const std::wstring& path,
                    const std::wstring& password = TestDatabase::kPassword);

// Adds a row with these values, column by column, as a dynamic recordset does.
void AddRow(Connection& connection, const std::wstring& table, const TestDatabase::Values& values);

}  // namespace database
