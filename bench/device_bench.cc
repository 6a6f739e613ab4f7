// What one period of the poll costs beside the device itself, on a device in memory.
#include <benchmark/benchmark.h>

#include <cstdint>

#include "device/device_manager.h"
#include "tests/device/manual_machine.h"

namespace kelvaro {
namespace {

void CountPoll(DeviceManager*, const platform::DIJOYSTATE2* state, void* context) {
  benchmark::DoNotOptimize(state);
  ++*static_cast<std::uint64_t*>(context);
}

// Nothing has moved: poll, read, comparison, poll callback.
void QuietTick(benchmark::State& state) {
  test::ManualMachine machine;
  DeviceManager manager(platform::kNoWindow);
  std::uint64_t polls = 0;
  manager.SetPollCallback(&CountPoll, &polls);
  manager.EnablePollCallback();
  if (!manager.SelectDevice(0)) state.SkipWithError("no device");
  machine.Tick();
  for (auto _ : state) machine.Tick();
  if (machine.eventsSet != 1) state.SkipWithError("a quiet tick was a change");
}
BENCHMARK(QuietTick);

// An axis has moved: the same, the copy and the signal, without the thread that it wakes.
void ChangedTick(benchmark::State& state) {
  test::ManualMachine machine;
  DeviceManager manager(platform::kNoWindow);
  std::uint64_t polls = 0;
  manager.SetPollCallback(&CountPoll, &polls);
  manager.EnablePollCallback();
  if (!manager.SelectDevice(0)) state.SkipWithError("no device");
  for (auto _ : state) {
    machine.state.lX ^= 1;
    machine.Tick();
  }
  if (machine.eventsSet != polls) state.SkipWithError("a change went unnoticed");
}
BENCHMARK(ChangedTick);

}  // namespace
}  // namespace kelvaro
