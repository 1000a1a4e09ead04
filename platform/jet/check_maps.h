// The part of a file check that reads usage maps: what they hold, and where they lie.
#pragma once

#include <string_view>
#include <vector>

#include "platform/jet/check_state.h"

namespace jet::check {

// The pages of a map that lie in the file, ascending; claims what the map itself occupies. Empty,
// with a problem of `where`, when the map cannot be read. Pages behind the end are a problem, too.
std::vector<PageNumber> ReadMap(State& state, RowPointer at, std::string_view where);

// The pages of a pair of maps, claimed for `where`; a problem when a page with room is not owned.
std::vector<PageNumber> ClaimPages(State& state, RowPointer owned, RowPointer with_room,
                                   std::string_view where);

// The maps of free and released pages, once everything else has claimed its pages.
void CheckGlobalMaps(State& state);

// The stored free bytes of a data page, its slots and its type. Throws kDamaged.
void CheckDataPage(ByteView page, PageNumber owner);

}  // namespace jet::check
