// Every failure has its number and text, and engine errors become the right ones.
#include "platform/database/errors.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace database {
namespace {

TEST(ErrorsTest, EngineErrorsCarryNumberTextAndNames) {
  struct Case {
    jet::Error error;
    int number;
    std::wstring description;
  };
  using jet::ErrorKind;
  using Names = std::vector<std::u16string>;
  const Case cases[] = {
      {jet::Error(ErrorKind::kInUse, Names{u"C:\\a.pt"}), 3045,
       L"Could not use 'C:\\a.pt'; file already in use."},
      {jet::Error(ErrorKind::kInUse), 3045, L"Could not use 'open.pt'; file already in use."},
      {jet::Error(ErrorKind::kWrongPassword), 3031, L"Not a valid password."},
      {jet::Error(ErrorKind::kZeroLength, Names{u"Article", u"Code"}), 3315,
       L"Field 'Article.Code' cannot be a zero-length string."},
      {jet::Error(ErrorKind::kNoParentRow, Names{u"Serie"}), 3201,
       L"You cannot add or change a record because a related record is required in table "
       L"'Serie'."},
      {jet::Error(ErrorKind::kNotSupported, "index order 2052 is not known"), 3027,
       L"Cannot update.  Database or object is read-only. (index order 2052 is not known)"},
      {jet::Error(ErrorKind::kDamaged, "offsets rise", 17), 3049,
       L"Cannot open database 'open.pt'.  It may not be a database that your application "
       L"recognizes, or the file may be corrupt. (offsets rise, page 17)"},
      {jet::Error(ErrorKind::kDiskFull), 3026, L"Not enough space on disk."},
  };
  for (const Case& c : cases) {
    const text::RuntimeError error = Translate(c.error, L"open.pt");
    EXPECT_EQ(error.number(), c.number);
    EXPECT_EQ(error.description(), c.description);
  }
}

}  // namespace
}  // namespace database
