// Making databases, tables, indexes and relationships from nothing.
#include <gmock/gmock.h>

#include <functional>

#include "platform/jet/check.h"
#include "platform/jet/database_creator.h"
#include "tests/platform/jet/test_database.h"
#include "tests/support/temporary_folder.h"

namespace jet::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using enum ErrorKind;
using enum ColumnType;

TableSpec SimpleTable(const std::u16string& name) {
  return {name, {{u"Id"}, {u"Code", kText, 20}}, {PrimaryKey(u"Id")}};
}

// Everything that can be created, in one database.
void CreateAll(Database& database) {
  database.CreateTable(
      {u"Parents",
       {{.name = u"Id", .autonumber = true},
        {.name = u"Code", .type = kText, .size = 20, .required = true},
        {.name = u"Mark", .type = kGuid, .autonumber = true}},
       {PrimaryKey(u"Id"),
        {.name = u"CodeMark", .columns = {{u"Code"}, {u"Mark", false}}, .unique = true}}});
  TableSpec wide{.name = u"Wide"};  // its definition needs several pages
  for (int i = 0; i < 150; ++i)
    wide.columns.push_back({Text("a rather long name of column " + std::to_string(i)),
                            i % 10 == 0 ? kMemo : kText, 10});
  database.CreateTable(wide);
  database.CreateTable({u"Children", {{u"Parent"}, {u"Code", kText, 20}, {u"Mark", kGuid}}});
  for (int i = 1; i <= 5; ++i) {
    Add(database.OpenTable(u"Parents"), {Null{}, Text("code " + std::to_string(i)), Null{}});
    Add(database.OpenTable(u"Children"), {i, Null{}, Null{}});
  }
  database.CreateRelationship(
      {u"Family", u"Children", {u"Parent"}, u"Parents", {u"Id"}, true, false, true});
  database.CreateRelationship(
      {u"Second", u"Children", {u"Mark", u"Code"}, u"Parents", {u"Mark", u"Code"}});
  database.CreateRelationship(
      {u"Loose", u"Wide", {wide.columns[1].name}, u"Children", {u"Code"}, false});
  database.CreateIndex(u"Children",
                       {.name = u"ByCode", .columns = {{u"Code"}}, .ignore_nulls = true});
}

TEST(CreationTest, EverythingCreatedIsSoundForThisAndOtherCheckers) {
  const test_support::TemporaryFolder folder;
  const std::vector<CreateOptions> kinds = {
      {}, {.password = u"secret"}, {.encode = true}, {.password = u"secret", .encode = true}};
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    SCOPED_TRACE("kind " + std::to_string(i));
    const auto path = folder / ("t" + std::to_string(i) + ".mdb");
    {
      const auto database = Database::Create(path, kinds[i]);
      EXPECT_EQ(database->write_refusal(), "");
      EXPECT_EQ(std::filesystem::file_size(path), 16 * kPageSize) << "the smallest database";
      CreateAll(*database);
    }
    const CheckReport report = CheckFile(path, {.password = kinds[i].password});
    EXPECT_THAT(report.problems, IsEmpty());
    EXPECT_THAT(report.notes, IsEmpty());
    EXPECT_EQ(report.tables, 3u);
    EXPECT_EQ(report.rows, 10u);
    if (const auto verdict = IndependentCheck(path, kinds[i].password)) {
      EXPECT_THAT(*verdict, ::testing::StartsWith("ok: "));
    }
    const auto relationships =
        Database::Open(path, {.password = kinds[i].password})->Relationships();
    ASSERT_EQ(relationships.size(), 3u);
    EXPECT_EQ(relationships[0].spec.name, u"Family");
    EXPECT_TRUE(relationships[0].spec.cascade_deletes && !relationships[0].spec.cascade_updates);
    EXPECT_THAT(relationships[1].spec.columns, ElementsAre(u"Mark", u"Code"));
    EXPECT_TRUE(relationships[1].spec.enforced && !relationships[2].spec.enforced);
  }
}

// The empty database is like the one that the database's own provider makes.
TEST(CreationTest, SystemTablesAreLikeThoseOfOtherWriters) {
  const std::vector<SharedFile> files = SharedFiles();
  if (files.empty()) GTEST_SKIP() << "ORVPAP_SHARED is not set";
  TestDatabase own;
  for (const SharedFile& file : files) {
    SCOPED_TRACE(file.path.filename().string());
    TestDatabase other(file.path, file.options);
    EXPECT_EQ(other->write_refusal(), "") << "tells what differs from its own system tables";
    const auto rights = [](TestDatabase& database) {
      const Table& table = database[u"MSysACEs"];
      std::vector<std::pair<Value, Value>> pairs;  // object, mask
      for (const StoredRowValues& row : RowsOf(table))
        pairs.emplace_back(row.values[*table.FindColumn(u"ObjectId")],
                           row.values[*table.FindColumn(u"ACM")]);
      return pairs;
    };
    if (other->TableNames().empty()) {
      EXPECT_EQ(rights(own), rights(other));
    }
  }
}

