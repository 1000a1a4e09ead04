// Making databases, tables, indexes and relationships from nothing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "platform/jet/check.h"
#include "platform/jet/database_creator.h"
#include "platform/jet/system_tables.h"
#include "tests/platform/jet/test_database.h"
#include "tests/support/temporary_folder.h"

namespace jet::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

using enum ErrorKind;

TableSpec SimpleTable(const std::u16string& name) {
  return {.name = name,
          .columns = {{.name = u"Id"}, {.name = u"Code", .type = ColumnType::kText, .size = 20}},
          .indexes = {{.name = u"PrimaryKey", .columns = {{u"Id"}}, .primary = true}}};
}

// Everything that can be created, in one database.
void CreateAll(Database& database) {
  database.CreateTable(
      {.name = u"Parents",
       .columns = {{.name = u"Id", .autonumber = true},
                   {.name = u"Code", .type = ColumnType::kText, .size = 20, .required = true},
                   {.name = u"Mark", .type = ColumnType::kGuid, .autonumber = true}},
       .indexes = {
           {.name = u"PrimaryKey", .columns = {{u"Id"}}, .primary = true},
           {.name = u"CodeMark", .columns = {{u"Code"}, {u"Mark", false}}, .unique = true}}});
  TableSpec wide{.name = u"Wide"};  // its definition needs several pages
  for (int i = 0; i < 150; ++i)
    wide.columns.push_back({.name = Text("a rather long name of column " + std::to_string(i)),
                            .type = i % 10 == 0 ? ColumnType::kMemo : ColumnType::kText,
                            .size = 10});
  database.CreateTable(wide);
  database.CreateTable({.name = u"Children",
                        .columns = {{.name = u"Parent"},
                                    {.name = u"Code", .type = ColumnType::kText, .size = 20},
                                    {.name = u"Mark", .type = ColumnType::kGuid}}});
  for (int i = 1; i <= 5; ++i) {
    Row parent = {Null{}, Text("code " + std::to_string(i)), Null{}};
    database.OpenTable(u"Parents").Insert(parent);
    Row child = {i, Null{}, Null{}};
    database.OpenTable(u"Children").Insert(child);
  }
  database.CreateRelationship({.name = u"ParentsChildren",
                               .table = u"Children",
                               .columns = {u"Parent"},
                               .referenced_table = u"Parents",
                               .referenced_columns = {u"Id"},
                               .cascade_deletes = true});
  database.CreateRelationship({.name = u"Second",
                               .table = u"Children",
                               .columns = {u"Mark", u"Code"},
                               .referenced_table = u"Parents",
                               .referenced_columns = {u"Mark", u"Code"}});
  database.CreateRelationship({.name = u"Loose",
                               .table = u"Wide",
                               .columns = {wide.columns[1].name},
                               .referenced_table = u"Children",
                               .referenced_columns = {u"Code"},
                               .enforced = false});
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
      EXPECT_EQ(FailureOf([&] {
                  database->OpenTable(u"Children").Delete({1, 0});
                }),
                (Failure{kRecordDeleted, {}}));
    }
    const CheckReport report = CheckFile(path, {.password = kinds[i].password});
    EXPECT_THAT(report.problems, IsEmpty());
    EXPECT_THAT(report.notes, IsEmpty());
    EXPECT_EQ(report.tables, 3u);
    EXPECT_EQ(report.rows, 10u);
    if (const auto verdict = IndependentCheck(path, kinds[i].password)) {
      EXPECT_THAT(*verdict, ::testing::StartsWith("ok: "));
    }
  }
}

