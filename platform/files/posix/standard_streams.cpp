// A file gets the lowest descriptor that is free; what is printed goes to 1 and 2 whatever they
// are.
#include "platform/files/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <initializer_list>

namespace files {

void ReserveStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) == -1) static_cast<void>(open("/dev/null", O_RDWR));
  }
}

}  // namespace files
