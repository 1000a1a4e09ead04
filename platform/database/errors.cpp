// The one table of failures: number and text of each, and which engine error it stands for.
#include "platform/database/errors.h"

#include <span>
#include <vector>

#include "platform/text/code_page.h"

namespace database {
namespace {

struct Entry {
  Failure failure;
  std::int32_t number;
  const wchar_t* text;
};

constexpr Entry kEntries[] = {
    {Failure::kBadArgument, 3001,
     L"Arguments are of the wrong type, are out of acceptable range, or are in conflict with one "
     L"another."},
    {Failure::kNoCurrentRow, 3021,
     L"Either BOF or EOF is True, or the current record has been deleted. Requested operation "
     L"requires a current record."},
    {Failure::kNotUpdatable, 3251,
     L"Current Recordset does not support updating. This may be a limitation of the provider, or "
     L"of the selected locktype."},
    {Failure::kNoSuchItem, 3265,
     L"Item cannot be found in the collection corresponding to the requested name or ordinal. (%)"},
    {Failure::kWrongValueType, 3421,
     L"Application uses a value of the wrong type for the current operation."},
    {Failure::kClosed, 3704, L"Operation is not allowed when the object is closed."},
    {Failure::kAlreadyOpen, 3705, L"Operation is not allowed when the object is open."},
    {Failure::kNoProvider, 3706, L"Provider cannot be found. It may not be properly installed."},
    {Failure::kNoInstallableDriver, 3170, L"Could not find installable ISAM."},

    {Failure::kMissingOperator, 3075, L"Syntax error (missing operator) in query expression '%'."},
    {Failure::kTextNotClosed, 3075, L"Syntax error in string in query expression '%'."},
    {Failure::kNotAStatement, 3129,
     L"Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', or 'UPDATE'."},
    {Failure::kSyntaxInInsert, 3134, L"Syntax error in INSERT INTO statement."},
    {Failure::kSyntaxInUpdate, 3144, L"Syntax error in UPDATE statement."},
    {Failure::kSyntaxInColumns, 3141,
     L"The SELECT statement includes a reserved word or an argument name that is misspelled or "
     L"missing, or the punctuation is incorrect."},
    {Failure::kSyntaxInFrom, 3131, L"Syntax error in FROM clause."},
    {Failure::kSyntaxInJoin, 3135, L"Syntax error in JOIN operation."},
    {Failure::kSyntaxInOrderBy, 3138, L"Syntax error in ORDER BY clause."},
    {Failure::kTextBehindStatement, 3142, L"Characters found after end of SQL statement."},
    {Failure::kNoTable, 3067, L"Query input must contain at least one table or query."},
    {Failure::kUnknownColumns, 3061, L"Too few parameters. Expected %."},
    {Failure::kAmbiguousColumn, 3079,
     L"The specified field '%' could refer to more than one table listed in the FROM clause of "
     L"your SQL statement."},
    {Failure::kCriterionMismatch, 3464, L"Data type mismatch in criteria expression."},
    {Failure::kJoinMismatch, 3615, L"Type mismatch in JOIN expression."},
    {Failure::kJoinNotSupported, 3296, L"Join expression not supported."},
    {Failure::kSubqueryColumns, 3306,
     L"You have written a subquery that can return more than one field without using the EXISTS "
     L"reserved word in the main query's FROM clause.  Revise the SELECT statement of the subquery "
     L"to request only one field."},
    {Failure::kTooComplex, 3360, L"Query is too complex."},
    {Failure::kNoReadPermission, 3112, L"Record(s) cannot be read; no read permission on '%'."},

    {Failure::kFileNotFound, 3024, L"Could not find file '%'."},
    {Failure::kPathNotFound, 3044,
     L"'%' is not a valid path.  Make sure that the path name is spelled correctly and that you "
     L"are connected to the server on which the file resides."},
    {Failure::kInUse, 3045, L"Could not use '%'; file already in use."},
    {Failure::kCannotOpen, 3051,
     L"The Microsoft Jet database engine cannot open the file '%'.  It is already opened "
     L"exclusively by another user, or you need permission to view its data."},
    {Failure::kNotADatabase, 3343, L"Unrecognized database format '%'."},
    {Failure::kWrongPassword, 3031, L"Not a valid password."},
    {Failure::kDatabaseExists, 3204, L"Database already exists."},
    {Failure::kDamaged, 3049,
     L"Cannot open database '%'.  It may not be a database that your application recognizes, or "
     L"the file may be corrupt."},
    {Failure::kReadOnly, 3027, L"Cannot update.  Database or object is read-only."},
    {Failure::kTableNotFound, 3078,
     L"The Microsoft Jet database engine cannot find the input table or query '%'.  Make sure it "
     L"exists and that its name is spelled correctly."},
    {Failure::kTableExists, 3010, L"Table '%' already exists."},
    {Failure::kObjectNotFound, 3011,
     L"The Microsoft Jet database engine could not find the object '%'.  Make sure the object "
     L"exists and that you spell its name and the path name correctly."},
    {Failure::kObjectExists, 3012, L"Object '%' already exists."},
    {Failure::kBadName, 3125,
     L"'%' is not a valid name.  Make sure that it does not include invalid characters or "
     L"punctuation and that it is not too long."},
    {Failure::kTooManyIndexes, 3626,
     L"The operation failed.  There are too many indexes on table '%'.  Delete some of the indexes "
     L"on the table and try the operation again."},
    {Failure::kTooManyColumns, 3190, L"Too many fields defined."},
    {Failure::kDuplicateKey, 3022,
     L"The changes you requested to the table were not successful because they would create "
     L"duplicate values in the index, primary key, or relationship.  Change the data in the field "
     L"or fields that contain duplicate data, remove the index, or redefine the index to permit "
     L"duplicate entries and try again."},
    {Failure::kNullInRequired, 3314,
     L"The field '%.%' cannot contain a Null value because the Required property for this field is "
     L"set to True.  Enter a value in this field."},
    {Failure::kNullInKey, 3058, L"Index or primary key cannot contain a Null value."},
    {Failure::kZeroLength, 3315, L"Field '%.%' cannot be a zero-length string."},
    {Failure::kTooLong, 3163,
     L"The field is too small to accept the amount of data you attempted to add.  Try inserting or "
     L"pasting less data."},
    {Failure::kRowTooLarge, 3047, L"Record is too large."},
    {Failure::kOutOfRange, 3349, L"Numeric field overflow."},
    {Failure::kTypeMismatch, 3421, L"Data type conversion error."},
    {Failure::kNoParentRow, 3201,
     L"You cannot add or change a record because a related record is required in table '%'."},
    {Failure::kHasChildRows, 3200,
     L"The record cannot be deleted or changed because table '%' includes related records."},
    {Failure::kValidationRule, 3317,
     L"One or more values are prohibited by the validation rule '%' set for '%'.  Enter a value "
     L"that the expression for this field can accept."},
    {Failure::kRecordDeleted, 3167, L"Record is deleted."},
    {Failure::kDiskFull, 3026, L"Not enough space on disk."},
    {Failure::kIo, 3043, L"Disk or network error."},
};

constexpr bool FollowsEnumeration() {
  std::size_t place = 0;
  for (const Entry& entry : kEntries)
    if (static_cast<std::size_t>(entry.failure) != place++) return false;
  return place == static_cast<std::size_t>(Failure::kIo) + 1;
}
static_assert(FollowsEnumeration(), "a failure is found by its place in the table");

const Entry& EntryOf(Failure failure) { return kEntries[static_cast<std::size_t>(failure)]; }

std::wstring Fill(std::wstring_view text, std::span<const std::wstring_view> names) {
  std::wstring filled;
  std::size_t used = 0;
  for (const wchar_t c : text) {
    if (c != L'%') {
      filled += c;
    } else if (used < names.size()) {
      filled += names[used++];
    }
  }
  return filled;
}

text::RuntimeError Compose(Failure failure, std::span<const std::wstring_view> names,
                           std::wstring_view detail = {}) {
  const Entry& entry = EntryOf(failure);
  std::wstring description = Fill(entry.text, names);
  if (!detail.empty()) description.append(L" (").append(detail).append(L")");
  return {entry.number, std::move(description)};
}

Failure FailureOf(jet::ErrorKind kind) {
  switch (kind) {
    case jet::ErrorKind::kFileNotFound:
      return Failure::kFileNotFound;
    case jet::ErrorKind::kPathNotFound:
      return Failure::kPathNotFound;
    case jet::ErrorKind::kInUse:
      return Failure::kInUse;
    case jet::ErrorKind::kCannotOpen:
      return Failure::kCannotOpen;
    case jet::ErrorKind::kNotADatabase:
      return Failure::kNotADatabase;
    case jet::ErrorKind::kWrongPassword:
      return Failure::kWrongPassword;
    case jet::ErrorKind::kDatabaseExists:
      return Failure::kDatabaseExists;
    case jet::ErrorKind::kDamaged:
      return Failure::kDamaged;
    case jet::ErrorKind::kNotSupported:
    case jet::ErrorKind::kReadOnly:
      return Failure::kReadOnly;
    case jet::ErrorKind::kTableNotFound:
      return Failure::kTableNotFound;
    case jet::ErrorKind::kTableExists:
      return Failure::kTableExists;
    case jet::ErrorKind::kObjectNotFound:
      return Failure::kObjectNotFound;
    case jet::ErrorKind::kObjectExists:
      return Failure::kObjectExists;
    case jet::ErrorKind::kBadName:
      return Failure::kBadName;
    case jet::ErrorKind::kTooManyIndexes:
      return Failure::kTooManyIndexes;
    case jet::ErrorKind::kTooManyColumns:
      return Failure::kTooManyColumns;
    case jet::ErrorKind::kDuplicateKey:
      return Failure::kDuplicateKey;
    case jet::ErrorKind::kNullInRequired:
      return Failure::kNullInRequired;
    case jet::ErrorKind::kNullInKey:
      return Failure::kNullInKey;
    case jet::ErrorKind::kZeroLength:
      return Failure::kZeroLength;
    case jet::ErrorKind::kTooLong:
      return Failure::kTooLong;
    case jet::ErrorKind::kRowTooLarge:
      return Failure::kRowTooLarge;
    case jet::ErrorKind::kOutOfRange:
      return Failure::kOutOfRange;
    case jet::ErrorKind::kTypeMismatch:
      return Failure::kTypeMismatch;
    case jet::ErrorKind::kNoParentRow:
      return Failure::kNoParentRow;
    case jet::ErrorKind::kHasChildRows:
      return Failure::kHasChildRows;
    case jet::ErrorKind::kValidationRule:
      return Failure::kValidationRule;
    case jet::ErrorKind::kRecordDeleted:
      return Failure::kRecordDeleted;
    case jet::ErrorKind::kDiskFull:
      return Failure::kDiskFull;
    case jet::ErrorKind::kIo:
      return Failure::kIo;
  }
  return Failure::kIo;
}

// Failures whose classic text leaves out what the user must know to act on it.
bool ShowsDetail(jet::ErrorKind kind) {
  return kind == jet::ErrorKind::kDamaged || kind == jet::ErrorKind::kNotSupported ||
         kind == jet::ErrorKind::kNotADatabase || kind == jet::ErrorKind::kIo;
}

}  // namespace

text::RuntimeError ErrorOf(Failure failure, std::initializer_list<std::wstring_view> names) {
  return Compose(failure, {names.begin(), names.end()});
}

void Fail(Failure failure, std::initializer_list<std::wstring_view> names) {
  throw ErrorOf(failure, names);
}

text::RuntimeError Translate(const jet::Error& error, const std::wstring& path) {
  std::vector<std::wstring> texts;
  for (const std::u16string& name : error.names()) texts.push_back(text::Utf16ToWide(name));
  if (texts.empty()) texts.push_back(path);
  const std::vector<std::wstring_view> names(texts.begin(), texts.end());

  std::wstring detail;
  if (ShowsDetail(error.kind())) {
    detail = text::Utf8ToWide(error.what());
    if (error.kind() == jet::ErrorKind::kDamaged && error.page() != jet::kNoPage)
      detail += (detail.empty() ? L"page " : L", page ") + std::to_wstring(error.page());
  }
  return Compose(FailureOf(error.kind()), names, detail);
}

}  // namespace database
