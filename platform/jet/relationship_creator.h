// Relationships between tables: making one, and listing those the catalog has.
#pragma once

#include <vector>

#include "platform/jet/database_impl.h"
#include "platform/jet/schema.h"
#include "platform/jet/table_impl.h"

namespace jet {

// Makes a relationship between two open tables as part of the transaction in progress. Both may be
// the same. kBadName, kObjectExists, kObjectNotFound (a column; or no unique index on the
// referenced ones), kTypeMismatch (column), kTooManyIndexes, kNoParentRow, kNotSupported.
void CreateRelationship(Database::Impl& database, Table::Impl& child, Table::Impl& parent,
                        const RelationshipSpec& spec);

// All relationships, in the order of the catalog.
std::vector<RelationshipSpec> ReadRelationships(Database::Impl& database);

}  // namespace jet
