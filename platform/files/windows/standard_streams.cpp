// Files are opened by handles here, which never take a standard stream's place.
#include "platform/files/standard_streams.h"

namespace files {

void ReserveStandardStreams() {}

}  // namespace files
