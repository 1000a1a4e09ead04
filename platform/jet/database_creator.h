// A new, empty database file, made from nothing.
#pragma once

#include <filesystem>

#include "platform/jet/database.h"

namespace jet {

// Writes page 1, with the maps of free and of released pages of a new file. REQUIRES a transaction.
void WriteGlobalMaps(Pager& pager);

// Puts an empty database into a page store without pages.
void CreateDatabase(std::unique_ptr<PageStore> store, const CreateOptions& options);

// Makes the file in a temporary one beside `path` and gives it its name when it is complete; a file
// that is there already is never replaced. kDatabaseExists, and what OpenPageStore throws.
void CreateDatabaseFile(const std::filesystem::path& path, const CreateOptions& options);

}  // namespace jet
