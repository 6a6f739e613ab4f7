// Polling that sleeps, on a real timer: another thread changes what the device says and what the
// poll callback goes by, at any moment of the timer falling asleep, and each change is seen without
// another one to push it.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <random>
#include <thread>

#include "app/platform/machine/this_machine.h"
#include "device/device_manager.h"
#include "tests/device/one_pad.h"
#include "tests/host/patience.h"
#include "tests/platform/news.h"

namespace kelvaro {
namespace {

using platform::DIJOYSTATE2;

// Its state is the number of the last report.
struct ReportingPad : test::OnePad {
  platform::News news;
  std::int32_t seen = 0;
  std::atomic<std::uint32_t> polls{0};

  void Report() { news.Report(); }

  platform::HRESULT Poll() override {
    ++polls;
    seen += news.Take();
    return platform::DI_OK;
  }
  platform::HRESULT GetDeviceState(std::uint32_t, DIJOYSTATE2* state) override {
    *state = {};
    state->lX = seen;
    return platform::DI_OK;
  }
  std::optional<platform::Handle> WaitForNews() override { return news.Get(); }
};

struct RestThreads : testing::Test {
  RestThreads() {
    manager.SetPollCallback(
        [](DeviceManager* device, const DIJOYSTATE2*, void* context) {
          auto* self = static_cast<RestThreads*>(context);
          self->followed = self->wanted.load();
          // Long enough for a change to come between the look and the sleep.
          std::this_thread::sleep_for(std::chrono::microseconds(200));
          device->NothingUntilChange();
        },
        this);
    manager.SetChangeCallback(
        [](DeviceManager*, const DIJOYSTATE2* state, void* context) {
          static_cast<RestThreads*>(context)->delivered = state->lX;
        },
        this);
    manager.EnablePollCallback();
    manager.EnableChangeCallback();
    manager.SetPollInterval(1);
  }
  ~RestThreads() override { manager.StopDevice(); }

  platform::Platform Groups() {
    platform::Platform groups = machine.Groups();
    groups.devices = &pad;
    return groups;
  }
  // Up to two periods, so that it meets each moment of a tick and of the sleep after it.
  void PassALittle() { std::this_thread::sleep_for(std::chrono::microseconds(random() % 2000)); }

  static bool Soon(const std::function<bool()>& holds) {
    return tests::Eventually(holds, tests::patience, std::chrono::milliseconds(1));
  }

  platform::ThisMachine machine;
  ReportingPad pad;
  platform::InstalledPlatform installed{Groups()};
  DeviceManager manager{0};
  std::mt19937 random{1};
  std::atomic<int> wanted{0};    // what the poll callback goes by
  std::atomic<int> followed{0};  // as it saw it last
  std::atomic<std::int32_t> delivered{0};
};

TEST_F(RestThreads, EachReportIsDeliveredWhicheverMomentItComesAt) {
  for (const bool atOnce : {false, true}) {
    manager.SetAnswerAtOnce(atOnce);
    ASSERT_TRUE(manager.SelectDevice(0));
    for (int i = 0; i < 200; ++i) {
      PassALittle();
      pad.Report();
      const int reports = i + 1 + (atOnce ? 200 : 0);
      ASSERT_TRUE(Soon([&] { return delivered == reports; })) << reports;
    }
  }
}

TEST_F(RestThreads, WakeIsNeverLost) {
  ASSERT_TRUE(manager.SelectDevice(0));
  for (int i = 1; i <= 400; ++i) {
    PassALittle();
    wanted = i;
    manager.Wake();
    ASSERT_TRUE(Soon([&] { return followed == i; })) << i;
  }
}

TEST_F(RestThreads, NothingIsPolledMeanwhile) {
  ASSERT_TRUE(manager.SelectDevice(0));
  ASSERT_TRUE(Soon([&] { return pad.polls >= 1; }));
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  // The end of the selection wakes a timer that sleeps already.
  EXPECT_LE(pad.polls, 2u);
}

}  // namespace
}  // namespace kelvaro
