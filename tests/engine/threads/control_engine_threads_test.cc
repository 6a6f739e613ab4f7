// The engine with all its threads for real: timer, notification, repeat worker, and this one as the
// user interface, on a pad that is never at rest. What each does is checked elsewhere; here they
// meet.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>

#include "app/platform/clock.h"
#include "app/platform/machine/this_machine.h"
#include "device/device_manager.h"
#include "engine/control_engine.h"
#include "tests/device/one_pad.h"
#include "tests/host/patience.h"

namespace kelvaro {
namespace {

// Holds another set of buttons and axes at each poll. Touched by the timer's thread only.
class RestlessPad : public test::OnePad {
 public:
  platform::HRESULT Poll() override {
    seed = seed * 1664525u + 1013904223u;
    return platform::DI_OK;
  }
  platform::HRESULT GetDeviceState(std::uint32_t, DIJOYSTATE2* state) override {
    *state = test::AtRest();
    state->lX = static_cast<std::int32_t>(seed >> 8) % 32000;
    state->lY = static_cast<std::int32_t>(seed >> 12) % 32000;
    for (int n = 0; n < 4; ++n) state->rgbButtons[n] = (seed >> (20 + n) & 1) != 0 ? 0x80 : 0;
    return platform::DI_OK;
  }

 private:
  std::uint32_t seed = 1;
};

// How often each mouse button went down and up.
class CountingInput : public platform::Input {
 public:
  void keybd_event(std::uint8_t, std::uint8_t, std::uint32_t, std::uint32_t) override {}
  void mouse_event(std::uint32_t flags, std::int32_t, std::int32_t, std::int32_t,
                   std::uint32_t) override {
    if (flags & platform::MOUSEEVENTF_MOVE) ++moves;
    if (flags & platform::MOUSEEVENTF_LEFTDOWN) ++leftHeld;
    if (flags & platform::MOUSEEVENTF_LEFTUP) --leftHeld;
  }
  std::atomic<int> moves{0};
  std::atomic<int> leftHeld{0};
};

class CountingAction : public InputAction {
 public:
  explicit CountingAction(std::uint32_t pressMs) : pressMs(pressMs) { actionType = kKeyAction; }
  bool Replay(std::uint8_t, std::uint32_t, std::uint32_t) override {
    ++presses;
    ++held;
    if (pressMs != 0) platform::clock().Sleep(pressMs);
    return true;
  }
  bool Release() override {
    --held;
    return true;
  }
  std::atomic<int> presses{0};
  std::atomic<int> held{0};

 private:
  const std::uint32_t pressMs;
};

class QuietHost : public EngineHost {
 public:
  bool ControlDialogOpen() const override { return dialogOpen; }
  void ShowDetectedTrigger(const DeviceManager&, const DeviceSnapshot&) override { ++triggers; }
  void ShowDetectedInput(MouseRole, const ByteString&) override { ++inputs; }
  void MouseDetectionEnded(MouseRole) override { ++ended; }
  void SaveAfterMouseDetection() override {
    // What a real one would do under mouseLock alone.
    saved += settings->movementSensitivity + settings->leftButton;
    saved += static_cast<TriggerItem>(settings->mouseX).kind;
  }

  Relaxed<bool> dialogOpen{false};
  const MouseSettings* settings = nullptr;
  std::atomic<int> triggers{0}, inputs{0}, ended{0}, saved{0};
};

class RealThreads : public ::testing::Test {
 protected:
  platform::Platform Groups() {
    platform::Platform groups = machine.Groups();
    groups.devices = &pad;
    groups.input = &input;
    return groups;
  }

