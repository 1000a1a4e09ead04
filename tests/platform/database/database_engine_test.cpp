// Compaction through the engine object: the numbers of its failures, and who holds the file.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

#include "platform/files/paths.h"
#include "tests/platform/database/test_database.h"

namespace database {
namespace {

const std::wstring kConnect = L";pwd=" + std::wstring(TestDatabase::kPassword);

TEST(DatabaseEngineTest, CompactsWhatNobodyHasOpen) {
  TestDatabase database;
  for (const wchar_t* code : {L"B", L"A", L"C"}) database.Add(L"Article", {{L"Code", code}});
  const std::wstring target = database.path() + L"_tmp";
  const auto exists = [&] { return std::filesystem::exists(files::ToPath(target)); };
  const auto compact = [&](const std::wstring& connect, const std::wstring& source,
                           const std::function<void()>& progress = {}) {
    return ErrorNumber([&] { DBEngine().CompactDatabase(source, target, connect, progress); });
  };

  EXPECT_EQ(compact(kConnect, database.path()), 3045) << "our own connection holds it";
  database.connection().Close();
  EXPECT_EQ(compact(L";pwd=guess", database.path()), 3031);
  EXPECT_EQ(compact(L"Paradox;pwd=top secret", database.path()), 3170);
  EXPECT_EQ(compact(kConnect, database.folder().Text("missing.pt")), 3024);
  EXPECT_THROW(compact(kConnect, database.path(), [] { throw std::logic_error("closed"); }),
               std::logic_error);
  EXPECT_FALSE(exists());

  EXPECT_EQ(compact(kConnect, database.path()), 0);
  EXPECT_EQ(compact(kConnect, database.path()), 3204) << "the target is there";
  std::filesystem::rename(files::ToPath(target), files::ToPath(database.path()));
  OpenConnection(database.connection(), database.path());
  EXPECT_EQ(database.Column(L"SELECT Code FROM Article ORDER BY Code", L"Code"), L"A,B,C");
  database.Add(L"Article", {{L"Code", L"D"}});
  EXPECT_EQ(database.Column(L"SELECT * FROM Article WHERE Code = 'D'", L"ID"), L"4");
}

// A table as the register of processed updates is made, in a file that never had it: for other
// readers, too, when the folder for them is named.
TEST(DatabaseEngineTest, ANewTableKeepsItsRulesThroughCompaction) {
  const test_support::TemporaryFolder folder;
  const auto text = [](const wchar_t* name, bool required) {
    return FieldDefinition{name, DataType::kText, 50, required, false};
  };
  const TableDef made{
      L"PriceUpdates",
      {text(L"FileName", true),
       {.Name = L"Date", .Type = DataType::kDate},
       text(L"Assortiment", false),
       text(L"Supplier", false),
       {.Name = L"DateProcessed", .Type = DataType::kDate}},
      {{.Name = L"PriceUpdates_PK", .Fields = {L"FileName"}, .Primary = true, .Unique = true}}};
  {
    const auto engine = DBEngine().CreateDatabase(folder.Text("first.mdb"));
    engine->AppendTable(made);
    EXPECT_EQ(ErrorNumber([&] { engine->AppendTable(made); }), 3010);
  }
  const std::wstring compacted = folder.Text("compacted-register.mdb");
  DBEngine().CompactDatabase(folder.Text("first.mdb"), compacted);
  {
    const std::vector<TableDef> tables = DBEngine().OpenDatabase(compacted)->TableDefs();
    ASSERT_EQ(tables.size(), 1u);
    EXPECT_EQ(tables[0].Name, made.Name);
    ASSERT_EQ(tables[0].Fields.size(), made.Fields.size());
    for (std::size_t i = 0; i < made.Fields.size(); ++i) {
      EXPECT_EQ(tables[0].Fields[i].Name, made.Fields[i].Name);
      EXPECT_EQ(tables[0].Fields[i].Type, made.Fields[i].Type);
      EXPECT_EQ(tables[0].Fields[i].Required, made.Fields[i].Required);
    }
    EXPECT_EQ(tables[0].Fields[0].Size, 50);
    EXPECT_FALSE(tables[0].Fields[0].AllowZeroLength);
    EXPECT_TRUE(tables[0].Indexes.at(0).Primary);
    EXPECT_EQ(tables[0].Indexes[0].Fields, made.Indexes[0].Fields);
  }
  Connection connection;
  OpenConnection(connection, compacted, L"");
  const struct {
    TestDatabase::Values values;
    int number;
  } rows[] = {
      {{{L"Supplier", L"S"}}, 3314},
      {{{L"FileName", L""}}, 3315},
      {{{L"FileName", L"a.prc"}, {L"Supplier", L""}}, 3315},
      {{{L"FileName", L"a.prc"}, {L"Supplier", L"S"}}, 0},
      {{{L"FileName", L"A.PRC"}}, 3022},
      {{{L"FileName", std::wstring(51, L'x')}}, 3163},
  };
  for (const auto& row : rows)
    EXPECT_EQ(ErrorNumber([&] { AddRow(connection, made.Name, row.values); }), row.number);
  connection.Close();
  test_support::KeepForOtherReaders(files::ToPath(compacted), "compacted-register.mdb");
}

}  // namespace
}  // namespace database
