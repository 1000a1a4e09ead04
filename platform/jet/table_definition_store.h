// A table's definition where it lies: a chain of pages, joined for reading and laid out for
// writing.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/jet/pager.h"
#include "platform/jet/table_definition.h"
#include "platform/jet/usage_map.h"

namespace jet {

// The definition that begins on a page. kDamaged for a page that begins none, a chain that is
// circular, too long or too short; and what ParseTableDefinition throws.
TableDefinition ReadTableDefinition(const Pager& pager, PageNumber page);

// The pages of a definition, the first one first. kDamaged as above.
std::vector<PageNumber> TableDefinitionPages(const Pager& pager, PageNumber page);

// What follows changes pages and needs a transaction.

// Writes the definition to its page, which never changes, and to newly taken further pages as
// needed; gives the old further pages back. So a definition changes with the write of its first
// page. For a new table `definition.page` is a page just taken.
void WriteTableDefinition(Pager& pager, PageAllocator& allocator,
                          const TableDefinition& definition);

// Counters in place, without a look at the rest of the definition.
void PatchRowCount(Pager& pager, PageNumber page, std::uint32_t rows);
void PatchLastAutonumber(Pager& pager, PageNumber page, std::int32_t last);
void PatchDistinctCount(Pager& pager, PageNumber page, std::size_t physical_index,
                        std::uint32_t keys);

}  // namespace jet
