// The yardstick: the work of importing articles and prices, done with SQLite.
#pragma once

#include <cstddef>
#include <filesystem>

namespace bench {

enum class SqliteCommit { kEachRecord, kOnceForAll };

// Makes a database of the product table's shape at `path` (unique index on the article code,
// indexes on the foreign keys, synchronous=OFF), then adds `articles` articles, each looked up by
// its code first and given a dimension row, and a price for each, looked up likewise. A record is
// an article with its dimensions, or a price. Only the records are timed. Returns seconds; throws
// std::runtime_error with SQLite's text.
double ImportWithSqlite(const std::filesystem::path& path, std::size_t articles,
                        SqliteCommit commit);

}  // namespace bench
