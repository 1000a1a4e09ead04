// paptool serve: left out here, where the library for it is not at hand.
#include "tools/paptool/commands.h"

namespace paptool {

void AddServeCommand(CLI::App& /*app*/, Work& /*work*/) {}

}  // namespace paptool
