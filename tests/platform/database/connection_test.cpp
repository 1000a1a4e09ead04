// Databases as a whole: who holds the file, for how long, and who may share it; making and
// compacting one; the number and text of what the engine below reports.
#include "platform/database/connection.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <stdexcept>

#include "platform/database/errors.h"
#include "platform/database/recordset.h"
#include "platform/files/paths.h"
#include "platform/jet/database.h"
#include "platform/text/runtime_error.h"
#include "tests/platform/database/test_database.h"

namespace database {
namespace {

const std::wstring kConnect = L";pwd=" + std::wstring(TestDatabase::kPassword);

// Whether another owner could open the file now.
bool IsFree(const std::wstring& path) {
  try {
    jet::Database::Open(files::ToPath(path), {u"top secret"});
    return true;
  } catch (const jet::Error& error) {
    EXPECT_EQ(error.kind(), jet::ErrorKind::kInUse);
    return false;
  }
}

TEST(ConnectionTest, OpenRefusesWithTheClassicNumbers) {
  TestDatabase database;
  database.connection().Close();
  const std::wstring text_file = files::ToText(database.folder().Write("text.pt", "no database"));
  const struct {
    std::wstring path;
    std::wstring password;
    int number;
  } cases[] = {
      {database.path(), TestDatabase::kPassword, 0},
      {database.path(), L"Top secret", 3031},
      {database.path(), L"", 3031},
      {database.folder().Text("missing.pt"), L"", 3024},
      {database.folder().Text("missing") + L"/x.pt", L"", 3044},
      {text_file, L"", 3343},
  };
  for (const auto& c : cases) {
    Connection connection;
    EXPECT_EQ(ErrorNumberOf([&] { OpenConnection(connection, c.path, c.password); }), c.number)
        << testing::PrintToString(c.path);
    EXPECT_EQ(connection.IsOpen(), c.number == 0);
  }

  Connection connection;
  EXPECT_EQ(ErrorNumberOf([&] { connection.Open(); }), 3706);
  EXPECT_EQ(ErrorNumberOf([&] { connection.Properties[L"Data Sauce"]; }), 3265);
  OpenConnection(connection, database.path());
  EXPECT_EQ(ErrorNumberOf([&] { connection.Open(); }), 3705);
}

TEST(ConnectionTest, TheFileIsHeldUntilItsLastConnectionCloses) {
  TestDatabase database;
  EXPECT_FALSE(IsFree(database.path()));
  {
    Connection second;
    EXPECT_EQ(ErrorNumberOf([&] { OpenConnection(second, database.path(), L"guess"); }), 3031);
    OpenConnection(second, database.folder().Text("./product.pt"));
    const auto engine =
        DBEngine().OpenDatabase(database.path(), false, false, L"MS Access;PWD=top secret");
    database.connection().Close();
    EXPECT_FALSE(IsFree(database.path()));
    engine->Close();
    EXPECT_EQ(ErrorNumberOf([&] { engine->TableDefs(); }), 3704);
    EXPECT_FALSE(IsFree(database.path()));
  }
  EXPECT_TRUE(IsFree(database.path()));
}

TEST(ConnectionTest, RecordsetsNeitherHoldTheFileNorOutliveTheConnection) {
  TestDatabase database;
  database.Add(L"Article", {{L"Code", L"A"}});
  database.Add(L"Article", {{L"Code", L"B"}});
  Connection keeps_open;
  for (const bool shared : {false, true}) {
    Connection connection;
    OpenConnection(connection, database.path());
    if (shared) OpenConnection(keeps_open, database.path());
    Recordset rows;
    rows.Open(L"Article", connection, CursorType::kDynamic, LockType::kOptimistic);
    rows.Find(L"Code = 'A'");
    Field code = rows(L"Code");
    Recordset in_the_middle_of_a_walk;
    in_the_middle_of_a_walk.Open(L"Article", connection);
    database.connection().Close();
    connection.Close();
    EXPECT_EQ(IsFree(database.path()), !shared);
    Recordset late;
    for (const auto& use : std::initializer_list<std::function<void()>>{
             [&] { code.Value(); }, [&] { code = L"X"; }, [&] { rows.MoveNext(); },
             [&] { rows.AddNew(); }, [&] { rows.Update(); }, [&] { rows.ActiveConnection(); },
             [&] { late.Open(L"Article", connection); }})
      EXPECT_EQ(ErrorNumberOf(use), 3704);
    rows.Close();
  }
}

TEST(ConnectionTest, AFileReplacedByARenameIsOpenedAnew) {
  TestDatabase database;
  TestDatabase other;
  other.Add(L"Article", {{L"Code", L"other"}});
  other.connection().Close();
  // Windows lets nobody replace an open file.
  if constexpr (files::Separator() == L'\\') database.connection().Close();
  std::filesystem::rename(files::ToPath(other.path()), files::ToPath(database.path()));

  Connection connection;
  OpenConnection(connection, database.path());
  Recordset rows;
  rows.Open(L"Article", connection);
  ASSERT_FALSE(rows.Eof());
  EXPECT_EQ(rows(L"Code").Value(), text::Variant(L"other"));
}

TEST(DatabaseEngineTest, RelationsAreEnforced) {
  TestDatabase database;
  const auto engine = DBEngine().OpenDatabase(database.path(), false, false, kConnect);
  engine->AppendRelation({.Name = L"SerieArticle",
                          .Table = L"Serie",
                          .ForeignTable = L"Article",
                          .Fields = {{L"SerieNr", L"fkSerie"}}});
  database.Add(L"Serie", {{L"SerieCode", L"S"}});
  database.Add(L"Article", {{L"Code", L"A"}, {L"fkSerie", 1}});
  const TestDatabase::Values orphan = {{L"Code", L"B"}, {L"fkSerie", 2}};
  EXPECT_EQ(ErrorNumberOf([&] { database.Add(L"Article", orphan); }), 3201);
  Recordset series;
  series.Open(L"Serie", database.connection(), CursorType::kDynamic, LockType::kOptimistic);
  EXPECT_EQ(ErrorNumberOf([&] { series.Delete(); }), 3200);
}

TEST(DatabaseEngineTest, CreatingAndConnectTexts) {
  TestDatabase database;
  EXPECT_EQ(ErrorNumberOf([&] { DBEngine().CreateDatabase(database.path()); }), 3204);
  EXPECT_EQ(ErrorNumberOf([&] { DBEngine().OpenDatabase(database.path(), false, false, L"x;"); }),
            3170);
  EXPECT_EQ(ErrorNumberOf([&] { DBEngine().OpenDatabase(database.path()); }), 3031);
  const std::wstring encoded = database.folder().Text("encoded.pt");
  DBEngine().CreateDatabase(encoded, L";pwd=x", true);
  EXPECT_EQ(ErrorNumberOf([&] { DBEngine().OpenDatabase(encoded, false, false, L";PWD=x"); }), 0);
}

TEST(DatabaseEngineTest, CompactsWhatNobodyHasOpen) {
  TestDatabase database;
  for (const wchar_t* code : {L"B", L"A", L"C"}) database.Add(L"Article", {{L"Code", code}});
  const std::wstring target = database.path() + L"_tmp";
  const auto compact = [&](const std::wstring& connect, const std::wstring& source,
                           const std::function<void()>& progress = {}) {
    return ErrorNumberOf([&] { DBEngine().CompactDatabase(source, target, connect, progress); });
  };

  EXPECT_EQ(compact(kConnect, database.path()), 3045) << "our own connection holds it";
  database.connection().Close();
  EXPECT_EQ(compact(L";pwd=guess", database.path()), 3031);
  EXPECT_EQ(compact(L"Paradox;pwd=top secret", database.path()), 3170);
  EXPECT_EQ(compact(kConnect, database.folder().Text("missing.pt")), 3024);
  EXPECT_THROW(compact(kConnect, database.path(), [] { throw std::logic_error("closed"); }),
               std::logic_error);
  EXPECT_FALSE(files::FileExists(target));

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
  const TableDef made{
      L"PriceUpdates",
      {{.Name = L"FileName",
        .Type = DataType::kText,
        .Size = 50,
        .Required = true,
        .AllowZeroLength = false},
       {.Name = L"Date", .Type = DataType::kDate},
       {.Name = L"Assortiment", .Type = DataType::kText, .Size = 50, .AllowZeroLength = false},
       {.Name = L"Supplier", .Type = DataType::kText, .Size = 50, .AllowZeroLength = false},
       {.Name = L"DateProcessed", .Type = DataType::kDate}},
      {{.Name = L"PriceUpdates_PK", .Fields = {L"FileName"}, .Primary = true, .Unique = true}}};
  {
    const auto engine = DBEngine().CreateDatabase(folder.Text("first.mdb"));
    engine->AppendTable(made);
    EXPECT_EQ(ErrorNumberOf([&] { engine->AppendTable(made); }), 3010);
  }
  const std::wstring compacted = folder.Text("compacted-register.mdb");
  DBEngine().CompactDatabase(folder.Text("first.mdb"), compacted);
  const std::vector<TableDef> tables = DBEngine().OpenDatabase(compacted)->TableDefs();
  ASSERT_EQ(tables.size(), 1u);
  ASSERT_EQ(tables[0].Fields.size(), made.Fields.size());
  for (std::size_t i = 0; i < made.Fields.size(); ++i) {
    EXPECT_EQ(tables[0].Fields[i].Name, made.Fields[i].Name);
    EXPECT_EQ(tables[0].Fields[i].Type, made.Fields[i].Type);
    EXPECT_EQ(tables[0].Fields[i].Required, made.Fields[i].Required);
  }
  EXPECT_EQ(tables[0].Fields[0].Size, 50);
  EXPECT_FALSE(tables[0].Fields[0].AllowZeroLength);
  EXPECT_TRUE(tables[0].Indexes.at(0).Primary);

  Connection connection;
  OpenConnection(connection, compacted, L"");
  const std::pair<TestDatabase::Values, int> rows[] = {
      {{{L"Supplier", L"S"}}, 3314},
      {{{L"FileName", L""}}, 3315},
      {{{L"FileName", L"a.prc"}, {L"Supplier", L""}}, 3315},
      {{{L"FileName", L"a.prc"}, {L"Supplier", L"S"}}, 0},
      {{{L"FileName", L"A.PRC"}}, 3022},
      {{{L"FileName", std::wstring(51, L'x')}}, 3163},
  };
  for (const auto& [values, number] : rows)
    EXPECT_EQ(ErrorNumberOf([&] { AddRow(connection, made.Name, values); }), number);
  connection.Close();
  test_support::KeepForOtherReaders(files::ToPath(compacted), "compacted-register.mdb");
}

TEST(ErrorsTest, EngineErrorsCarryNumberTextAndNames) {
  using jet::ErrorKind;
  using Names = std::vector<std::u16string>;
  const struct {
    jet::Error error;
    int number;
    std::wstring description;
  } cases[] = {
      {jet::Error(ErrorKind::kInUse, Names{u"C:\\a.pt"}), 3045,
       L"Could not use 'C:\\a.pt'; file already in use."},
      {jet::Error(ErrorKind::kInUse), 3045, L"Could not use 'open.pt'; file already in use."},
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
  for (const auto& c : cases) {
    const text::RuntimeError error = Translate(c.error, L"open.pt");
    EXPECT_EQ(error.number(), c.number);
    EXPECT_EQ(error.description(), c.description);
  }
}

}  // namespace
}  // namespace database
