// The three streams that every program is started with.
#pragma once

namespace files {

// Fills the places of standard streams that whoever started the program has closed: the next file
// would take such a place, and messages would be written into it. Call it before any file is
// opened.
void ReserveStandardStreams();

}  // namespace files