  platform::ThisMachine machine;
  RestlessPad pad;
  CountingInput input;
  platform::InstalledPlatform installed{Groups()};
};

// What owns what, and in which order it goes.
struct Session {
  Session() {
    host.settings = &profile;
    for (int n = 0; n < 4; ++n) {
      profile.controls.AddTail({});
      Control& made = *profile.controls.tail->value;
      made.SetButtonMask(std::uint64_t{1} << n);
      made.repeatEnabled = n == 3;
      made.repeatDelay = 1;
      made.repeatSpeed = 1;
      actions[n] = new CountingAction(n == 2 ? 2 : 0);
      made.actions.AddTail(actions[n]);
    }
    profile.RebuildDispatchList();
    profile.mouseX = TriggerItem{0, 0, 0};
    engine.Attach();
  }
  ~Session() {
    engine.repeatWorker.Stop();
    device.StopDevice();
  }
  bool Begin() {
    return device.EnumerateDevices() && device.SetPollInterval(1) && device.SelectDevice(0) &&
           engine.repeatWorker.Start(true, WorkerThread::kPriorityOfCaller);
  }

  QuietHost host;
  Profile profile;
  DeviceManager device{platform::kNoWindow};
  ControlEngine engine{profile, device, host};
  CountingAction* actions[4] = {};
};

constexpr int kRounds = 150;
constexpr int kMostRounds = 10000;  // where the machine is busy

TEST_F(RealThreads, TheUserInterfaceMayChangeAnythingWhileThePadPlays) {
  Session session;
  ControlEngine& engine = session.engine;
  ASSERT_TRUE(session.Begin());
  const auto allSeen = [&] {
    return session.host.triggers > 0 && session.host.inputs > 0 && session.actions[0]->presses > 0;
  };
  int detections = 0;
  for (int round = 0; round < kRounds || (round < kMostRounds && !allSeen()); ++round) {
    engine.mouseActive = round % 8 != 0;
    session.host.dialogOpen = round % 16 == 5;
    {
      LockGuard guard(session.profile.profileLock);
      engine.ApplyMouseSlider(ControlEngine::kMovementSensitivitySlider, round % 51);
      engine.ApplyMouseSlider(ControlEngine::kWheelDamperSlider, round % 51);
      if (round % 4 == 0) {
        engine.repeatWorker.Clear();
        session.profile.RebuildDispatchList();
      }
    }
    {
      engine.SetTestMode(!engine.TestMode());
      LockGuard guard(engine.mouseLock);
      session.profile.leftButton = 1;
      session.profile.leftMask = MouseButtonMask(1);
    }
    if (round % 2 == 0) {
      engine.StartMouseDetection(round % 4 == 0 ? MouseRole::X : MouseRole::LeftButton);
      ++detections;
    }
    platform::clock().Sleep(3);
    engine.EndMouseDetection();
    ASSERT_FALSE(engine.IsDetecting()) << "ended once, by either thread";
    platform::clock().Sleep(3);
  }
  engine.LetGo();
  EXPECT_EQ(session.host.ended, detections);
  EXPECT_GT(session.host.triggers, 0);
  EXPECT_GT(session.host.inputs, 0);
  EXPECT_GT(session.actions[0]->presses, 0);
}

TEST_F(RealThreads, LetGoLeavesNothingDownWhereverItCatchesThem) {
  for (int run = 0; run < 10; ++run) {
    Session session;
    session.profile.leftMask = MouseButtonMask(1);
    session.engine.mouseActive = true;
    const int movesBefore = input.moves;
    ASSERT_TRUE(session.Begin());
    ASSERT_TRUE(tests::Eventually([&] { return input.moves > movesBefore; }));
    platform::clock().Sleep(static_cast<std::uint32_t>(40 + 7 * run));
    session.engine.LetGo();
    for (int n = 0; n < 3; ++n) EXPECT_EQ(session.actions[n]->held, 0) << "Control " << n;
    EXPECT_EQ(input.leftHeld, 0);
    const int presses = session.actions[0]->presses + session.actions[3]->presses;
    const int moves = input.moves;
    platform::clock().Sleep(20);
    EXPECT_EQ(session.actions[0]->presses + session.actions[3]->presses, presses);
    EXPECT_EQ(input.moves, moves);
  }
}

}  // namespace
}  // namespace kelvaro
