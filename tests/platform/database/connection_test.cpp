// Who holds the file, for how long, and who may share it.
#include "platform/database/connection.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "platform/database/recordset.h"
#include "platform/files/paths.h"
#include "platform/jet/database.h"
#include "platform/text/runtime_error.h"
#include "tests/platform/database/test_database.h"

namespace database {
namespace {

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
  struct Case {
    std::wstring path;
    std::wstring password;
    int number;
  };
  const Case cases[] = {
      {database.path(), TestDatabase::kPassword, 0},
      {database.path(), L"Top secret", 3031},
      {database.path(), L"", 3031},
      {database.folder().Text("missing.pt"), L"", 3024},
      {database.folder().Text("missing") + L"/x.pt", L"", 3044},
      {text_file, L"", 3343},
  };
  for (const Case& c : cases) {
    Connection connection;
    EXPECT_EQ(ErrorNumber([&] { OpenConnection(connection, c.path, c.password); }), c.number)
        << testing::PrintToString(c.path);
    EXPECT_EQ(connection.IsOpen(), c.number == 0);
  }

  Connection connection;
  EXPECT_EQ(ErrorNumber([&] { connection.Open(); }), 3706);
  EXPECT_EQ(ErrorNumber([&] { connection.Properties[L"Data Sauce"]; }), 3265);
  OpenConnection(connection, database.path());
  EXPECT_EQ(ErrorNumber([&] { connection.Open(); }), 3705);
}

TEST(ConnectionTest, TheFileIsHeldUntilItsLastConnectionCloses) {
  TestDatabase database;
  EXPECT_FALSE(IsFree(database.path()));
  {
    Connection second;
    EXPECT_EQ(ErrorNumber([&] { OpenConnection(second, database.path(), L"guess"); }), 3031);
    OpenConnection(second, database.folder().Text("./product.pt"));
    const auto engine =
        DBEngine().OpenDatabase(database.path(), false, false, L"MS Access;PWD=top secret");
    database.connection().Close();
    EXPECT_FALSE(IsFree(database.path()));
    engine->Close();
    EXPECT_EQ(ErrorNumber([&] { engine->TableDefs(); }), 3704);
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
      EXPECT_EQ(ErrorNumber(use), 3704);
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
  const auto engine = DBEngine().OpenDatabase(database.path(), false, false, L";pwd=top secret");
  engine->AppendRelation({.Name = L"SerieArticle",
                          .Table = L"Serie",
                          .ForeignTable = L"Article",
                          .Fields = {{L"SerieNr", L"fkSerie"}}});
  database.Add(L"Serie", {{L"SerieCode", L"S"}});
  database.Add(L"Article", {{L"Code", L"A"}, {L"fkSerie", 1}});
  EXPECT_EQ(ErrorNumber([&] {
              database.Add(L"Article", {{L"Code", L"B"}, {L"fkSerie", 2}});
            }),
            3201);
  Recordset series;
  series.Open(L"Serie", database.connection(), CursorType::kDynamic, LockType::kOptimistic);
  EXPECT_EQ(ErrorNumber([&] { series.Delete(); }), 3200);
}

TEST(DatabaseEngineTest, CreatingAndConnectTexts) {
  TestDatabase database;
  EXPECT_EQ(ErrorNumber([&] { DBEngine().CreateDatabase(database.path()); }), 3204);
  EXPECT_EQ(ErrorNumber([&] { DBEngine().OpenDatabase(database.path(), false, false, L"x;"); }),
            3170);
  EXPECT_EQ(ErrorNumber([&] { DBEngine().OpenDatabase(database.path()); }), 3031);
  const std::wstring encoded = database.folder().Text("encoded.pt");
  DBEngine().CreateDatabase(encoded, L";pwd=x", true);
  EXPECT_EQ(ErrorNumber([&] { DBEngine().OpenDatabase(encoded, false, false, L";PWD=x"); }), 0);
}

}  // namespace
}  // namespace database
