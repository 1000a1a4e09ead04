// New indexes: their place in a table's definition, and their entries from the rows that are there.
#pragma once

#include "platform/jet/database_impl.h"
#include "platform/jet/schema.h"
#include "platform/jet/table_impl.h"

namespace jet {

namespace index_flags {
inline constexpr std::uint8_t kUnique = 0x01;
inline constexpr std::uint8_t kIgnoreNulls = 0x02;
inline constexpr std::uint8_t kRefuseNulls = 0x08;
inline constexpr std::uint8_t kAlways = 0x80;
}  // namespace index_flags

// Gives a new index its map and an empty tree. REQUIRES a transaction.
void AddTree(Database::Impl& database, PageNumber table, PhysicalIndex& index);

// Adds a physical index with an empty tree to a definition; returns its position.
// REQUIRES a transaction.
std::size_t AppendPhysicalIndex(Database::Impl& database, TableDefinition& definition,
                                std::vector<IndexColumn> columns, std::uint8_t flags);

// Adds a logical index; returns its number, one past the highest. kTooManyIndexes (`table` named),
// kObjectExists.
std::uint32_t AppendLogicalIndex(std::u16string_view table, TableDefinition& definition,
                                 LogicalIndex index);

// Adds what a caller asks for, without entries; returns the physical position. kBadName,
// kObjectNotFound (column), kObjectExists, kTooManyIndexes, kNotSupported.
std::size_t AppendIndex(Database::Impl& database, std::u16string_view table,
                        TableDefinition& definition, const IndexSpec& spec);

// Puts all rows of the open `table` into an index that `definition`, its next definition, has at
// this position, and counts its keys there. kDuplicateKey, kNullInKey (the index named).
void FillIndex(Database::Impl& database, const Table::Impl& table, TableDefinition& definition,
               std::size_t position);

// The whole change to an existing table.
void CreateIndex(Database::Impl& database, Table::Impl& table, const IndexSpec& spec);

}  // namespace jet
