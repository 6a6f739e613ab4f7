// What a tick costs and what it compares, on a machine whose timer this test turns by hand.
#include <gtest/gtest.h>

#include <cstdint>

#include "device/device_manager.h"
#include "tests/device/manual_machine.h"
#include "tests/foundation/allocations.h"

namespace kelvaro {
namespace {

using platform::DIJOYSTATE2;

struct TickCost : testing::Test {
  TickCost() : manager(platform::kNoWindow) {
    manager.SetPollCallback([](DeviceManager*, const DIJOYSTATE2*,
                               void* context) { ++*static_cast<std::uint32_t*>(context); },
                            &polls);
    manager.EnablePollCallback();
    selected = manager.SelectDevice(0);
    machine.Tick();  // the first state is a change
    machine.eventsSet = 0;
    polls = 0;
  }

  test::ManualMachine machine;
  DeviceManager manager;
  std::uint32_t polls = 0;
  bool selected = false;
};

TEST_F(TickCost, AQuietTickAllocatesNothing) {
  ASSERT_TRUE(selected);
  const std::uint64_t before = Allocations();
  for (int i = 0; i < 1000; ++i) machine.Tick();
  EXPECT_EQ(Allocations() - before, 0u);
  EXPECT_EQ(polls, 1000u);
  EXPECT_EQ(machine.eventsSet, 0u);
}

TEST_F(TickCost, ATickWithAChangeAllocatesNothing) {
  ASSERT_TRUE(selected);
  const std::uint64_t before = Allocations();
  for (int i = 0; i < 1000; ++i) {
    machine.state.lX = i + 1;
    machine.Tick();
  }
  EXPECT_EQ(Allocations() - before, 0u);
  EXPECT_EQ(polls, 1000u);
  EXPECT_EQ(machine.eventsSet, 1000u);
}

TEST_F(TickCost, EachOfThe272BytesCountsInTheComparison) {
  ASSERT_TRUE(selected);
  for (std::size_t i = 0; i < sizeof(DIJOYSTATE2); ++i) {
    machine.eventsSet = 0;
    reinterpret_cast<unsigned char*>(&machine.state)[i] ^= 1;
    machine.Tick();
    EXPECT_EQ(machine.eventsSet, 1u) << "byte " << i;
    machine.Tick();
    machine.Tick();
    EXPECT_EQ(machine.eventsSet, 1u) << "byte " << i << ", unchanged since";
  }
}

TEST_F(TickCost, AChangeBackIsAChangeToo) {
  ASSERT_TRUE(selected);
  for (int i = 0; i < 4; ++i) {
    machine.state.rgbButtons[127] ^= 0x80;
    machine.Tick();
  }
  EXPECT_EQ(machine.eventsSet, 4u);
}

TEST_F(TickCost, DeliveredAnewAnyStateIsAChange) {
  ASSERT_TRUE(selected);
  for (std::uint32_t i = 1; i <= 4; ++i) {
    manager.DeliverAnew();
    machine.Tick();
    EXPECT_EQ(machine.eventsSet, i);
  }
}

// The lock would let its owner in again; a period is lost all the same.
TEST_F(TickCost, ATickGivesUpEvenWhereItsOwnThreadHoldsTheLock) {
  ASSERT_TRUE(selected);
  {
    LockGuard guard(manager.deviceLock);
    machine.Tick();
  }
  EXPECT_EQ(polls, 0u);
  machine.Tick();
  EXPECT_EQ(polls, 1u);
}

TEST_F(TickCost, ADispatchThatComesAfterTheTimerFellAsleepWakesIt) {
  ASSERT_TRUE(selected);
  manager.SetPollCallback(
      [](DeviceManager* device, const DIJOYSTATE2*, void*) { device->NothingUntilChange(); },
      nullptr);
  manager.SetChangeCallback([](DeviceManager*, const DIJOYSTATE2*, void*) {}, nullptr);
  manager.EnableChangeCallback();
  machine.state.rgbButtons[0] = 0x80;
  machine.Tick();
  EXPECT_EQ(machine.rests, 0u);
  machine.Tick();
  EXPECT_EQ(machine.rests, 1u);
  machine.wakes = 0;
  machine.Notify();
  EXPECT_EQ(machine.wakes, 1u);
}

TEST_F(TickCost, ATickReleasesTheLock) {
  ASSERT_TRUE(selected);
  machine.Tick();
  EXPECT_FALSE(manager.deviceLock.IsTaken());
  EXPECT_EQ(manager.deviceLock.Owner(), -1);
}

TEST_F(TickCost, ATickThatComesAfterTheDeviceWentAwayDoesNothing) {
  ASSERT_TRUE(selected);
  manager.StopDevice();
  machine.Tick();
  EXPECT_EQ(polls, 0u);
  EXPECT_FALSE(manager.deviceLock.IsTaken());
}

// A timer whose first ticks come before it has told its number.
struct EarlyTicks final : test::ManualMachine {
  std::uint32_t timeSetEvent(std::uint32_t interval, std::uint32_t resolution,
                             platform::TimerCallback timerCallback, void* timerUser,
                             std::uint32_t flags) override {
    const std::uint32_t id =
        ManualMachine::timeSetEvent(interval, resolution, timerCallback, timerUser, flags);
    Tick();
    Tick();
    return id;
  }
};

TEST(EarlyTicks, ATimerThatFellAsleepBeforeItsNumberWasKnownIsWoken) {
  EarlyTicks machine;
  DeviceManager manager(platform::kNoWindow);
  ASSERT_TRUE(manager.SelectDevice(0));
  EXPECT_EQ(machine.rests, 1u);
  EXPECT_EQ(machine.wakes, 1u);
}

// Construction gives up DirectInput when the list can't be made in full, but what was listed by
// then stays.
TEST(CutShortList, NoDeviceOfItCanBeSelected) {
  test::ManualMachine machine;
  machine.enumDevicesResult = platform::DIERR_NOTINITIALIZED;
  DeviceManager manager(platform::kNoWindow);
  EXPECT_FALSE(manager.DirectInputCreated());
  EXPECT_EQ(manager.DeviceCount(), 1);
  EXPECT_FALSE(manager.SelectDevice(0));
  EXPECT_FALSE(manager.SelectDeviceByName("Pad"));
  EXPECT_FALSE(manager.DeviceSelected());
}

}  // namespace
}  // namespace kelvaro