TEST(CreationTest, ListsRelationshipsAsTheyWereAskedFor) {
  TestDatabase database;
  CreateAll(*database.operator->());
  database.Reopen();
  const auto relationships = database->Relationships();
  ASSERT_EQ(relationships.size(), 3u);
  EXPECT_EQ(relationships[0].spec.name, u"ParentsChildren");
  EXPECT_TRUE(relationships[0].spec.cascade_deletes);
  EXPECT_FALSE(relationships[0].spec.cascade_updates);
  EXPECT_THAT(relationships[1].spec.columns, ElementsAre(u"Mark", u"Code"));
  EXPECT_THAT(relationships[1].spec.referenced_columns, ElementsAre(u"Mark", u"Code"));
  EXPECT_TRUE(relationships[1].spec.enforced);
  EXPECT_FALSE(relationships[2].spec.enforced);
}

// The empty database is like the one that the database's own provider makes.
TEST(CreationTest, SystemTablesAreLikeThoseOfOtherWriters) {
  const std::vector<SharedFile> files = SharedFiles();
  if (files.empty()) GTEST_SKIP() << "ORVPAP_SHARED is not set";
  TestDatabase own;
  for (const SharedFile& file : files) {
    SCOPED_TRACE(file.path.filename().string());
    TestDatabase other(file.path, file.options);
    EXPECT_EQ(other->write_refusal(), "");
    for (const SystemTable& table : SystemTables()) {
      const TableDefinition& mine = own[table.name].definition();
      const TableDefinition& theirs = other[table.name].definition();
      EXPECT_EQ(mine.next_column_number, theirs.next_column_number);
      EXPECT_EQ(mine.variable_slots, theirs.variable_slots);
      ASSERT_EQ(mine.columns.size(), theirs.columns.size());
      for (std::size_t i = 0; i < mine.columns.size(); ++i) {
        const ColumnDefinition& column = mine.columns[i];
        const ColumnDefinition& their_column = theirs.columns[i];
        EXPECT_EQ(column.name, their_column.name);
        EXPECT_EQ(column.type, their_column.type);
        EXPECT_EQ(column.number, their_column.number);
        EXPECT_EQ(column.slot, their_column.slot);
        EXPECT_EQ(column.flags, their_column.flags);
        EXPECT_EQ(column.length, their_column.length);
        EXPECT_EQ(column.collation, their_column.collation);
        if (column.is_fixed()) {
          EXPECT_EQ(column.fixed_offset, their_column.fixed_offset);
        }
      }
    }
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
  const auto with_columns = [](std::vector<ColumnSpec> columns) {
    return TableSpec{.name = u"New", .columns = std::move(columns)};
  };
  const auto with_index = [](IndexSpec index) {
    TableSpec spec = SimpleTable(u"New");
    spec.indexes.push_back(std::move(index));
    return spec;
  };
  const auto many_columns = [](std::size_t count, ColumnSpec column) {
    TableSpec spec{.name = u"New"};
    for (std::size_t i = 0; i < count; ++i) {
      spec.columns.push_back(column);
      spec.columns.back().name = Text("c" + std::to_string(i));
    }
    return spec;
  };
  const auto many_indexes = [] {
    TableSpec spec = SimpleTable(u"New");
    for (int i = 0; i < 32; ++i)
      spec.indexes.push_back({.name = Text("i" + std::to_string(i)), .columns = {{u"Id"}}});
    return spec;
  };
  struct Case {
    TableSpec spec;
    Failure failure;
  };
  using enum ColumnType;
  const std::vector<Case> cases = {
      {SimpleTable(u"gOODS"), {kTableExists, {u"gOODS"}}},
      {SimpleTable(u"msysaces"), {kTableExists, {u"msysaces"}}},
      {SimpleTable(u""), {kBadName, {u""}}},
      {SimpleTable(u"a.b"), {kBadName, {u"a.b"}}},
      {SimpleTable(u" a"), {kBadName, {u" a"}}},
      {SimpleTable(long_name), {kBadName, {long_name}}},
      {with_columns({{.name = u"a!"}}), {kBadName, {u"a!"}}},
      {with_columns({{.name = u"A"}, {.name = u"a"}}), {kObjectExists, {u"a"}}},
      {with_columns({}), {kNotSupported, {u"New"}}},
      {with_columns({{.name = u"A", .type = kText, .size = 256}}), {kTooLong, {u"A"}}},
      {with_columns({{.name = u"A", .type = kBinary, .size = 511}}), {kTooLong, {u"A"}}},
      {with_columns({{.name = u"A", .type = kNumeric, .precision = 29}}), {kOutOfRange, {u"A"}}},
      {with_columns({{.name = u"A", .type = kNumeric, .precision = 3, .scale = 4}}),
       {kOutOfRange, {u"A"}}},
      {with_columns({{.name = u"A", .type = kText, .autonumber = true}}), {kNotSupported, {u"A"}}},
      {with_columns({{.name = u"A", .autonumber = true}, {.name = u"B", .autonumber = true}}),
       {kNotSupported, {u"New"}}},
      {many_columns(256, {}), {kTooManyColumns, {u"New"}}},
      {many_columns(255, {.type = kGuid}), {kRowTooLarge, {u"New"}}},
      {many_indexes(), {kTooManyIndexes, {u"New"}}},
      {with_index({.name = u"x"}), {kNotSupported, {u"x"}}},
      {with_index({.name = u"x", .columns = {{u"Nothing"}}}), {kObjectNotFound, {u"Nothing"}}},
      {with_index({.name = u"x", .columns = {{u"Id"}, {u"ID"}}}), {kObjectExists, {u"ID"}}},
      {with_index({.name = u"primarykey", .columns = {{u"Id"}}}), {kObjectExists, {u"primarykey"}}},
      {with_index({.name = u"x", .columns = {{u"Id"}}, .primary = true}), {kObjectExists, {u"x"}}},
      {with_index({.name = u"[x]", .columns = {{u"Id"}}}), {kBadName, {u"[x]"}}},
      {{.name = u"New",
        .columns = {{.name = u"A", .type = kOle}},
        .indexes = {{.name = u"x", .columns = {{u"A"}}}}},
       {kNotSupported, {u"x"}}},
      {{.name = u"New",
        .columns = {{.name = u"A", .type = kNumeric}},
        .indexes = {{.name = u"x", .columns = {{u"A", false}}}}},
       {kNotSupported, {u"x"}}},
  };
  const std::vector<PageBytes> before = database.disk().Snapshot();
  for (std::size_t i = 0; i < cases.size(); ++i) {
    SCOPED_TRACE("case " + std::to_string(i));
    EXPECT_EQ(FailureOf([&] { database->CreateTable(cases[i].spec); }), cases[i].failure);
  }
  EXPECT_TRUE(database.disk().Snapshot() == before);
  EXPECT_THAT(database->TableNames(), ElementsAre(u"Goods"));

  database->CreateTable(many_columns(255, {.type = kText, .size = 1}));
  TableSpec full = many_indexes();
  full.name = u"Full";
  full.indexes.pop_back();
  database->CreateTable(full);
  EXPECT_EQ(FailureOf([&] {
              database->CreateIndex(u"Full", {.name = u"one more", .columns = {{u"Id"}}});
            }),
            (Failure{kTooManyIndexes, {u"Full"}}));
  EXPECT_EQ(FailureOf([&] {
              database->CreateRelationship({.name = u"R",
                                            .table = u"Goods",
                                            .columns = {u"Id"},
                                            .referenced_table = u"Full",
                                            .referenced_columns = {u"Id"}});
            }),
            (Failure{kTooManyIndexes, {u"Full"}}));
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(CreationTest, RowsThatAreThereDecideWhetherAnIndexOrRelationshipCanBe) {
  TestDatabase database;
  database->CreateTable(SimpleTable(u"Parents"));
  database->CreateTable(
      {.name = u"Children",
       .columns = {{.name = u"Parent"}, {.name = u"Code", .type = ColumnType::kText, .size = 20}}});
  for (const auto& [parent, code] : std::vector<std::pair<Value, Value>>{
           {1, u"a"}, {2, u"A "}, {Null{}, u"\u0e01"}, {7, Null{}}, {8, Null{}}}) {
    Row row = {parent, code};
    database[u"Children"].Insert(row);
  }
  const auto create_index = [&](const IndexSpec& spec) {
    return FailureOf([&] { database->CreateIndex(u"Children", spec); });
  };
  const auto relate = [&](RelationshipSpec spec) {
    if (spec.table.empty()) spec.table = u"Children";
    if (spec.columns.empty()) spec.columns = {u"Parent"};
    spec.referenced_table = u"Parents";
    return FailureOf([&] { database->CreateRelationship(spec); });
  };
  const std::vector<PageBytes> before = database.disk().Snapshot();
  EXPECT_EQ(create_index({.name = u"x", .columns = {{u"Parent"}}, .primary = true}),
            (Failure{kNullInKey, {u"x"}}));
  EXPECT_EQ(create_index({.name = u"x", .columns = {{u"Code"}}})->kind, kNotSupported)
      << "a text without known place in the order";
  EXPECT_EQ(relate({.name = u"R", .referenced_columns = {u"Id"}}),
            (Failure{kNoParentRow, {u"Parents"}}));
  EXPECT_EQ(relate({.name = u"R", .columns = {u"Code"}, .referenced_columns = {u"Code"}}),
            (Failure{kObjectNotFound, {u"Code"}}));
  EXPECT_EQ(relate({.name = u"R", .columns = {u"Code"}, .referenced_columns = {u"Id"}}),
            (Failure{kTypeMismatch, {u"Code"}}));
  EXPECT_EQ(relate({.name = u"R", .columns = {u"Nothing"}, .referenced_columns = {u"Id"}}),
            (Failure{kObjectNotFound, {u"Nothing"}}));
  EXPECT_EQ(relate({.name = u"R", .referenced_columns = {u"Id", u"Code"}})->kind, kNotSupported);
  EXPECT_TRUE(database.disk().Snapshot() == before);

  Table& children = database[u"Children"];
  children.Delete(RowsOf(children)[2].id);
  EXPECT_EQ(create_index({.name = u"x", .columns = {{u"Code"}}, .unique = true}),
            (Failure{kDuplicateKey, {u"x"}}));
  EXPECT_EQ(create_index({.name = u"x", .columns = {{u"Code"}}}), std::nullopt);
  EXPECT_EQ(create_index({.name = u"X", .columns = {{u"Parent"}}}),
            (Failure{kObjectExists, {u"X"}}));
  for (const int id : {1, 2, 7, 8}) {
    Row row = {id, Null{}};
    database[u"Parents"].Insert(row);
  }
  EXPECT_EQ(relate({.name = u"R", .referenced_columns = {u"Id"}}), std::nullopt);
  EXPECT_EQ(relate({.name = u"r", .referenced_columns = {u"Id"}}),
            (Failure{kObjectExists, {u"r"}}));
  EXPECT_EQ(relate({.name = u"X", .referenced_columns = {u"Id"}}),
            (Failure{kObjectExists, {u"X"}}));
  const Value code = u"a";
  EXPECT_EQ(children.Lookup(*children.IndexOn(1), std::span(&code, 1)).size(), 2u);
  EXPECT_THAT(database.Problems(), IsEmpty());
}

TEST(CreationTest, EveryWriteThatFailsLeavesTheFileAsItWas) {
  TestDatabase database;
  CreateAll(*database.operator->());
  const std::vector<std::pair<const char*, std::function<void()>>> changes = {
      {"table", [&] { database->CreateTable(SimpleTable(u"New")); }},
      {"index",
       [&] { database->CreateIndex(u"Children", {.name = u"New", .columns = {{u"Parent"}}}); }},
      {"relationship",
       [&] {
         database->CreateRelationship({.name = u"New",
                                       .table = u"Parents",
                                       .columns = {u"Id"},
                                       .referenced_table = u"Parents",
                                       .referenced_columns = {u"Id"}});
       }},
  };
  for (const auto& [name, change] : changes) {
    SCOPED_TRACE(name);
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
