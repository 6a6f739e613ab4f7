// Clock and input for a replay that Ctrl-C is to end. A replay itself can't be stopped: so once a
// signal has come its waits end at once and what it sends goes nowhere, which brings it to its end.
#pragma once

#include <vector>

#include "app/platform/clock.h"
#include "app/platform/input.h"
#include "console/stop_signals.h"

namespace kelvaro::console {

// For one thread, the one that made `signals`. All three must outlive this.
class StoppableReplay final : public platform::Clock, public platform::Input {
 public:
  StoppableReplay(platform::Clock& clock, platform::Input& target, StopSignals& signals)
      : clock(clock), target(target), signals(signals) {}

  void Sleep(std::uint32_t ms) override;
  std::uint32_t GetTickCount() override { return clock.GetTickCount(); }
  void keybd_event(std::uint8_t vk, std::uint8_t scan, std::uint32_t flags,
                   std::uint32_t extra) override;
  void mouse_event(std::uint32_t flags, std::int32_t dx, std::int32_t dy, std::int32_t data,
                   std::uint32_t extra) override;

  // Sends the release of every key and mouse button that is down, in the order of the presses.
  void LetGo();

 private:
  struct Press {
    bool isKey;
    std::uint8_t vk, scan;
    std::uint32_t upFlags;
    bool operator==(const Press& other) const = default;
  };

  void Note(const Press& press, bool isDown);

  platform::Clock& clock;
  platform::Input& target;
  StopSignals& signals;
  std::vector<Press> down;
};

}  // namespace kelvaro::console
