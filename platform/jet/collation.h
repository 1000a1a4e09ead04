// Which order of text keys a collation means.
#pragma once

#include "platform/jet/table_definition.h"

namespace jet {

enum class KeyOrder {
  kUnknown,        // an order whose weights this engine does not have
  kGeneral,        // General (legacy)
  kFrench,         // General with the accents compared from the end of the text
  kSpanishModern,  // General with n tilde as a letter of its own
};

// Measured for each language id that is listed; never guessed from a relative's order.
KeyOrder KeyOrderOf(const Collation& collation);

}  // namespace jet
