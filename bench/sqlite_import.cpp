// The yardstick: the work of importing articles and prices, done with SQLite.
#include "bench/sqlite_import.h"

#include <sqlite3.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>

#include "bench/synthetic_update.h"

namespace bench {
namespace {

struct CloseDatabase {
  void operator()(sqlite3* database) const { sqlite3_close(database); }
};
using DatabasePtr = std::unique_ptr<sqlite3, CloseDatabase>;

void Check(sqlite3* database, int result) {
  if (result != SQLITE_OK && result != SQLITE_DONE && result != SQLITE_ROW)
    throw std::runtime_error(sqlite3_errmsg(database));
}

void Execute(sqlite3* database, const char* sql) {
  Check(database, sqlite3_exec(database, sql, nullptr, nullptr, nullptr));
}

class Statement {
 public:
  Statement(sqlite3* database, const char* sql) : database_(database) {
    sqlite3_stmt* statement = nullptr;
    Check(database, sqlite3_prepare_v2(database, sql, -1, &statement, nullptr));
    statement_.reset(statement);
  }

  Statement& Bind(int at, std::int64_t value) {
    Check(database_, sqlite3_bind_int64(statement_.get(), at, value));
    return *this;
  }
  Statement& Bind(int at, double value) {
    Check(database_, sqlite3_bind_double(statement_.get(), at, value));
    return *this;
  }
  Statement& Bind(int at, const std::string& value) {
    Check(database_, sqlite3_bind_text(statement_.get(), at, value.data(),
                                       static_cast<int>(value.size()), SQLITE_TRANSIENT));
    return *this;
  }

  // The first column of the first row, 0 when there is none; the statement can then run again.
  std::int64_t Run() {
    const int result = sqlite3_step(statement_.get());
    Check(database_, result);
    const std::int64_t value = result == SQLITE_ROW ? sqlite3_column_int64(statement_.get(), 0) : 0;
    Check(database_, sqlite3_reset(statement_.get()));
    return value;
  }

 private:
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  sqlite3* database_;
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

constexpr const char* kSchema = R"(
  PRAGMA synchronous = OFF;
  CREATE TABLE Article (ID INTEGER PRIMARY KEY, fkSerie INTEGER, Code TEXT, Description TEXT,
                        Description2 TEXT, Remark TEXT);
  CREATE UNIQUE INDEX ArticleCode ON Article (Code);
  CREATE INDEX ArticleSerie ON Article (fkSerie);
  CREATE TABLE ArtDimL (ID INTEGER PRIMARY KEY, Ht REAL, Wb REAL, Wu REAL, tfb REAL, tfu REAL,
                        tw REAL, Ri REAL, Ro REAL, S REAL, Snet REAL, Slope REAL);
  CREATE TABLE ArtPrice (fkSupplier INTEGER, fkArticle INTEGER, fkBPG INTEGER, fkDiscount INTEGER,
                         PriceDim REAL, OverPrice REAL, SawPrice REAL, BlastPrice REAL,
                         CoatPrice REAL, ArtNrSupplier TEXT);
  CREATE INDEX PriceArticle ON ArtPrice (fkArticle);
  CREATE INDEX PriceSupplier ON ArtPrice (fkSupplier);
)";

}  // namespace

double ImportWithSqlite(const std::filesystem::path& path, std::size_t articles,
                        SqliteCommit commit) {
  sqlite3* opened = nullptr;
  const int result = sqlite3_open(path.string().c_str(), &opened);
  const DatabasePtr database(opened);
  Check(database.get(), result);
  Execute(database.get(), kSchema);

  Statement find_article(database.get(), "SELECT ID FROM Article WHERE Code = ?1");
  Statement add_article(database.get(),
                        "INSERT INTO Article (fkSerie, Code, Description, Description2) "
                        "VALUES (?1, ?2, ?3, ?4)");
  Statement add_dimensions(
      database.get(), "INSERT INTO ArtDimL VALUES (?1, ?2, ?3, ?3, ?4, ?4, ?5, 0, 0, ?6, ?6, 0)");
  Statement find_price(database.get(),
                       "SELECT rowid FROM ArtPrice WHERE fkArticle = ?1 AND fkSupplier = 1");
  Statement add_price(database.get(),
                      "INSERT INTO ArtPrice VALUES (1, ?1, NULL, NULL, ?2, ?3, ?3, ?3, ?3, ?4)");

  const auto start = std::chrono::steady_clock::now();
  if (commit == SqliteCommit::kOnceForAll) Execute(database.get(), "BEGIN");
  for (std::size_t i = 0; i < articles; ++i) {
    const SyntheticArticle article = MakeArticle(i);
    if (commit == SqliteCommit::kEachRecord) Execute(database.get(), "BEGIN");
    if (find_article.Bind(1, article.code).Run() == 0) {
      add_article.Bind(1, std::int64_t{1})
          .Bind(2, article.code)
          .Bind(3, article.description)
          .Bind(4, article.description2)
          .Run();
      add_dimensions.Bind(1, std::int64_t{sqlite3_last_insert_rowid(database.get())})
          .Bind(2, article.height)
          .Bind(3, article.width)
          .Bind(4, article.flange)
          .Bind(5, article.web)
          .Bind(6, article.section)
          .Run();
    }
    if (commit == SqliteCommit::kEachRecord) Execute(database.get(), "COMMIT");
  }
  for (std::size_t i = 0; i < articles; ++i) {
    const SyntheticArticle article = MakeArticle(i);
    if (commit == SqliteCommit::kEachRecord) Execute(database.get(), "BEGIN");
    const std::int64_t id = find_article.Bind(1, article.code).Run();
    if (find_price.Bind(1, id).Run() == 0)
      add_price.Bind(1, id)
          .Bind(2, article.price)
          .Bind(3, article.surcharge)
          .Bind(4, article.supplier_number)
          .Run();
    if (commit == SqliteCommit::kEachRecord) Execute(database.get(), "COMMIT");
  }
  if (commit == SqliteCommit::kOnceForAll) Execute(database.get(), "COMMIT");
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace bench
