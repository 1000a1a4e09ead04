// Whether a file may be written to at all, beyond what opening it has shown.
#pragma once

#include <string>

#include "platform/jet/database_impl.h"

namespace jet {

// Why nothing can be written to the file, in one sentence part; "" when it can: a former writer was
// cut off, security ids that do not fit, rights taken from users, maps or system tables unlike
// those of every sound file, replication. Reads the maps of all tables: a page that one of them
// owns must not be offered as free.
std::string FindWriteRefusal(Database::Impl& database);

// Why the file's contents cannot be told whole, so that no copy may take its place; "" when they
// can: a former writer was cut off, system tables or maps unlike those of every sound file,
// replication. REQUIRES that all tables are open.
std::string FindCopyRefusal(Database::Impl& database);

}  // namespace jet
