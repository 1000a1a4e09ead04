// New tables: definition, maps, roots, properties, catalog rows.
#pragma once

#include "platform/jet/database_impl.h"
#include "platform/jet/schema.h"

namespace jet {

// Makes an empty table as part of the transaction in progress. kTableExists, kBadName,
// kObjectExists (a name twice), kObjectNotFound (an index column), kTooManyColumns,
// kTooManyIndexes, kTooLong, kOutOfRange, kRowTooLarge, kNotSupported.
void CreateTable(Database::Impl& database, const TableSpec& spec);

// Gives a new definition the maps of its rows and long values. REQUIRES a transaction.
void AddMaps(Database::Impl& database, TableDefinition& definition);

}  // namespace jet
