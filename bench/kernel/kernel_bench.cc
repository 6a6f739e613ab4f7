// What the real programs cost on a real kernel: the time from a pad's event to its key event,
// beside the least that any program can do; processor time and switches with the pad still and with
// the pointer moving; the evenness of the pointer; memory. The one without a window first, then the
// window.
//
// Made for a machine whose clock counts instructions, one a nanosecond (tests/kernel/vm --icount):
// the figures then say how much is done and don't depend on the host or its load.

#include <cstdio>

#include "bench/kernel/measure.h"

int main() {
  kelvaro::kernel::MeasurePresses();
  std::printf("\n");
  kelvaro::kernel::MeasureUse();
  return 0;
}
