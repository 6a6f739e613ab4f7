#include "app/platform/recording/recorded_devices.h"

#include "app/platform/recording/device_directory.h"

namespace platform {

struct RecordedDevices::Player {
  Player(const Recording& recording, Clock& clock)
      : clock(clock),
        lastTick(clock.GetTickCount()),
        directory([this] { return Now(); }),
        device(directory.Add(recording.device)) {
    device.Play(recording.changes);
  }

  // Ticks since the start, unwrapped. The directory's guard is held.
  std::uint64_t Now() {
    const std::uint32_t tick = clock.GetTickCount();
    elapsed += static_cast<std::uint32_t>(tick - lastTick);
    lastTick = tick;
    return elapsed;
  }

  Clock& clock;
  std::uint32_t lastTick;
  std::uint64_t elapsed = 0;
  DeviceDirectory directory;
  SimulatedDevice& device;
};

RecordedDevices::RecordedDevices(const Recording& recording, Clock& clock)
    : player(std::make_unique<Player>(recording, clock)) {}

RecordedDevices::~RecordedDevices() = default;

HRESULT RecordedDevices::DirectInput8Create(std::uint32_t version, DirectInput** directInput) {
  return player->directory.DirectInput8Create(version, directInput);
}

SimulatedDevice& RecordedDevices::Device() { return player->device; }

}  // namespace platform
