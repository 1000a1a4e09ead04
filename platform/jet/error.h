// The one exception that the Jet engine throws: what went wrong, to which object, on which page.
#pragma once

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace jet {

using PageNumber = std::uint32_t;
inline constexpr PageNumber kNoPage = std::numeric_limits<PageNumber>::max();

enum class ErrorKind {
  // Opening.
  kFileNotFound,    // names: path
  kPathNotFound,    // names: path
  kInUse,           // names: path; another process has the file open
  kCannotOpen,      // names: path; no permission
  kNotADatabase,    // names: path; not a Jet 4 file at all
  kWrongPassword,   //
  kDatabaseExists,  // names: path; creating over an existing file
  // Contents.
  kDamaged,       // names: path when known; detail says what
  kNotSupported,  // a part of the file that this engine does not write; detail says what
  kReadOnly,      // a write to a file opened for reading only
  // Objects.
  kTableNotFound,   // names: table
  kTableExists,     // names: table
  kObjectNotFound,  // names: column, index or relationship
  kObjectExists,    // names: column, index or relationship
  kBadName,         // names: the refused name
  kTooManyIndexes,  // names: table
  kTooManyColumns,  // names: table
  // Rows.
  kDuplicateKey,    // names: index
  kNullInRequired,  // names: table, column
  kNullInKey,       // names: index
  kZeroLength,      // names: table, column
  kTooLong,         // names: column
  kRowTooLarge,     //
  kOutOfRange,      // names: column; a number that the column cannot hold
  kTypeMismatch,    // names: column
  kNoParentRow,     // names: the table in which the related row is required
  kHasChildRows,    // names: the table that includes related rows
  kValidationRule,  // names: rule, table or column
  kRecordDeleted,   //
  // The machine.
  kDiskFull,  //
  kIo,        // detail is the system's text
};

// Thrown by everything in this namespace. `page` is where reading stopped, kNoPage when that says
// nothing. No password or key ever stands in it. Database numbers and texts are added above.
class Error : public std::runtime_error {
 public:
  explicit Error(ErrorKind kind, const std::string& detail = {}, PageNumber page = kNoPage)
      : std::runtime_error(detail), kind_(kind), page_(page) {}

  // `names` are the objects that the kind's comment lists.
  Error(ErrorKind kind, std::vector<std::u16string> names, const std::string& detail = {},
        PageNumber page = kNoPage)
      : std::runtime_error(detail), kind_(kind), page_(page), names_(std::move(names)) {}

  ErrorKind kind() const noexcept { return kind_; }
  PageNumber page() const noexcept { return page_; }
  const std::vector<std::u16string>& names() const noexcept { return names_; }

 private:
  ErrorKind kind_;
  PageNumber page_;
  std::vector<std::u16string> names_;
};

}  // namespace jet