TEST(CreationTest, AnExistingFileIsNeverReplacedAndNothingIsLeftBeside) {
  const test_support::TemporaryFolder folder;
  const auto path = folder.Write("t.mdb", "precious");
  EXPECT_EQ(FailureOf([&] { Database::Create(path); }),
            (Failure{kDatabaseExists, {path.u16string()}}));
  EXPECT_EQ(test_support::ReadAll(path), "precious");
  EXPECT_TRUE(FailureOf([&] { Database::Create(folder / "no folder" / "t.mdb"); }));
  EXPECT_EQ(FailureOf([&] {
              Database::Create(folder / "u.mdb", {.password = std::u16string(21, u'x')});
            })->kind,
            kTooLong);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

TEST(CreationTest, WhatTheFormatCannotHoldIsRefused) {
  TestDatabase database;
  database->CreateTable(SimpleTable(u"Goods"));
  const std::u16string long_name(65, u'n');
  const auto with_index = [](IndexSpec index) {
    TableSpec spec = SimpleTable(u"New");
    spec.indexes.push_back(std::move(index));
    return spec;
  };
  const auto many_columns = [](std::size_t count, ColumnSpec column) {
    TableSpec spec{.name = u"New"};
    for (std::size_t i = 0; i < count; ++i) {
      column.name = Text("c" + std::to_string(i));
      spec.columns.push_back(column);
    }
    return spec;
  };
  TableSpec many_indexes = SimpleTable(u"Full");
  for (int i = 0; i < 32; ++i)
    many_indexes.indexes.push_back({Text("i" + std::to_string(i)), {{u"Id"}}});
  const std::pair<TableSpec, Failure> cases[] = {
      {SimpleTable(u"gOODS"), {kTableExists, {u"gOODS"}}},
      {SimpleTable(u"msysaces"), {kTableExists, {u"msysaces"}}},
      {SimpleTable(u""), {kBadName, {u""}}},
      {SimpleTable(u"a.b"), {kBadName, {u"a.b"}}},
      {SimpleTable(u" a"), {kBadName, {u" a"}}},
      {SimpleTable(long_name), {kBadName, {long_name}}},
      {{u"New", {{u"a!"}}}, {kBadName, {u"a!"}}},
      {{u"New", {{u"A"}, {u"a"}}}, {kObjectExists, {u"a"}}},
      {{u"New", {}}, {kNotSupported, {u"New"}}},
      {{u"New", {{u"A", kText, 256}}}, {kTooLong, {u"A"}}},
      {{u"New", {{u"A", kBinary, 511}}}, {kTooLong, {u"A"}}},
      {{u"New", {{.name = u"A", .type = kNumeric, .precision = 29}}}, {kOutOfRange, {u"A"}}},
      {{u"New", {{.name = u"A", .type = kNumeric, .precision = 3, .scale = 4}}},
       {kOutOfRange, {u"A"}}},
      {{u"New", {{.name = u"A", .type = kText, .autonumber = true}}}, {kNotSupported, {u"A"}}},
      {{u"New", {{.name = u"A", .autonumber = true}, {.name = u"B", .autonumber = true}}},
       {kNotSupported, {u"New"}}},
      {many_columns(256, {}), {kTooManyColumns, {u"New"}}},
      {many_columns(255, {.type = kGuid}), {kRowTooLarge, {u"New"}}},
      {many_indexes, {kTooManyIndexes, {u"Full"}}},
      {with_index({.name = u"x"}), {kNotSupported, {u"x"}}},
      {with_index({u"x", {{u"Nothing"}}}), {kObjectNotFound, {u"Nothing"}}},
      {with_index({u"x", {{u"Id"}, {u"ID"}}}), {kObjectExists, {u"ID"}}},
      {with_index({u"primarykey", {{u"Id"}}}), {kObjectExists, {u"primarykey"}}},
      {with_index({u"x", {{u"Id"}}, true}), {kObjectExists, {u"x"}}},
      {with_index({u"[x]", {{u"Id"}}}), {kBadName, {u"[x]"}}},
      {{u"New", {{u"A", kOle}}, {{u"x", {{u"A"}}}}}, {kNotSupported, {u"x"}}},
      {{u"New", {{u"A", kNumeric}}, {{u"x", {{u"A", false}}}}}, {kNotSupported, {u"x"}}},
  };
  const std::vector<PageBytes> before = database.disk().Snapshot();
  for (const auto& [spec, failure] : cases)
    EXPECT_EQ(FailureOf([&, &table = spec] { database->CreateTable(table); }), failure);
  EXPECT_TRUE(database.disk().Snapshot() == before);
  EXPECT_THAT(database->TableNames(), ElementsAre(u"Goods"));

  database->CreateTable(many_columns(255, {.type = kText, .size = 1}));
  many_indexes.indexes.pop_back();
  database->CreateTable(many_indexes);
  const Failure full{kTooManyIndexes, {u"Full"}};
  EXPECT_EQ(FailureOf([&] { database->CreateIndex(u"Full", {u"one more", {{u"Id"}}}); }), full);
  EXPECT_EQ(FailureOf([&] {
              database->CreateRelationship({u"R", u"Goods", {u"Id"}, u"Full", {u"Id"}});
            }),
            full);
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(CreationTest, RowsThatAreThereDecideWhetherAnIndexOrRelationshipCanBe) {
  TestDatabase database;
  database->CreateTable(SimpleTable(u"Parents"));
  database->CreateTable({u"Children", {{u"Parent"}, {u"Code", kText, 20}}});
  Table& children = database[u"Children"];
  for (const Row& row :
       std::vector<Row>{{1, u"a"}, {2, u"A "}, {Null{}, u"\u0e01"}, {7, Null{}}, {8, Null{}}})
    Add(children, row);
  const auto create_index = [&](const IndexSpec& spec) {
    return FailureOf([&] { database->CreateIndex(u"Children", spec); });
  };
  using Names = std::vector<std::u16string>;
  const auto relate = [&](const char16_t* name, const Names& from, const Names& to) {
    return FailureOf([&] {
      database->CreateRelationship({name, u"Children", from, u"Parents", to});
    });
  };
  const std::vector<PageBytes> before = database.disk().Snapshot();
  EXPECT_EQ(create_index({u"x", {{u"Parent"}}, true}), (Failure{kNullInKey, {u"x"}}));
  EXPECT_EQ(create_index({u"x", {{u"Code"}}})->kind, kNotSupported)
      << "a text without known place in the order";
  EXPECT_EQ(relate(u"R", {u"Parent"}, {u"Id"}), (Failure{kNoParentRow, {u"Parents"}}));
  EXPECT_EQ(relate(u"R", {u"Code"}, {u"Code"}), (Failure{kObjectNotFound, {u"Code"}}));
  EXPECT_EQ(relate(u"R", {u"Code"}, {u"Id"}), (Failure{kTypeMismatch, {u"Code"}}));
  EXPECT_EQ(relate(u"R", {u"Nothing"}, {u"Id"}), (Failure{kObjectNotFound, {u"Nothing"}}));
  EXPECT_EQ(relate(u"R", {u"Parent"}, {u"Id", u"Code"})->kind, kNotSupported);
  EXPECT_TRUE(database.disk().Snapshot() == before);

  children.Delete(RowsOf(children)[2].id);
  EXPECT_EQ(create_index({.name = u"x", .columns = {{u"Code"}}, .unique = true}),
            (Failure{kDuplicateKey, {u"x"}}));
  EXPECT_EQ(create_index({u"x", {{u"Code"}}}), std::nullopt);
  EXPECT_EQ(create_index({u"X", {{u"Parent"}}}), (Failure{kObjectExists, {u"X"}}));
  for (const int id : {1, 2, 7, 8}) Add(database[u"Parents"], {id, Null{}});
  EXPECT_EQ(relate(u"R", {u"Parent"}, {u"Id"}), std::nullopt);
  EXPECT_EQ(relate(u"r", {u"Parent"}, {u"Id"}), (Failure{kObjectExists, {u"r"}}));
  const Value code = u"a";
  EXPECT_EQ(children.Lookup(*children.IndexOn(1), std::span(&code, 1)).size(), 2u);
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(CreationTest, EveryWriteThatFailsLeavesTheFileAsItWas) {
  TestDatabase database;
  CreateAll(*database.operator->());
  const std::function<void()> changes[] = {
      [&] { database->CreateTable(SimpleTable(u"New")); },
      [&] {
        database->CreateIndex(u"Children", {u"New", {{u"Parent"}}});
      },
      [&] {
        database->CreateRelationship({u"New", u"Parents", {u"Id"}, u"Parents", {u"Id"}});
      },
  };
  for (const auto& change : changes) {
    SCOPED_TRACE(&change - changes);
    const std::vector<PageBytes> before = database.disk().Snapshot();
    const auto names_before = database->TableNames();
    std::size_t failing = 0;
    for (;; ++failing) {
      database.disk().FailAtWrite(failing);
      const auto failure = FailureOf(change);
      database.disk().Heal();
      if (!failure) break;
      ASSERT_EQ(failure->kind, kDiskFull);
      ASSERT_EQ(database.disk().Snapshot(), before);
      ASSERT_EQ(database->TableNames(), names_before);
    }
    EXPECT_GT(failing, 3u);
    EXPECT_THAT(database.Problems(), IsEmpty());
  }
  // What a failed attempt had counted in memory was forgotten.
  EXPECT_EQ(database[u"MSysObjects"].row_count(), RowsOf(database[u"MSysObjects"]).size());
}

}  // namespace
}  // namespace jet::test
