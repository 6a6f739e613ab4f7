// An hour of busy play on the simulated machine: a platform game's profile with the pointer on,
// polled every 5 ms, and a pad on which something changes every 5 to 40 ms. The events are counted
// and go nowhere.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>

#include "app/platform/simulation/simulation.h"
#include "console/engine_session.h"
#include "console/profile_json.h"

namespace kelvaro::console {
namespace {

using platform::AxisName;
using platform::StateChange;
using platform::simulation::Simulation;

constexpr std::uint64_t kHour = 60 * 60 * 1000;  // ms

constexpr char kProfile[] = R"({
  "pollInterval": 5,
  "mouse": {"movementSensitivity": 10, "movementDamper": 15, "mouseX": {"kind": 3, "index": 0},
            "mouseY": {"kind": 4, "index": 0}, "leftButton": 6, "leftMask": "0x40",
            "mouseAlwaysActive": true},
  "controls": [
    {"triggerItems": [{"kind": 0, "index": 0, "value": 1}], "actions": [{"text": "<Left>"}]},
    {"triggerItems": [{"kind": 0, "index": 0, "value": 2}], "actions": [{"text": "<Right>"}]},
    {"triggerItems": [{"kind": 8, "index": 0, "value": 1}], "actions": [{"text": "<Left>"}]},
    {"triggerItems": [{"kind": 8, "index": 0, "value": 4}], "actions": [{"text": "<Right>"}]},
    {"triggerItems": [{"kind": 8, "index": 0, "value": 2}], "actions": [{"text": "<Up>"}]},
    {"triggerItems": [{"kind": 8, "index": 0, "value": 8}], "actions": [{"text": "<Down>"}]},
    {"buttonMask": "0x1", "actions": [{"text": "<Space>"}]},
    {"buttonMask": "0x2", "actions": [{"text": "<LShift>"}]},
    {"buttonMask": "0x3", "actions": [{"actionFlags": 1, "text": "<LShift><Space>"}]},
    {"buttonMask": "0x4", "repeatEnabled": true, "repeatDelay": 300, "repeatSpeed": 100,
     "keyHoldTime": 30, "actions": [{"text": "x"}]},
    {"buttonMask": "0x80", "activateOnPress": false, "keyHoldTime": 40, "keyReleasePause": 20,
     "actions": [{"text": "<F5><P:200>y"}]}
  ]
})";

// The same for the same seed on every machine: distributions of the library differ, its engine
// doesn't.
class Player {
 public:
  explicit Player(std::uint32_t seed) : random(seed) {}

  StateChange Next() {
    StateChange change;
    change.t = t += 5 + random() % 36;
    switch (random() % 4) {
      case 0:
        held ^= 1u << random() % 10;
        change.hasButtons = true;
        for (std::uint32_t button = 0; button < 10; ++button) {
          if (held >> button & 1) change.buttons.push_back(button + 1);
        }
        break;
      case 1:
        change.povs.emplace_back(0, random() % 3 ? random() % 8 * 4500 : platform::kPovCentred);
        break;
      default:
        const AxisName axis{static_cast<std::uint16_t>(random() % 5), 0};
        change.axes.emplace_back(axis, static_cast<std::int32_t>(random() % 64001) - 32000);
        break;
    }
    return change;
  }

 private:
  std::mt19937 random;
  std::uint64_t t = 0;
  std::uint32_t held = 0;
};

std::vector<StateChange> HourOfPlay() {
  Player player(20240611);
  std::vector<StateChange> changes{player.Next()};
  while (changes.back().t < kHour) changes.push_back(player.Next());
  return changes;
}

void BM_HourOfBusyPlay(benchmark::State& state) {
  const std::vector<StateChange> changes = HourOfPlay();
  std::uint64_t events = 0;
  for (auto _ : state) {
    Profile profile;
    JsonFault fault;
    if (!ReadProfile(kProfile, &profile, &fault)) {
      state.SkipWithError(fault.Text("profile").c_str());
      return;
    }
    Simulation simulation;
    simulation.KeepEvents(false);
    events = 0;
    simulation.OnEvent([&events](const auto&) { ++events; });
    simulation.AddDevice({}).Play(changes);
    EngineSession session(profile);
    std::string error;
    if (!session.Begin({}, false, &error)) {
      state.SkipWithError(error.c_str());
      return;
    }
    simulation.RunFor(kHour);
    session.End();
  }
  state.counters["changes"] = static_cast<double>(changes.size());
  state.counters["events"] = static_cast<double>(events);
}
BENCHMARK(BM_HourOfBusyPlay)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kelvaro::console
