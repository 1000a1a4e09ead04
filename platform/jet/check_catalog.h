// The part of a file check that reads the catalog: which tables there are, rights, relationships.
#pragma once

#include "platform/jet/check_state.h"

namespace jet::check {

// Loads every table that the catalog lists, the catalog itself first. Returns false when the
// catalog cannot be read.
bool LoadCatalog(State& state);

// What catalog rows say of each other: owners, rights, properties, enforced relationships.
void CheckCatalog(State& state);

}  // namespace jet::check
