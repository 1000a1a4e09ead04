// Numbers and texts of database failures as users of such databases know them.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "platform/jet/error.h"
#include "platform/text/runtime_error.h"

namespace database {

// Every failure that this folder reports. docs/database-errors.md lists them for users.
enum class Failure {
  // The access layer: connection, recordset, fields.
  kBadArgument,
  kNoCurrentRow,
  kNotUpdatable,
  kNoSuchItem,  // names: the item
  kWrongValueType,
  kClosed,
  kAlreadyOpen,
  kNoProvider,
  kNoInstallableDriver,
  // Statements.
  kMissingOperator,      // names: the expression
  kTextNotClosed,        // names: the expression
  kNotAStatement,        //
  kSyntaxInInsert,       //
  kSyntaxInUpdate,       //
  kSyntaxInColumns,      //
  kSyntaxInFrom,         //
  kSyntaxInJoin,         //
  kSyntaxInOrderBy,      //
  kTextBehindStatement,  //
  kNoTable,              //
  kUnknownColumns,       // names: how many
  kAmbiguousColumn,      // names: column
  kCriterionMismatch,    //
  kJoinMismatch,         //
  kJoinNotSupported,     //
  kSubqueryColumns,      //
  kTooComplex,           //
  kNoReadPermission,     // names: table
  // The database file. jet::ErrorKind says what the names are.
  kFileNotFound,
  kPathNotFound,
  kInUse,
  kCannotOpen,
  kNotADatabase,
  kWrongPassword,
  kDatabaseExists,
  kDamaged,
  kReadOnly,
  kTableNotFound,
  kTableExists,
  kObjectNotFound,
  kObjectExists,
  kBadName,
  kTooManyIndexes,
  kTooManyColumns,
  kDuplicateKey,
  kNullInRequired,
  kNullInKey,
  kZeroLength,
  kTooLong,
  kRowTooLarge,
  kOutOfRange,
  kTypeMismatch,
  kNoParentRow,
  kHasChildRows,
  kValidationRule,
  kRecordDeleted,
  kDiskFull,
  kIo,
};

// The error to throw for a failure; each name takes the place of a '%' in the text.
text::RuntimeError ErrorOf(Failure failure, std::initializer_list<std::wstring_view> names = {});

[[noreturn]] void Fail(Failure failure, std::initializer_list<std::wstring_view> names = {});

// The same for what the engine reports. `path` is that of the database, for an error that does not
// name it. What the engine could tell beyond the classic text stands behind it in brackets.
text::RuntimeError Translate(const jet::Error& error, const std::wstring& path);

// Calls `work`; an engine error leaves translated.
template <class Work>
decltype(auto) Translated(const std::wstring& path, Work&& work) {
  try {
    return work();
  } catch (const jet::Error& error) {
    throw Translate(error, path);
  }
}

}  // namespace database
