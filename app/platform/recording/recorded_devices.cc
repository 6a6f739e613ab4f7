#include "app/platform/recording/recorded_devices.h"

namespace platform {

RecordedDevices::RecordedDevices(const Recording& recording, Clock& clock)
    : DeviceDirectory([this] { return Now(); }),
      clock(clock),
      lastTick(clock.GetTickCount()),
      device(Add(recording.device)) {
  device.Play(recording.changes);
}

// Ticks since the start, unwrapped. The directory's guard is held.
std::uint64_t RecordedDevices::Now() {
  const std::uint32_t tick = clock.GetTickCount();
  elapsed += static_cast<std::uint32_t>(tick - lastTick);
  lastTick = tick;
  return elapsed;
}

}  // namespace platform
