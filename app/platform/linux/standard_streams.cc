#include "app/platform/linux/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

namespace platform {

void OpenStandardStreams() {
  int lowest;
  do {
    lowest = open("/dev/null", O_RDWR);
  } while (lowest >= STDIN_FILENO && lowest <= STDERR_FILENO);
  if (lowest >= 0) close(lowest);
}

}  // namespace platform
