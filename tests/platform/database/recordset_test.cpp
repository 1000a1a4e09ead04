// Walking, searching and changing rows.
#include "platform/database/recordset.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/jet/constraints.h"
#include "platform/text/conversion.h"
#include "platform/text/locale.h"
#include "tests/platform/database/test_database.h"
#include "tests/platform/jet/test_database.h"

namespace database {
namespace {

void AddArticles(TestDatabase& database, const std::vector<std::wstring>& codes) {
  for (const std::wstring& code : codes) database.Add(L"Article", {{L"Code", code}});
}

void OpenForChange(Recordset& rows, TestDatabase& database, const std::wstring& source) {
  rows.Open(source, database.connection(), CursorType::kDynamic, LockType::kOptimistic);
}

std::wstring TextOf(Recordset& rows, const std::wstring& field) {
  return text::ToText(rows(field).Value());
}

TEST(RecordsetTest, ANewRowIsCurrentWhileItIsFilledAndAfterUpdate) {
  TestDatabase database;
  Recordset rows;
  rows.Open(L"SELECT * FROM Article WHERE Code='A'", database.connection(),
            CursorType::kForwardOnly, LockType::kOptimistic, -1);
  EXPECT_TRUE(rows.Eof());
  EXPECT_TRUE(rows.Bof());
  rows.AddNew();
  EXPECT_FALSE(rows.Eof());
  EXPECT_TRUE(rows(L"code").Value().IsNull());
  rows(L"Code") = L"A";
  EXPECT_EQ(TextOf(rows, L"CODE"), L"A");
  EXPECT_EQ(database.Column(L"Article", L"Code"), L"") << "not saved yet";
  rows.Update();
  EXPECT_EQ(TextOf(rows, L"ID"), L"1");
  EXPECT_FALSE(rows.Eof());

  rows(L"Description") = L"first";
  rows.Update();
  EXPECT_EQ(database.Column(L"Article", L"Description"), L"first");
  rows.MoveNext();
  EXPECT_TRUE(rows.Eof());
  EXPECT_EQ(ErrorNumberOf([&] { rows.MoveNext(); }), 3021);
  EXPECT_EQ(ErrorNumberOf([&] { rows(L"Code").Value(); }), 3021);
  EXPECT_EQ(ErrorNumberOf([&] { rows(L"Code") = L"B"; }), 3021);
}

TEST(RecordsetTest, WhatWasNotSavedIsDiscardedByMovingSearchingAndCancelling) {
  TestDatabase database;
  AddArticles(database, {L"A", L"B"});
  Recordset rows;
  OpenForChange(rows, database, L"Article");
  rows(L"Code") = L"X";
  rows.MoveNext();
  rows.AddNew();
  rows(L"Code") = L"Y";
  rows.Find(L"Code = 'B'");
  EXPECT_EQ(TextOf(rows, L"Code"), L"B");
  rows.AddNew();
  rows.CancelUpdate();
  EXPECT_EQ(TextOf(rows, L"Code"), L"B") << "back on the row before";
  rows(L"Code") = L"Z";
  rows.CancelUpdate();
  rows.Update();
  rows.Close();
  EXPECT_EQ(database.Column(L"Article", L"Code"), L"A,B");
}

TEST(RecordsetTest, FindStartsAtTheCurrentRowAndTakesTheFirstOfEquals) {
  TestDatabase database(TestDatabase::Indexes::kNone);
  AddArticles(database, {L"A", L"b", L"A", L"é", L"co-op", L"C ", L"D '1'"});
  const struct {
    int start;  // rows to skip first
    const wchar_t* criterion;
    const wchar_t* id;  // empty: at the end
  } cases[] = {
      {0, L"Code = 'A'", L"1"},   {1, L"Code = 'A'", L"3"},      {2, L"Code = 'a  '", L"3"},
      {3, L"Code = 'A'", L""},    {0, L"Code = 'B'", L"2"},      {0, L"Code = 'C'", L"6"},
      {0, L"Code = 'É'", L"4"},   {0, L"Code = 'e'", L""},       {0, L"Code = \"CO-OP\"", L"5"},
      {0, L"Code = 'coop'", L""}, {0, L"[ID]=4", L"4"},          {4, L"ID = 4", L""},
      {0, L"ID > 3", L"4"},       {4, L"ID > 3", L"5"},          {0, L"Code <> 'a'", L"2"},
      {0, L"fkSerie = 1", L""},   {7, L"Code = 'A'", L""},       {0, L"ID = 1.5", L""},
      {0, L"ID=-5", L""},         {0, L"Code = 'D ''1'''", L"7"}};
  for (const CursorType cursor :
       {CursorType::kDynamic, CursorType::kKeyset, CursorType::kStatic, CursorType::kForwardOnly}) {
    Recordset rows;
    rows.Open(L"SELECT ID, Code, fkSerie FROM Article", database.connection(), cursor);
    for (const auto& c : cases) {
      SCOPED_TRACE(testing::Message() << c.criterion << " from " << c.start);
      rows.MoveFirst();
      for (int i = 0; i < c.start; ++i) rows.MoveNext();
      rows.Find(c.criterion);
      EXPECT_EQ(rows.Eof() ? L"" : TextOf(rows, L"ID"), c.id);
    }
    rows.MoveFirst();
    EXPECT_EQ(ErrorNumberOf([&] { rows.Find(L"Code = 5"); }), 3464);
    EXPECT_EQ(ErrorNumberOf([&] { rows.Find(L"Price = 5"); }), 3265);
    for (const wchar_t* bad :
         {L"", L"Code", L"Code =", L"Code = 'O'Brien'", L"Code = 'x", L"Code = Description",
          L"Code = 'a' AND ID = 1", L"5 = ID", L"Code = -'a'", L"Code LIKE 'a'"})
      EXPECT_EQ(ErrorNumberOf([&] { rows.Find(bad); }), 3001) << testing::PrintToString(bad);
    EXPECT_EQ(TextOf(rows, L"ID"), L"1") << "a refused search moves nowhere";
  }
}

TEST(RecordsetTest, FindFollowsEveryChange) {
  TestDatabase database;
  AddArticles(database, {L"A", L"B", L"C"});
  Recordset rows;
  OpenForChange(rows, database, L"SELECT * FROM Article ORDER BY Code DESC");
  Recordset other;
  OpenForChange(other, database, L"Article");
  const auto find = [&](const std::wstring& code) -> std::wstring {
    rows.MoveFirst();
    rows.Find(L"Code = '" + code + L"'");
    return rows.Eof() ? L"" : TextOf(rows, L"ID");
  };
  const auto save = [](Recordset& target, const wchar_t* code) {
    target(L"Code") = code;
    target.Update();
  };
  EXPECT_EQ(find(L"B"), L"2");
  save(rows, L"BB");
  EXPECT_EQ(find(L"B"), L"");
  EXPECT_EQ(find(L"BB"), L"2");
  rows.AddNew();
  save(rows, L"D");
  EXPECT_EQ(find(L"D"), L"4");
  rows.MoveNext();
  EXPECT_TRUE(rows.Eof()) << "new rows stand at the end";
  rows.Find(L"Code = 'D'");
  EXPECT_TRUE(rows.Eof()) << "nothing is found from the end";
  EXPECT_EQ(find(L"C"), L"3");
  rows.Delete();
  EXPECT_EQ(find(L"C"), L"");

  other.Find(L"Code = 'A'");
  save(other, L"AA");
  EXPECT_EQ(find(L"A"), L"");
  EXPECT_EQ(find(L"AA"), L"1");
  other.Delete();
  EXPECT_EQ(find(L"AA"), L"");
  other.AddNew();
  save(other, L"E");
  EXPECT_EQ(find(L"E"), L"") << "rows that others add do not belong to this recordset";
  EXPECT_EQ(find(L"D"), L"4");
}

TEST(RecordsetTest, EveryRowCanBeDeletedWhileWalking) {
  for (const wchar_t* source : {L"Article", L"SELECT * FROM Article WHERE ID > 0"}) {
    TestDatabase database;
    AddArticles(database, {L"A", L"B", L"C"});
    Recordset rows;
    OpenForChange(rows, database, source);
    for (; !rows.Eof(); rows.MoveNext()) {
      rows.Delete();
      EXPECT_EQ(ErrorNumberOf([&] { rows(L"Code").Value(); }), 3167);
      EXPECT_EQ(ErrorNumberOf([&] { rows(L"Code") = L"X"; }), 3167);
      EXPECT_EQ(ErrorNumberOf([&] { rows.Delete(); }), 3167);
    }
    EXPECT_TRUE(rows.Bof());
    EXPECT_EQ(rows.RecordCount(), 0);
    EXPECT_EQ(ErrorNumberOf([&] { rows.MoveFirst(); }), 3021);
    EXPECT_EQ(database.Column(L"Article", L"Code"), L"");
  }
}

TEST(RecordsetTest, RowsAddedWhileATableIsWalkedAppearOnceAndAtTheEnd) {
  // More rows than a page holds: new ones go to a page that the walk has yet to reach.
  constexpr int kRows = 300;
  TestDatabase database;
  const auto code_of = [](int number) { return L"N" + std::to_wstring(number); };
  for (int i = 0; i < kRows; ++i) AddArticles(database, {code_of(i)});
  Recordset rows;
  OpenForChange(rows, database, L"Article");
  for (int i = kRows; i < 2 * kRows; ++i) {
    rows.AddNew();
    rows(L"Code") = code_of(i);
    rows.Update();
  }
  rows.MoveFirst();
  for (int i = 0; i < 2 * kRows; ++i, rows.MoveNext()) ASSERT_EQ(TextOf(rows, L"Code"), code_of(i));
  EXPECT_TRUE(rows.Eof());
  EXPECT_EQ(rows.RecordCount(), 2 * kRows);
}

TEST(RecordsetTest, CursorsSeeLaterChangesAsDescribed) {
  TestDatabase database;
  AddArticles(database, {L"A", L"B"});
  Recordset snapshot;
  snapshot.Open(L"Article", database.connection(), CursorType::kStatic, LockType::kReadOnly);
  Recordset keyset;
  keyset.Open(L"Article", database.connection(), CursorType::kKeyset, LockType::kOptimistic);
  Recordset other;
  OpenForChange(other, database, L"Article");
  other(L"Code") = L"AA";
  other.Update();
  other.MoveNext();
  other.Delete();
  AddArticles(database, {L"C"});

  EXPECT_EQ(TextOf(snapshot, L"Code"), L"A");
  snapshot.MoveNext();
  EXPECT_EQ(TextOf(snapshot, L"Code"), L"B");
  EXPECT_EQ(snapshot.RecordCount(), 2);

  EXPECT_EQ(TextOf(keyset, L"Code"), L"AA");
  keyset(L"Description") = L"kept";
  keyset.Update();
  keyset.MoveNext();
  EXPECT_EQ(ErrorNumberOf([&] { keyset(L"Code").Value(); }), 3167);
  keyset.MoveNext();
  EXPECT_TRUE(keyset.Eof());
  EXPECT_EQ(database.Column(L"Article", L"Code"), L"AA,C");
}

TEST(RecordsetTest, UpdateLeavesAloneWhatOthersChangedInTheSameRow) {
  TestDatabase database;
  AddArticles(database, {L"A"});
  Recordset one;
  OpenForChange(one, database, L"Article");
  Recordset other;
  OpenForChange(other, database, L"Article");
  one(L"Description") = L"one";
  other(L"fkSerie") = 7;
  other.Update();
  one.Update();
  EXPECT_EQ(TextOf(one, L"fkSerie"), L"7");
  EXPECT_EQ(database.Column(L"Article", L"Description"), L"one");
}

TEST(RecordsetTest, WhatMayNotBeChangedSaysSo) {
  TestDatabase database;
  AddArticles(database, {L"A"});
  database.Add(L"Serie", {{L"SerieCode", L"S"}});
  Recordset rows;
  EXPECT_EQ(ErrorNumberOf([&] { rows.Eof(); }), 3704);
  for (const auto& [source, lock] :
       {std::pair(L"SELECT * FROM Article", LockType::kReadOnly),
        std::pair(L"SELECT Article.Code FROM Article INNER JOIN Serie ON Article.ID = "
                  L"Serie.SerieNr",
                  LockType::kOptimistic)}) {
    rows.Open(source, database.connection(), CursorType::kDynamic, lock);
    ASSERT_FALSE(rows.Eof());
    EXPECT_EQ(ErrorNumberOf([&] { rows(L"Code") = L"B"; }), 3251);
    EXPECT_EQ(ErrorNumberOf([&] { rows.AddNew(); }), 3251);
    EXPECT_EQ(ErrorNumberOf([&] { rows.Delete(); }), 3251);
    EXPECT_EQ(ErrorNumberOf([&] { rows(L"Nothing"); }), 3265);
    EXPECT_EQ(ErrorNumberOf([&] { rows.Open(L"Serie", database.connection()); }), 3705);
    rows.Close();
  }
}

TEST(RecordsetTest, ValuesBecomeWhatTheirColumnHolds) {
  const text::ScopedLocale locale({L',', L'.'});
  const struct {
    const wchar_t* column;
    text::Variant value;
    text::Variant stored;
    int number = 0;
  } cases[] = {
      {L"Yes", std::int32_t{1}, true},
      {L"Yes", L"false", false},
      {L"Yes", text::Null{}, false},
      {L"Yes", L"maybe", {}, 3421},
      {L"Small", 200.5, std::uint8_t{200}},
      {L"Small", std::int32_t{256}, {}, 3349},
      {L"Small", std::int32_t{-1}, {}, 3349},
      {L"Short", L"-12", std::int16_t{-12}},
      {L"Short", 32767.5, {}, 3349},
      {L"Long", L"1.234", std::int32_t{1234}},
      {L"Long", 2.5, std::int32_t{2}},
      {L"Long", true, std::int32_t{-1}},
      {L"Long", L"twelve", {}, 3421},
      {L"Long", L"", {}, 3421},
      {L"Long", 2147483648.0, {}, 3349},
      {L"Money", 1.23456, text::Currency{12346}},
      {L"Money", L"2,5", text::Currency{25000}},
      {L"Money", 1e15, {}, 3349},
      {L"Single", 0.1, 0.1F},
      {L"Single", 1e39, {}, 3349},
      {L"Double", L"1,5", 1.5},
      {L"Double", 0.1F, double{0.1F}},
      {L"Double", std::numeric_limits<double>::infinity(), {}, 3349},
      {L"Double", text::Null{}, text::Null{}},
      {L"When", text::Date{38061.5}, text::Date{38061.5}},
      {L"When", std::int32_t{0}, text::Date{0}},
      {L"When", 3e6, {}, 3349},
      {L"When", L"today", {}, 3421},
      {L"Text", 1.5, L"1,5"},
      {L"Text", std::int32_t{-7}, L"-7"},
      {L"Text", text::Binary{}, {}, 3421},
      {L"Memo", std::wstring(3000, L'é'), std::wstring(3000, L'é')},
      {L"ID", text::Guid{}, {}, 3421},
  };
  TestDatabase database;
  Recordset rows;
  OpenForChange(rows, database, L"Kinds");
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.column << " " << text::ToText(c.value).substr(0, 20));
    rows.AddNew();
    EXPECT_EQ(ErrorNumberOf([&] { rows(c.column) = c.value; }), c.number);
    if (c.number != 0) continue;
    EXPECT_EQ(rows(c.column).Value(), c.stored) << "before saving";
    rows.Update();
    Recordset again;
    again.Open(L"SELECT * FROM Kinds WHERE ID = " + TextOf(rows, L"ID"), database.connection());
    EXPECT_EQ(again(c.column).Value(), c.stored) << "as saved";
  }
}

