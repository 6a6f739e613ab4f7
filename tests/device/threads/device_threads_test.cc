// The device manager on real threads, a real timer and the real clock, made to be run under the
// thread sanitizer. The device and the callbacks keep their counts in plain members on purpose:
// whatever deviceLock and StopDevice don't order shows up as a data race.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>

#include "app/platform/machine/this_machine.h"
#include "device/device_manager.h"
#include "tests/device/one_pad.h"
#include "tests/host/patience.h"

namespace kelvaro {
namespace {

using platform::DIJOYSTATE2;
using Time = std::chrono::steady_clock;

std::uint64_t MsSince(Time::time_point begin) {
  const auto passed = Time::now() - begin;
  return static_cast<std::uint64_t>(
      std::chrono::duration_cast<std::chrono::milliseconds>(passed).count());
}

// One device whose every third poll brings a new state: a number that stands in its first and its
// last field, so that a torn copy can be told. Every tenth poll finds it lost.
struct ScriptedDevices : test::OnePad {
  std::uint32_t polls = 0;
  std::uint32_t losses = 0;
  std::uint32_t acquires = 0;
  std::uint32_t releases = 0;
  std::int32_t sequence = 0;
  std::uint32_t lostTakes = 0;  // ms that an Acquire after a loss takes
  std::atomic<bool> inAcquire{false};
  bool releasedInside = false;

  platform::HRESULT Acquire() override {
    ++acquires;
    if (losses != 0 && lostTakes != 0) {
      inAcquire = true;
      platform::clock().Sleep(lostTakes);
      inAcquire = false;
    }
    return platform::DI_OK;
  }
  platform::HRESULT Poll() override {
    ++polls;
    if (polls % 10 == 0) {
      ++losses;
      return platform::DIERR_INPUTLOST;
    }
    if (polls % 3 == 0) ++sequence;
    return platform::DI_OK;
  }
  platform::HRESULT GetDeviceState(std::uint32_t, DIJOYSTATE2* state) override {
    *state = {};
    state->lX = sequence;
    state->rglFSlider[1] = sequence;
    return platform::DI_OK;
  }
  // Of the device and of the directory.
  void Release() override {
    if (inAcquire) releasedInside = true;
    ++releases;
  }
};

struct DeviceThreads : testing::Test {
  DeviceThreads() : installed(Groups()), manager(std::make_unique<DeviceManager>(0)) {}

  platform::Platform Groups() {
    platform::Platform groups = machine.Groups();
    groups.devices = &devices;
    return groups;
  }

  void Listen() {
    manager->SetPollCallback(
        [](DeviceManager*, const DIJOYSTATE2* state, void* context) {
          auto* self = static_cast<DeviceThreads*>(context);
          ++self->polls;
          Count(self->pollsSeen);
          self->pollThread = std::this_thread::get_id();
          if (state->lX != state->rglFSlider[1]) self->torn = true;
          if (self->inChange) self->overlapped = true;
          if (self->pollTakes) platform::clock().Sleep(self->pollTakes);
        },
        this);
    manager->SetChangeCallback(
        [](DeviceManager*, const DIJOYSTATE2* state, void* context) {
          auto* self = static_cast<DeviceThreads*>(context);
          self->inChange = true;
          ++self->changes;
          Count(self->changesSeen);
          self->changeThread = std::this_thread::get_id();
          if (state->lX != state->rglFSlider[1]) self->torn = true;
          if (state->lX < self->lastSequence) self->wentBack = true;
          self->lastSequence = state->lX;
          if (self->changeTakes) platform::clock().Sleep(self->changeTakes);
          self->inChange = false;
        },
        this);
    manager->EnablePollCallback();
    manager->EnableChangeCallback();
  }

