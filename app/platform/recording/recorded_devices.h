// One game device that plays a recording, as the whole of the attached devices, against any clock:
// the real one when a recording is replayed with real output. Its changes are timed from the first
// Acquire. The device may be polled on another thread than the one that selects it.
#pragma once

#include <cstdint>

#include "app/platform/clock.h"
#include "app/platform/recording/device_directory.h"
#include "app/platform/recording/recording.h"

namespace platform {

class RecordedDevices final : public DeviceDirectory {
 public:
  // `clock` outlives this. It is asked for GetTickCount on whatever thread uses the device; its
  // wrap does no harm if the device is polled at least once in 49 days.
  RecordedDevices(const Recording& recording, Clock& clock);

  // The device itself, to be changed beside what it plays.
  SimulatedDevice& Device() { return device; }

 private:
  std::uint64_t Now();

  Clock& clock;
  std::uint32_t lastTick;
  std::uint64_t elapsed = 0;
  SimulatedDevice& device;
};

}  // namespace platform
