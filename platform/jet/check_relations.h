// The part of a file check that follows enforced relationships from table to table.
#pragma once

#include "platform/jet/check_state.h"

namespace jet::check {

// The ends of each enforced relationship name each other and agree, and every complete key of the
// referring table exists in the other.
void CheckRelations(State& state);

}  // namespace jet::check
