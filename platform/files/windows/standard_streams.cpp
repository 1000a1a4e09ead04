// The run-time library keeps the streams' places taken here, also for programs that get no streams.
#include "platform/files/standard_streams.h"

namespace files {

void ReserveStandardStreams() {}

}  // namespace files
