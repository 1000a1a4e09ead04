// New rows of a table whose columns have default values.
#include <gtest/gtest.h>

#include "platform/database/recordset.h"
#include "platform/jet/constraints.h"
#include "platform/text/conversion.h"
#include "tests/platform/database/test_database.h"
#include "tests/platform/jet/test_database.h"

namespace database {
namespace {

// Defaults are for columns that were not set: a Null and a False that were set stay.
TEST(DefaultValuesTest, ANewRowGetsDefaultsWhereNothingWasSet) {
  jet::test::TestDatabase file({.password = u"top secret"});
  file->CreateTable({.name = u"T",
                     .columns = {{.name = u"ID", .autonumber = true},
                                 {.name = u"Flag", .type = jet::ColumnType::kBoolean},
                                 {.name = u"Number"},
                                 {.name = u"Text", .type = jet::ColumnType::kText},
                                 {.name = u"Must"}}});
  const auto with_default = [](std::u16string column, std::u16string_view value) {
    const std::u16string name(jet::property::kDefaultValue);
    return jet::PropertyGroup{1, std::move(column), {jet::TextProperty(name, value)}};
  };
  jet::PropertyBlob properties;
  properties.groups = {with_default(u"Flag", u"Yes"), with_default(u"Number", u"7"),
                       with_default(u"Text", u"\"none\""), with_default(u"Must", u"1")};
  properties.groups.back().properties.push_back(
      jet::BooleanProperty(std::u16string(jet::property::kRequired), true));
  file.SetProperties(u"T", properties);
  const test_support::TemporaryFolder folder;
  file.Save(folder / "defaults.mdb");
  Connection connection;
  OpenConnection(connection, folder.Text("defaults.mdb"));

  const struct {
    std::vector<std::pair<std::wstring, text::Variant>> set;
    std::wstring flag;
    std::wstring number;
    std::wstring text;
    int failure = 0;
  } cases[] = {
      {{}, L"True", L"7", L"none"},
      {{{L"Flag", false}}, L"False", L"7", L"none"},
      {{{L"Flag", true}, {L"Number", std::int32_t{0}}}, L"True", L"0", L"none"},
      {{{L"Number", text::Null{}}}, L"True", L"-", L"none"},
      {{{L"Text", text::Null{}}, {L"Flag", text::Null{}}}, L"False", L"7", L"-"},
      {{{L"Must", text::Null{}}}, L"", L"", L"", 3314},
  };
  Recordset rows;
  rows.Open(L"T", connection, CursorType::kDynamic, LockType::kOptimistic);
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    rows.AddNew();
    for (const auto& [column, value] : c.set) rows(column) = value;
    EXPECT_EQ(ErrorNumber([&] { rows.Update(); }), c.failure);
    if (c.failure != 0) continue;
    const auto text_of = [&](const wchar_t* column) {
      const text::Variant value = rows(column).Value();
      return value.IsNull() ? std::wstring(L"-") : text::ToText(value);
    };
    EXPECT_EQ(text_of(L"Flag"), c.flag);
    EXPECT_EQ(text_of(L"Number"), c.number);
    EXPECT_EQ(text_of(L"Text"), c.text);
  }
}

}  // namespace
}  // namespace database