  static void Pass(int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

  // Counts that order nothing, so that a look at them hides no race.
  using Seen = std::atomic<std::uint32_t>;
  static void Count(Seen& seen) { seen.fetch_add(1, std::memory_order_relaxed); }
  // Until there are so many more.
  static void Await(const Seen& seen, std::uint32_t more = 1) {
    const std::uint32_t before = seen.load(std::memory_order_relaxed);
    EXPECT_TRUE(
        tests::Eventually([&] { return seen.load(std::memory_order_relaxed) - before >= more; },
                          tests::patience, std::chrono::milliseconds(1)));
  }

  platform::ThisMachine machine;
  ScriptedDevices devices;
  platform::InstalledPlatform installed;
  std::unique_ptr<DeviceManager> manager;

  // Of the callbacks, and the test's again once the device has been stopped.
  std::uint32_t polls = 0;
  std::uint32_t changes = 0;
  Seen pollsSeen{0};
  Seen changesSeen{0};
  std::thread::id pollThread;
  std::thread::id changeThread;
  std::int32_t lastSequence = 0;
  std::uint32_t changeTakes = 0;  // ms
  std::uint32_t pollTakes = 0;    // ms
  bool torn = false;
  bool wentBack = false;
  bool inChange = false;
  bool overlapped = false;
};

TEST_F(DeviceThreads, EachPollReachesTheCallbacksOnThreadsOfTheirOwn) {
  Listen();
  ASSERT_TRUE(manager->SetPollInterval(1));
  const auto begin = Time::now();
  ASSERT_TRUE(manager->SelectDevice(0));
  Await(pollsSeen, 500);
  Await(changesSeen);
  manager->StopDevice();
  const std::uint64_t passed = MsSince(begin);

  // A busy machine leaves periods out and never makes up for them.
  EXPECT_LE(devices.polls, passed);
  EXPECT_EQ(polls, devices.polls - devices.losses);
  EXPECT_EQ(devices.acquires, 1 + devices.losses);
  EXPECT_LE(changes, static_cast<std::uint32_t>(devices.sequence));
  EXPECT_FALSE(torn);
  EXPECT_FALSE(wentBack);
  EXPECT_FALSE(overlapped);
  EXPECT_NE(pollThread, changeThread);
  EXPECT_NE(pollThread, std::this_thread::get_id());
  EXPECT_NE(changeThread, std::this_thread::get_id());
}

TEST_F(DeviceThreads, NothingRunsAfterStopDevice) {
  Listen();
  ASSERT_TRUE(manager->SetPollInterval(1));
  ASSERT_TRUE(manager->SelectDevice(0));
  Await(changesSeen, 5);
  manager->StopDevice();
  EXPECT_EQ(devices.releases, 1u);
  const std::uint32_t before = devices.polls;
  const std::uint32_t changesBefore = changes;
  Pass(100);
  EXPECT_EQ(devices.polls, before);
  EXPECT_EQ(changes, changesBefore);
  EXPECT_FALSE(manager->deviceLock.IsTaken());
}

TEST_F(DeviceThreads, ReselectionAtChangingIntervalsLeavesNothingBehind) {
  Listen();
  for (const std::uint32_t interval : {1u, 2u, 5u, 3u, 1u}) {
    ASSERT_TRUE(manager->SetPollInterval(interval));
    ASSERT_TRUE(manager->SelectDevice(0));
    Await(changesSeen, 5);
    // The new interval counts from the next selection; the timer doesn't notice.
    ASSERT_TRUE(manager->SetPollInterval(interval + 1));
    Await(pollsSeen, 5);
    ASSERT_TRUE(manager->ReselectDevice());
    Await(changesSeen, 5);
    EXPECT_TRUE(manager->DeviceSelected());
  }
  manager->StopDevice();
  EXPECT_EQ(devices.releases, 10u);
  EXPECT_FALSE(torn);
  EXPECT_FALSE(overlapped);
}

TEST_F(DeviceThreads, CallbacksAreSetAndEnabledWhilePollingRuns) {
  ASSERT_TRUE(manager->SetPollInterval(1));
  ASSERT_TRUE(manager->SelectDevice(0));
  for (int i = 0; i < 20; ++i) {
    Listen();
    Await(pollsSeen);
    manager->SetPollCallback(nullptr, nullptr);
    manager->SetChangeCallback(nullptr, nullptr);
    Pass(2);
  }
  manager->StopDevice();
  EXPECT_FALSE(torn);
}

TEST_F(DeviceThreads, NoPollFallsIntoALongCallback) {
  changeTakes = 50;
  Listen();
  ASSERT_TRUE(manager->SetPollInterval(1));
  const auto begin = Time::now();
  ASSERT_TRUE(manager->SelectDevice(0));
  Await(changesSeen, 5);
  manager->StopDevice();
  EXPECT_FALSE(overlapped);
  EXPECT_FALSE(inChange);
  EXPECT_LE(changes * 50, MsSince(begin));
  EXPECT_FALSE(torn);
}

TEST_F(DeviceThreads, ATickThatIsStillRunningEndsBeforeTheDeviceGoes) {
  pollTakes = 50;
  Listen();
  ASSERT_TRUE(manager->SetPollInterval(1));
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(manager->SelectDevice(0));
    Await(pollsSeen);
  }
  manager->StopDevice();
  EXPECT_EQ(devices.releases, 3u);
  EXPECT_EQ(polls, devices.polls - devices.losses);
  EXPECT_FALSE(torn);
}

// However long it takes: also longer than the pause of a stop.
TEST_F(DeviceThreads, ATickThatTriesToGetTheDeviceBackEndsBeforeTheDeviceGoes) {
  devices.lostTakes = 400;
  Listen();
  ASSERT_TRUE(manager->SetPollInterval(1));
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(manager->SelectDevice(0));
    while (!devices.inAcquire) Pass(1);
    manager->StopDevice();
    EXPECT_FALSE(devices.inAcquire);
    devices.losses = 0;
  }
  EXPECT_FALSE(devices.releasedInside);
  EXPECT_EQ(devices.releases, 3u);
}

TEST_F(DeviceThreads, AChangeCallbackMayAskForTheSelectionFromItsFirstCallOn) {
  struct Asked {
    Seen calls{0};
    std::uint32_t unlike = 0;
  } asked;
  manager->SetChangeCallback(
      [](DeviceManager* device, const DIJOYSTATE2*, void* context) {
        auto* seen = static_cast<Asked*>(context);
        Count(seen->calls);
        if (!device->DeviceSelected() || !device->SelectedName().Equals("Pad") ||
            device->PollInterval() < 1 || device->PollInterval() > 5) {
          ++seen->unlike;
        }
      },
      &asked);
  manager->EnableChangeCallback();
  ASSERT_TRUE(manager->SetPollInterval(1));
  for (int i = 0; i < 5; ++i) {
    ASSERT_TRUE(manager->SelectDevice(0));
    for (std::uint32_t interval = 5; interval >= 1; --interval) {
      Await(asked.calls);
      ASSERT_TRUE(manager->SetPollInterval(interval));
    }
  }
  manager->StopDevice();
  EXPECT_EQ(asked.unlike, 0u);
}

TEST_F(DeviceThreads, AManagerMayGoWhilePollingRuns) {
  Listen();
  ASSERT_TRUE(manager->SetPollInterval(1));
  ASSERT_TRUE(manager->SelectDevice(0));
  Await(changesSeen, 5);
  manager.reset();
  EXPECT_EQ(devices.releases, 2u);  // the device and the directory
  const std::uint32_t before = devices.polls;
  Pass(50);
  EXPECT_EQ(devices.polls, before);
}

}  // namespace
}  // namespace kelvaro