// Defaults are for columns that were not set: a Null and a False that were set stay.
TEST(RecordsetTest, ANewRowGetsDefaultsWhereNothingWasSet) {
  jet::test::TestDatabase file({.password = u"top secret"});
  file->CreateTable({.name = u"T",
                     .columns = {{.name = u"Flag", .type = jet::ColumnType::kBoolean},
                                 {.name = u"Number"},
                                 {.name = u"Must", .required = true}}});
  jet::PropertyBlob properties;
  for (const auto& [column, value] :
       {std::pair(u"Flag", u"Yes"), std::pair(u"Number", u"7"), std::pair(u"Must", u"1")}) {
    const std::u16string name(jet::property::kDefaultValue);
    properties.groups.push_back({1, column, {jet::TextProperty(name, value)}});
  }
  properties.groups.back().properties.push_back(
      jet::BooleanProperty(std::u16string(jet::property::kRequired), true));
  file.SetProperties(u"T", properties);
  const test_support::TemporaryFolder folder;
  file.Save(folder / "defaults.mdb");
  Connection connection;
  OpenConnection(connection, folder.Text("defaults.mdb"));

  const struct {
    TestDatabase::Values set;
    std::wstring row;
    int failure = 0;
  } cases[] = {
      {{}, L"True 7"},
      {{{L"Flag", false}}, L"False 7"},
      {{{L"Flag", true}, {L"Number", std::int32_t{0}}}, L"True 0"},
      {{{L"Number", text::Null{}}}, L"True "},
      {{{L"Flag", text::Null{}}}, L"False 7"},
      {{{L"Must", text::Null{}}}, L"", 3314},
  };
  Recordset rows;
  rows.Open(L"T", connection, CursorType::kDynamic, LockType::kOptimistic);
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    rows.AddNew();
    for (const auto& [column, value] : c.set) rows(column) = value;
    EXPECT_EQ(ErrorNumberOf([&] { rows.Update(); }), c.failure);
    if (c.failure != 0) continue;
    EXPECT_EQ(TextOf(rows, L"Flag") + L" " + TextOf(rows, L"Number"), c.row);
  }
}

}  // namespace
}  // namespace database
